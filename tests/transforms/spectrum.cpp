// Products of packed spectra: every part rounded once from an exact sum of products.

#include "kels/spectrum.h"
#include "support/exact.h"
#include "support/rows.h"

namespace {

using kels_test::complex_product;
using kels_test::in_place;
using kels_test::Row;
using kels_test::row;
using kels_test::whole;

template <class T>
struct Pair {
    T re, im;
};

constexpr auto perm_product = whole([]<class T>(const T* a, const T* b, T* d, int len) {
    int i = 0;
    for (; i < 2 - len % 2; ++i) d[i] = static_cast<T>(static_cast<long double>(a[i]) * b[i]);
    for (; i < len; i += 2) {
        const auto bin = complex_product(Pair<T>{a[i], a[i + 1]}, Pair<T>{b[i], b[i + 1]});
        d[i] = static_cast<T>(bin.re);
        d[i + 1] = static_cast<T>(bin.im);
    }
});

const Row rows[] = {
    row(kelsMulPerm_32f, perm_product).ulps(1),
    row(kelsMulPerm_64f, perm_product).ulps(2),
    in_place(kelsMulPerm_32f_I, perm_product).ulps(1),
    in_place(kelsMulPerm_64f_I, perm_product).ulps(2),
};

const bool registered = kels_test::add_rows("Spectrum", rows);

} // namespace
