// What the C++ face adds to a call of C.
#include "vectors.h"

#include <kels.hpp>

namespace bench {
namespace {

const Registration faces([] {
    contend_vectors("arithmetic", "kelsAdd_32f", "kels in C++", [](const Kel32f* a, const Kel32f* b, Kel32f* d, int n) {
        const std::size_t size = n;
        kels::add(std::span(a, size), std::span(b, size), std::span(d, size));
    });
});

} // namespace
} // namespace bench
