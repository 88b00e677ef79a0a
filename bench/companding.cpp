// Companding, beside loops over tables: of 256 codes, or of all 65,536 samples.
#include "vectors.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace bench {
namespace {

/// What the function gives for 0, 1 ... `count` - 1, as a table indexed by the unsigned element.
template <class T, class R>
std::vector<R> tabulated(KelStatus (*call)(const T*, R*, int), int count) {
    std::vector<T> x(count);
    std::iota(x.begin(), x.end(), T(0));
    std::vector<R> table(count);
    call(x.data(), table.data(), count);
    return table;
}

template <class T, class R>
void beside_table(const char* function, KelStatus (*call)(const T*, R*, int)) {
    using Index = std::make_unsigned_t<T>;
    contend_vectors("companding", function, ours, call);
    contend_vectors("companding", function, "table",
                    [table = tabulated(call, 1 << 8 * sizeof(T))](const T* x, R* d, int n) {
                        std::transform(x, x + n, d, [&](T v) { return table[Index(v)]; });
                    });
}

const Registration companding([] {
    beside_table("kelsALawToMuLaw_8u", kelsALawToMuLaw_8u);
    beside_table("kelsMuLawToALaw_8u", kelsMuLawToALaw_8u);
    beside_table("kelsALawToLin_8u16s", kelsALawToLin_8u16s);
    beside_table("kelsMuLawToLin_8u16s", kelsMuLawToLin_8u16s);
    beside_table("kelsALawToLin_8u32f", kelsALawToLin_8u32f);
    beside_table("kelsMuLawToLin_8u32f", kelsMuLawToLin_8u32f);
    beside_table("kelsLinToALaw_16s8u", kelsLinToALaw_16s8u);
    beside_table("kelsLinToMuLaw_16s8u", kelsLinToMuLaw_16s8u);
    contend_vectors("companding", "kelsLinToALaw_32f8u", ours, kelsLinToALaw_32f8u);
    contend_vectors("companding", "kelsLinToMuLaw_32f8u", ours, kelsLinToMuLaw_32f8u);
});

} // namespace
} // namespace bench
