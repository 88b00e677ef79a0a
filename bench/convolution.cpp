// Convolution and correlation: whole calls, which make and release their plans.
#include "convolution.h"

namespace bench {
namespace {

template <class T>
void autocorrelation(const char* function, KelStatus (*call)(const T*, int, T*, int)) {
    contend_autocorrelation(function, ours, [=](const Autocorrelation& size) {
        return [=, x = noise<T>(size.len), r = zeros<T>(size.lags)] { call(x.get(), size.len, r.get(), size.lags); };
    });
}

const Registration all([] {
    contend_convolution("kelsConv_32f", ours, [](const Convolution& size) {
        return [size, a = noise<Kel32f>(size.long_len), b = noise<Kel32f>(size.short_len),
                y = zeros<Kel32f>(size.results())] {
            kelsConv_32f(a.get(), size.long_len, b.get(), size.short_len, y.get());
        };
    });
    contend_convolution("kelsConv_16s_Sfs", ours, [](const Convolution& size) {
        return [size, a = noise<Kel16s>(size.long_len), b = noise<Kel16s>(size.short_len),
                y = zeros<Kel16s>(size.results())] {
            kelsConv_16s_Sfs(a.get(), size.long_len, b.get(), size.short_len, y.get(), 20);
        };
    });
    autocorrelation("kelsAutoCorr_32f", kelsAutoCorr_32f);
    autocorrelation("kelsAutoCorr_64f", kelsAutoCorr_64f);
    autocorrelation("kelsAutoCorr_32fc", kelsAutoCorr_32fc);
    contend_autocorrelation("kelsCrossCorr_32f", ours, [](const Autocorrelation& size) {
        return [size, a = noise<Kel32f>(size.len), b = noise<Kel32f>(size.len), r = zeros<Kel32f>(size.lags)] {
            kelsCrossCorr_32f(a.get(), size.len, b.get(), size.len, r.get(), size.lags, -size.lags / 2);
        };
    });
});

} // namespace
} // namespace bench
