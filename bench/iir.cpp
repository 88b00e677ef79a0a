// IIR filters, call after call of one stream, beside a plain loop of the same recursion.
#include "iir.h"

#include <algorithm>
#include <cmath>

namespace bench {
namespace {

using Owner = std::unique_ptr<KelIirContext, KelStatus (*)(KelIirContext*)>;

constexpr const char* plain = "plain loop";
constexpr int unit_factor = -15; ///< of integer taps, which are divided as they are given

/// The functions of a family, under one signature.
template <class Tap, class Sample>
struct Functions {
    const char* name;
    KelStatus (*release)(KelIirContext*);
    void (*make)(KelIirContext**, const Tap*, int);
    void (*make_cascade)(KelIirContext**, const Tap*, int);
    void (*block)(const Sample*, Sample*, KelIirContext*);
};

template <class Tap, class Sample>
auto filter(const Functions<Tap, Sample>& f, bool cascade, int size) {
    KelIirContext* context = nullptr;
    const double unit = std::is_floating_point_v<typename Part<Tap>::type> ? 1 : std::ldexp(1.0, -unit_factor);
    if (cascade)
        f.make_cascade(&context, section_taps<Tap>(size, unit).data(), size);
    else
        f.make(&context, polynomial_taps<Tap>(size, unit).data(), size);
    return [block = f.block, source = noise<Sample>(iir_samples), result = zeros<Sample>(iir_samples),
            owner = Owner(context, f.release)] { block(source.get(), result.get(), owner.get()); };
}

template <class Tap, class Sample>
void family(const Functions<Tap, Sample>& f) {
    contend_sections<Sample>(f.name, ours, [=](int sections) { return filter(f, true, sections); });
    contend_orders<Sample>(f.name, ours, [=](int order) { return filter(f, false, order); });
}

/// The recursions as one would write them, in double precision; the state has type State.
template <class State, class Sample>
void plain_sections(const char* function) {
    contend_sections<Sample>(function, plain, [](int sections) {
        return [=, taps = section_taps<double>(sections), w = std::vector<State>(std::size_t(2 * sections)),
                source = noise<Sample>(iir_samples), result = zeros<Sample>(iir_samples)]() mutable {
            for (int i = 0; i < iir_samples; ++i) {
                double t = source[i];
                for (int s = 0; s < sections; ++s) {
                    const double* c = &taps[std::size_t(6 * s)];
                    State* state = &w[std::size_t(2 * s)];
                    const double now = t - c[4] * state[0] - c[5] * state[1];
                    t = now + c[1] * state[0] + c[2] * state[1];
                    state[1] = state[0];
                    state[0] = State(now);
                }
                result[i] = Sample(t);
            }
        };
    });
}

template <class State, class Sample>
void plain_orders(const char* function) {
    contend_orders<Sample>(function, plain, [](int order) {
        return [=, taps = polynomial_taps<double>(order), d = std::vector<State>(std::size_t(order + 1)),
                source = noise<Sample>(iir_samples), result = zeros<Sample>(iir_samples)]() mutable {
            const double *b = taps.data(), *a = b + order + 1;
            for (int i = 0; i < iir_samples; ++i) {
                const double x = source[i], y = b[0] * x + d[0];
                for (int k = 0; k < order; ++k)
                    d[std::size_t(k)] = State(b[k + 1] * x - a[k + 1] * y + d[std::size_t(k + 1)]);
                result[i] = Sample(y);
            }
        };
    });
}

// The rule of integer taps: magnitudes are shifted, registers saturated.

long long shifted(long long v, int places) { return v < 0 ? -(-v >> places) : v >> places; }
int saturated(long long v) { return int(std::clamp(v, -2147483648LL, 2147483647LL)); }

void plain_fixed(const char* function) {
    constexpr int down = -unit_factor;
    contend_sections<Kel16s>(function, plain, [](int sections) {
        return [=, taps = section_taps<Kel32s>(sections, 1 << down), w = std::vector<Kel32s>(std::size_t(2 * sections)),
                source = noise<Kel16s>(iir_samples), result = zeros<Kel16s>(iir_samples)]() mutable {
            for (int i = 0; i < iir_samples; ++i) {
                long long t = source[i];
                for (int s = 0; s < sections; ++s) {
                    const Kel32s* c = &taps[std::size_t(6 * s)];
                    Kel32s* state = &w[std::size_t(2 * s)];
                    const long long w1 = state[0], w2 = state[1], now = t - shifted(c[4] * w1 + c[5] * w2, down);
                    t = now + shifted(c[1] * w1 + c[2] * w2, down);
                    state[1] = state[0];
                    state[0] = saturated(now);
                }
                result[i] = Kel16s(std::clamp(t, -32768LL, 32767LL));
            }
        };
    });
    contend_orders<Kel16s>(function, plain, [](int order) {
        return [=, taps = polynomial_taps<Kel32s>(order, 1 << down), d = std::vector<Kel32s>(std::size_t(order + 1)),
                source = noise<Kel16s>(iir_samples), result = zeros<Kel16s>(iir_samples)]() mutable {
            const Kel32s *b = taps.data(), *a = b + order + 1;
            for (int i = 0; i < iir_samples; ++i) {
                const long long x = source[i], y = shifted(b[0] * x, down) + d[0];
                for (int k = 0; k < order; ++k)
                    d[std::size_t(k)] =
                        saturated(d[std::size_t(k + 1)] + shifted(b[k + 1] * x, down) - shifted(a[k + 1] * y, down));
                result[i] = Kel16s(std::clamp(y, -32768LL, 32767LL));
            }
        };
    });
}

// clang-format off
const Registration iir([] {
    family<Kel64f,  Kel64f> ({"kelsIIR_64f",          kelsIIRFree_64f,      [](auto c, auto t, int n) { kelsIIRInitAlloc_64f    (c, t, n, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc_BiQuad_64f  (c, t, n, nullptr); }, [](auto x, auto y, auto c) { kelsIIR_64f         (x, y, iir_samples, c);    }});
    family<Kel64fc, Kel64fc>({"kelsIIR_64fc",         kelsIIRFree_64fc,     [](auto c, auto t, int n) { kelsIIRInitAlloc_64fc   (c, t, n, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc_BiQuad_64fc (c, t, n, nullptr); }, [](auto x, auto y, auto c) { kelsIIR_64fc        (x, y, iir_samples, c);    }});
    family<Kel32f,  Kel32f> ({"kelsIIR_32f",          kelsIIRFree_32f,      [](auto c, auto t, int n) { kelsIIRInitAlloc_32f    (c, t, n, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc_BiQuad_32f  (c, t, n, nullptr); }, [](auto x, auto y, auto c) { kelsIIR_32f         (x, y, iir_samples, c);    }});
    family<Kel32fc, Kel32fc>({"kelsIIR_32fc",         kelsIIRFree_32fc,     [](auto c, auto t, int n) { kelsIIRInitAlloc_32fc   (c, t, n, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc_BiQuad_32fc (c, t, n, nullptr); }, [](auto x, auto y, auto c) { kelsIIR_32fc        (x, y, iir_samples, c);    }});
    family<Kel64f,  Kel32f> ({"kelsIIR64f_32f",       kelsIIRFree64f_32f,   [](auto c, auto t, int n) { kelsIIRInitAlloc64f_32f (c, t, n, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc64f_BiQuad_32f(c, t, n, nullptr); }, [](auto x, auto y, auto c) { kelsIIR64f_32f      (x, y, iir_samples, c);    }});
    family<Kel64f,  Kel16s> ({"kelsIIR64f_16s_Sfs",   kelsIIRFree64f_16s,   [](auto c, auto t, int n) { kelsIIRInitAlloc64f_16s (c, t, n, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc64f_BiQuad_16s(c, t, n, nullptr); }, [](auto x, auto y, auto c) { kelsIIR64f_16s_Sfs  (x, y, iir_samples, c, 0); }});
    family<Kel32f,  Kel16s> ({"kelsIIR32f_16s_Sfs",   kelsIIRFree32f_16s,   [](auto c, auto t, int n) { kelsIIRInitAlloc32f_16s (c, t, n, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc32f_BiQuad_16s(c, t, n, nullptr); }, [](auto x, auto y, auto c) { kelsIIR32f_16s_Sfs  (x, y, iir_samples, c, 0); }});
    family<Kel32s,  Kel16s> ({"kelsIIR32s_16s_Sfs",   kelsIIRFree32s_16s,   [](auto c, auto t, int n) { kelsIIRInitAlloc32s_16s (c, t, n, unit_factor, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc32s_BiQuad_16s (c, t, n, unit_factor, nullptr); }, [](auto x, auto y, auto c) { kelsIIR32s_16s_Sfs  (x, y, iir_samples, c, 0); }});
    family<Kel32sc, Kel16sc>({"kelsIIR32sc_16sc_Sfs", kelsIIRFree32sc_16sc, [](auto c, auto t, int n) { kelsIIRInitAlloc32sc_16sc(c, t, n, unit_factor, nullptr); }, [](auto c, auto t, int n) { kelsIIRInitAlloc32sc_BiQuad_16sc(c, t, n, unit_factor, nullptr); }, [](auto x, auto y, auto c) { kelsIIR32sc_16sc_Sfs(x, y, iir_samples, c, 0); }});
    plain_sections<double, double>("kelsIIR_64f");
    plain_orders<double, double>("kelsIIR_64f");
    plain_sections<float, float>("kelsIIR_32f");
    plain_orders<float, float>("kelsIIR_32f");
    plain_fixed("kelsIIR32s_16s_Sfs");
});
// clang-format on

} // namespace
} // namespace bench
