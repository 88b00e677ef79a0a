// Recordings in files.
#pragma once

#include <filesystem>
#include <vector>

namespace examples {

struct Recording {
    int rate = 0;                             ///< samples per second
    int format = 0;                           ///< how the file stores a sample, as libsndfile numbers it
    std::vector<std::vector<float>> channels; ///< one or more, equally long, full scale being 1

    std::size_t length() const { return channels.front().size(); }
    double seconds() const { return double(length()) / rate; }
};

/// Fails with a sentence when the file holds no usable recording.
Recording read_wav(const std::filesystem::path& path);

/// A WAV file of the recording's rate, channels and sample format.
void write_wav(const std::filesystem::path& path, const Recording& recording);

} // namespace examples
