// Transforms, forward and back, with the work buffer given by the caller.
#include "fft.h"

namespace bench {
namespace {

/// The functions of one kind of plan.
template <class Plan>
struct Plans {
    KelStatus (*make)(Plan**, int, int, int);
    KelStatus (*free)(Plan*);
    KelStatus (*buffer_size)(const Plan*, int*);
};

/// A plan with its buffer, released with the benchmark that made it.
template <class Plan>
class Planned {
public:
    Planned(const Plans<Plan>& functions, int order, int hint = kelHintDefault) : plan_(nullptr, functions.free) {
        Plan* plan = nullptr;
        functions.make(&plan, order, kelFftNormNone, hint);
        plan_.reset(plan);
        int bytes = 0;
        functions.buffer_size(plan, &bytes);
        buffer_ = zeros<Kel8u>(bytes);
    }
    const Plan* plan() const { return plan_.get(); }
    Kel8u* buffer() const { return buffer_.get(); }

private:
    std::unique_ptr<Plan, KelStatus (*)(Plan*)> plan_;
    Array<Kel8u> buffer_;
};

/// Registers one transform at every order. In place it runs on zeros: repeated on anything else, it would overflow.
template <class Real, class Data, class Plan>
void transform(Transform kind, const Plans<Plan>& plans, KelStatus (*call)(const Data*, Data*, const Plan*, Kel8u*)) {
    for (const int order : orders_of(kind)) {
        const std::size_t length = values_of(kind, order) / parts<Data>;
        contend(transform_work<Real>(kind, order), ours, [=] {
            const bool in_place = kind == Transform::complex_in_place || kind == Transform::real_in_place;
            return
                [call, planned = Planned(plans, order), source = in_place ? zeros<Data>(length) : noise<Data>(length),
                 result = in_place ? nullptr : zeros<Data>(length)] {
                    call(source.get(), result ? result.get() : source.get(), planned.plan(), planned.buffer());
                };
        });
    }
}

constexpr Plans<KelsFftPlan_16s> complex_16{kelsFFTInitAlloc_C_16sc, kelsFFTFree_C_16sc, kelsFFTGetBufSize_C_16sc};
constexpr Plans<KelsFftPlan_32f> complex_single{kelsFFTInitAlloc_C_32fc, kelsFFTFree_C_32fc, kelsFFTGetBufSize_C_32fc};
constexpr Plans<KelsFftPlan_64f> complex_double{kelsFFTInitAlloc_C_64fc, kelsFFTFree_C_64fc, kelsFFTGetBufSize_C_64fc};
constexpr Plans<KelsFftPlan_32f> real_single{kelsFFTInitAlloc_R_32f, kelsFFTFree_R_32f, kelsFFTGetBufSize_R_32f};
constexpr Plans<KelsFftPlan_64f> real_double{kelsFFTInitAlloc_R_64f, kelsFFTFree_R_64f, kelsFFTGetBufSize_R_64f};

/// 16-bit data in fixed point, beside the single-precision transform of as many points.
void fixed_point() {
    for (const int order : {4, 5, 6, 7, 8, 9, 10}) {
        const std::size_t points = std::size_t{1} << order;
        Work work = transform_work<Kel32f>(Transform::complex_forward, order);
        work.operation = "16-bit complex forward in fixed point";
        contend(work, ours, [=] {
            return [planned = Planned(complex_16, order, kelHintWideFixed), source = noise<Kel16sc>(points),
                    result = zeros<Kel16sc>(points), order] {
                kelsFFTFwd_CToC_16sc_Sfs(source.get(), result.get(), planned.plan(), order, planned.buffer());
            };
        });
        contend(work, "kels in single", [=] {
            return [planned = Planned(complex_single, order), source = noise<Kel32fc>(points),
                    result = zeros<Kel32fc>(points)] {
                kelsFFTFwd_CToC_32fc(source.get(), result.get(), planned.plan(), planned.buffer());
            };
        });
    }
}

const Registration fft([] {
    fixed_point();
    transform<Kel32f>(Transform::complex_forward, complex_single, kelsFFTFwd_CToC_32fc);
    transform<Kel32f>(Transform::complex_in_place, complex_single, kelsFFTFwd_CToC_32fc);
    transform<Kel32f>(Transform::complex_inverse, complex_single, kelsFFTInv_CToC_32fc);
    transform<Kel32f>(Transform::real_forward, real_single, kelsFFTFwd_RToCCS_32f);
    transform<Kel32f>(Transform::real_in_place, real_single, kelsFFTFwd_RToPerm_32f);
    transform<Kel32f>(Transform::real_inverse, real_single, kelsFFTInv_CCSToR_32f);
    transform<Kel64f>(Transform::complex_forward, complex_double, kelsFFTFwd_CToC_64fc);
    transform<Kel64f>(Transform::complex_in_place, complex_double, kelsFFTFwd_CToC_64fc);
    transform<Kel64f>(Transform::complex_inverse, complex_double, kelsFFTInv_CToC_64fc);
    transform<Kel64f>(Transform::real_forward, real_double, kelsFFTFwd_RToCCS_64f);
    transform<Kel64f>(Transform::real_in_place, real_double, kelsFFTFwd_RToPerm_64f);
    transform<Kel64f>(Transform::real_inverse, real_double, kelsFFTInv_CCSToR_64f);
});

} // namespace
} // namespace bench
