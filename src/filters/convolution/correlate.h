// Lags by the way that suits their sizes.
#pragma once

#include "filters/convolution/direct.h"
#include "filters/convolution/spectral.h"

namespace kels {

template <class Taps, class Line, class Result>
KelStatus correlate(const Lags<Taps, Line>& lags, bool may_transform, Result* dst) {
    const Method method = may_transform ? cheapest<Result>(lags) : Method{};
    if (method.way != Way::directly) return correlate_by_transforms(lags, method, dst);
    correlate_directly(lags, dst);
    return kelStatusOk;
}

} // namespace kels
