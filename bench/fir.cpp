// FIR filters, call after call of one stream: blocks, single samples, rate changes, without a state.
#include "fir.h"

namespace bench {
namespace {

using Owner = std::unique_ptr<KelFirContext, KelStatus (*)(KelFirContext*)>;

/// Scaled so that integer samples of noise do not all saturate.
constexpr int scale = 10;

template <class Taps, class Sample, class Make, class Release, class Block>
void filter(const char* function, Make make, Release release, Block block_call) {
    contend_fir<Sample>(function, ours, [=](int taps, int block) {
        KelFirContext* context = nullptr;
        make(&context, noise<Taps>(taps).get(), taps);
        return [=, source = noise<Sample>(block), result = zeros<Sample>(block), owner = Owner(context, release)] {
            block_call(source.get(), result.get(), block, owner.get());
        };
    });
}

template <class Taps, class Sample, class Make, class Release, class One>
void one_sample(const char* function, Make make, Release release, One one) {
    contend_fir_one<Sample>(function, ours, [=](int taps, int samples) {
        KelFirContext* context = nullptr;
        make(&context, noise<Taps>(taps).get(), taps);
        return [=, source = noise<Sample>(samples), result = zeros<Sample>(samples), owner = Owner(context, release)] {
            for (int i = 0; i < samples; ++i) one(source[i], &result[i], owner.get());
        };
    });
}

template <class Taps, class Sample, class Make, class Release, class Block>
void rate_change(const char* function, Make make, Release release, Block block_call) {
    contend_rate_change<Sample>(function, ours, [=](const RateChange& change) {
        KelFirContext* context = nullptr;
        make(&context, noise<Taps>(change.taps).get(), change);
        const int periods = change.periods();
        return [=, source = noise<Sample>(periods * change.down), result = zeros<Sample>(periods * change.up),
                owner = Owner(context, release)] { block_call(source.get(), result.get(), periods, owner.get()); };
    });
}

template <class Sample, class Block>
void stateless(const char* function, Block block_call) {
    contend_fir<Sample>(function, ours, [=](int taps, int block) {
        return [=, h = noise<Sample>(taps), line = zeros<Sample>(2 * taps), source = noise<Sample>(block),
                result = zeros<Sample>(block), index = 0]() mutable {
            block_call(source.get(), result.get(), block, h.get(), taps, line.get(), &index);
        };
    });
}

/// A creation without a delay line.
template <class Taps, class Sample>
auto silent(KelStatus (*make)(KelFirContext**, const Taps*, int, const Sample*)) {
    return [=](KelFirContext** context, const Taps* taps, int count) { make(context, taps, count, nullptr); };
}
template <class Taps, class Sample>
auto silent(KelStatus (*make)(KelFirContext**, const Taps*, int, int, int, int, int, const Sample*)) {
    return [=](KelFirContext** context, const Taps* taps, const RateChange& change) {
        make(context, taps, change.taps, change.up, 0, change.down, 0, nullptr);
    };
}

/// A call with the scale factor.
template <class... A>
auto scaled(KelStatus (*call)(A..., int)) {
    return [=](A... arguments) { call(arguments..., scale); };
}

void blocks() {
    filter<Kel32f, Kel32f>("kelsFIR_32f", silent(kelsFIRInitAlloc_32f), kelsFIRFree_32f, kelsFIR_32f);
    filter<Kel32fc, Kel32fc>("kelsFIR_32fc", silent(kelsFIRInitAlloc_32fc), kelsFIRFree_32fc, kelsFIR_32fc);
    filter<Kel64f, Kel64f>("kelsFIR_64f", silent(kelsFIRInitAlloc_64f), kelsFIRFree_64f, kelsFIR_64f);
    filter<Kel64fc, Kel64fc>("kelsFIR_64fc", silent(kelsFIRInitAlloc_64fc), kelsFIRFree_64fc, kelsFIR_64fc);
    filter<Kel64f, Kel32f>("kelsFIR64f_32f", silent(kelsFIRInitAlloc64f_32f), kelsFIRFree64f_32f, kelsFIR64f_32f);
    filter<Kel32f, Kel16s>("kelsFIR32f_16s_Sfs", silent(kelsFIRInitAlloc32f_16s), kelsFIRFree32f_16s,
                           scaled<const Kel16s*, Kel16s*, int, KelFirContext*>(kelsFIR32f_16s_Sfs));
    filter<Kel32f, Kel16s>("kelsFIR32s_16s_Sfs", silent(kelsFIRInitAlloc32s_16s32f), kelsFIRFree32s_16s,
                           scaled<const Kel16s*, Kel16s*, int, KelFirContext*>(kelsFIR32s_16s_Sfs));
    stateless<Kel32f>("kelsFIR_Direct_32f", kelsFIR_Direct_32f);
}

void single_samples() {
    one_sample<Kel32f, Kel32f>("kelsFIROne_32f", silent(kelsFIRInitAlloc_32f), kelsFIRFree_32f, kelsFIROne_32f);
    one_sample<Kel32fc, Kel32fc>("kelsFIROne_32fc", silent(kelsFIRInitAlloc_32fc), kelsFIRFree_32fc, kelsFIROne_32fc);
    one_sample<Kel32f, Kel16s>("kelsFIROne32s_16s_Sfs", silent(kelsFIRInitAlloc32s_16s32f), kelsFIRFree32s_16s,
                               scaled<Kel16s, Kel16s*, KelFirContext*>(kelsFIROne32s_16s_Sfs));
}

void rate_changes_of_streams() {
    rate_change<Kel32f, Kel32f>("kelsFIR_32f", silent(kelsFIRMRInitAlloc_32f), kelsFIRFree_32f, kelsFIR_32f);
    rate_change<Kel32fc, Kel32fc>("kelsFIR_32fc", silent(kelsFIRMRInitAlloc_32fc), kelsFIRFree_32fc, kelsFIR_32fc);
    rate_change<Kel32f, Kel16s>("kelsFIR32s_16s_Sfs", silent(kelsFIRMRInitAlloc32s_16s32f), kelsFIRFree32s_16s,
                                scaled<const Kel16s*, Kel16s*, int, KelFirContext*>(kelsFIR32s_16s_Sfs));
}

const Registration fir([] {
    blocks();
    single_samples();
    rate_changes_of_streams();
});

} // namespace
} // namespace bench
