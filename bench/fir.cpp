// FIR filters, block after block of one stream.
#include "fir.h"

namespace bench {
namespace {

template <class Sample>
struct Functions {
    KelStatus (*make)(KelFirContext**, const Sample*, int, const Sample*);
    KelStatus (*free)(KelFirContext*);
    KelStatus (*block)(const Sample*, Sample*, int, KelFirContext*);
};

template <class Sample>
void filter(const char* function, const Functions<Sample>& functions) {
    contend_fir<Sample>(function, ours, [=](int taps, int block) {
        KelFirContext* context = nullptr;
        functions.make(&context, noise<Sample>(taps).get(), taps, nullptr);
        return [call = functions.block, block, source = noise<Sample>(block), result = zeros<Sample>(block),
                owner = std::unique_ptr<KelFirContext, KelStatus (*)(KelFirContext*)>(context, functions.free)] {
            call(source.get(), result.get(), block, owner.get());
        };
    });
}

const Registration fir([] {
    filter<Kel32f>("kelsFIR_32f", {kelsFIRInitAlloc_32f, kelsFIRFree_32f, kelsFIR_32f});
    filter<Kel32fc>("kelsFIR_32fc", {kelsFIRInitAlloc_32fc, kelsFIRFree_32fc, kelsFIR_32fc});
    filter<Kel64f>("kelsFIR_64f", {kelsFIRInitAlloc_64f, kelsFIRFree_64f, kelsFIR_64f});
    filter<Kel64fc>("kelsFIR_64fc", {kelsFIRInitAlloc_64fc, kelsFIRFree_64fc, kelsFIR_64fc});
});

} // namespace
} // namespace bench
