// Transforms of any length with the work buffer given by the caller, and the making of their plans.
#include "dft.h"

namespace bench {
namespace {

/// A plan with its buffer, released with the benchmark that made it.
template <class Plan>
class Planned {
public:
    using Release = KelStatus (*)(Plan*);

    template <class... Arguments>
    Planned(KelStatus (*make)(Plan**, Arguments...), Release release, KelStatus (*buffer_size)(const Plan*, int*),
            Arguments... arguments)
        : plan_(nullptr, release) {
        Plan* plan = nullptr;
        make(&plan, arguments...);
        plan_.reset(plan);
        int bytes = 0;
        buffer_size(plan, &bytes);
        buffer_ = zeros<Kel8u>(std::size_t(bytes) + 1);
    }
    const Plan* plan() const { return plan_.get(); }
    Kel8u* buffer() const { return buffer_.get(); }

private:
    std::unique_ptr<Plan, Release> plan_;
    Array<Kel8u> buffer_;
};

/// Calls with arrays of noise and of room for the results.
template <class Data, class Plan>
auto caller(Planned<Plan> planned, KelStatus (*call)(const Data*, Data*, const Plan*, Kel8u*), int length) {
    const std::size_t room = std::size_t(length) + 2;
    return [call, planned = std::move(planned), source = noise<Data>(room), result = zeros<Data>(room)] {
        call(source.get(), result.get(), planned.plan(), planned.buffer());
    };
}

template <class Real, class Data, class Plan>
void transform(bool real, KelStatus (*make)(Plan**, int, int, int), KelStatus (*release)(Plan*),
               KelStatus (*buffer_size)(const Plan*, int*),
               KelStatus (*call)(const Data*, Data*, const Plan*, Kel8u*)) {
    for (const int length : dft_lengths)
        contend(dft_work<Real>(real, length), ours, [=] {
            return caller(Planned<Plan>(make, release, buffer_size, length, int(kelFftNormNone), int(kelHintDefault)),
                          call, length);
        });
}

const Registration dft([] {
    transform<Kel32f>(false, kelsDFTInitAlloc_C_32fc, kelsDFTFree_C_32fc, kelsDFTGetBufSize_C_32fc,
                      kelsDFTFwd_CToC_32fc);
    transform<Kel32f>(true, kelsDFTInitAlloc_R_32f, kelsDFTFree_R_32f, kelsDFTGetBufSize_R_32f, kelsDFTFwd_RToCCS_32f);
    transform<Kel64f>(false, kelsDFTInitAlloc_C_64fc, kelsDFTFree_C_64fc, kelsDFTGetBufSize_C_64fc,
                      kelsDFTFwd_CToC_64fc);
    transform<Kel64f>(true, kelsDFTInitAlloc_R_64f, kelsDFTFree_R_64f, kelsDFTGetBufSize_R_64f, kelsDFTFwd_RToCCS_64f);
    for (const int length : dct_lengths)
        contend(dct_work(length), ours, [=] {
            return caller(Planned<KelsDctPlan_32f>(kelsDCTFwdInitAlloc_32f, kelsDCTFwdFree_32f,
                                                   kelsDCTFwdGetBufSize_32f, length, int(kelHintDefault)),
                          kelsDCTFwd_32f, length);
        });
    for (const int length : plan_lengths)
        contend(plan_work(length), ours, [=] {
            return [=] {
                KelsDftPlan_32f* plan = nullptr;
                kelsDFTInitAlloc_C_32fc(&plan, length, kelFftNormNone, kelHintDefault);
                kelsDFTFree_C_32fc(plan);
            };
        });
});

} // namespace
} // namespace bench
