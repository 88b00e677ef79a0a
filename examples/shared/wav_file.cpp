#include "wav_file.h"

#include "failure.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace examples {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t frames_at_once = 16384;

// Keeps the widest sample format within the 4 GiB of a WAV file.
constexpr std::size_t most_samples = 500'000'000;

struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, Close>;

[[noreturn]] void fail(const fs::path& path, const std::string& reason) { throw Failure(path.string() + " " + reason); }

SoundFile open_to_read(const fs::path& path, SF_INFO& info) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) fail(path, "does not exist.");
    if (fs::is_directory(status)) fail(path, "is a directory, not a recording.");
    if (!fs::is_regular_file(status)) fail(path, "is not a regular file.");
    SoundFile file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file) fail(path, std::string("is not a recording: ") + sf_strerror(nullptr));
    if (info.channels < 1 || info.samplerate < 1) fail(path, "names no channels or no sampling rate.");
    return file;
}

void append(Recording& recording, const float* interleaved, std::size_t frames) {
    const std::size_t channels = recording.channels.size();
    for (std::size_t c = 0; c < channels; ++c)
        for (std::size_t i = 0; i < frames; ++i) recording.channels[c].push_back(interleaved[i * channels + c]);
}

bool all_finite(const Recording& recording) {
    return std::ranges::all_of(recording.channels, [](const std::vector<float>& samples) {
        return std::ranges::all_of(samples, [](float x) { return std::isfinite(x); });
    });
}

/// WAV with the samples stored as they were, or as floats where WAV has no such format.
int wav_format_of(const Recording& recording) {
    SF_INFO info{};
    info.samplerate = recording.rate;
    info.channels = int(recording.channels.size());
    info.format = SF_FORMAT_WAV | (recording.format & SF_FORMAT_SUBMASK);
    return sf_format_check(&info) ? info.format : SF_FORMAT_WAV | SF_FORMAT_FLOAT;
}

} // namespace

Recording read_wav(const fs::path& path) {
    SF_INFO info{};
    const SoundFile file = open_to_read(path, info);
    Recording recording{.rate = info.samplerate, .format = info.format, .channels = {}};
    recording.channels.resize(info.channels);

    // The header's own count is not believed: a damaged file may promise anything.
    std::vector<float> interleaved(frames_at_once * info.channels);
    while (const sf_count_t frames = sf_readf_float(file.get(), interleaved.data(), frames_at_once)) {
        append(recording, interleaved.data(), std::size_t(frames));
        if (recording.length() * recording.channels.size() > most_samples) fail(path, "is too long for this program.");
    }
    if (sf_error(file.get())) fail(path, std::string("cannot be read to its end: ") + sf_strerror(file.get()));
    if (recording.length() == 0) fail(path, "holds no samples.");
    if (!all_finite(recording)) fail(path, "holds samples that are not finite numbers.");
    return recording;
}

void write_wav(const fs::path& path, const Recording& recording) {
    const std::size_t channels = recording.channels.size();
    SF_INFO info{};
    info.samplerate = recording.rate;
    info.channels = int(channels);
    info.format = wav_format_of(recording);
    SoundFile file(sf_open(path.c_str(), SFM_WRITE, &info));
    if (!file) fail(path, std::string("cannot be written: ") + sf_strerror(nullptr));
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE); // the default is to wrap around

    std::vector<float> interleaved;
    for (std::size_t start = 0; start < recording.length(); start += frames_at_once) {
        const std::size_t frames = std::min(frames_at_once, recording.length() - start);
        interleaved.resize(frames * channels);
        for (std::size_t c = 0; c < channels; ++c)
            for (std::size_t i = 0; i < frames; ++i) interleaved[i * channels + c] = recording.channels[c][start + i];
        if (sf_writef_float(file.get(), interleaved.data(), sf_count_t(frames)) != sf_count_t(frames))
            fail(path, std::string("cannot be written: ") + sf_strerror(file.get()));
    }
    if (sf_close(file.release()) != 0) fail(path, "cannot be written to its end.");
}

} // namespace examples
