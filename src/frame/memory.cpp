// The aligned allocator: [ bytes from malloc | slack | address from malloc | user area, 32-byte aligned ].

#include "kels/services.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace kels {
namespace {

constexpr std::size_t alignment = 32;
constexpr std::size_t overhead = alignment + sizeof(void*);

// Every allocator stands on this one and none on another, so that replacing one of them replaces that one alone.
template <class T>
T* aligned_array(int len) {
    if (len < 1) return nullptr;
    const auto count = static_cast<std::size_t>(len);
    if (count > (PTRDIFF_MAX - overhead) / sizeof(T)) return nullptr;
    void* raw = std::malloc(count * sizeof(T) + overhead);
    if (!raw) return nullptr;
    void** user = reinterpret_cast<void**>((reinterpret_cast<std::uintptr_t>(raw) + overhead - 1) & ~(alignment - 1));
    user[-1] = raw;
    return reinterpret_cast<T*>(user);
}

} // namespace
} // namespace kels

extern "C" {
// clang-format off
Kel8u*   kelsMalloc_8u  (int len) { return kels::aligned_array<Kel8u>(len); }
Kel8s*   kelsMalloc_8s  (int len) { return kels::aligned_array<Kel8s>(len); }
Kel16u*  kelsMalloc_16u (int len) { return kels::aligned_array<Kel16u>(len); }
Kel16s*  kelsMalloc_16s (int len) { return kels::aligned_array<Kel16s>(len); }
Kel32u*  kelsMalloc_32u (int len) { return kels::aligned_array<Kel32u>(len); }
Kel32s*  kelsMalloc_32s (int len) { return kels::aligned_array<Kel32s>(len); }
Kel64s*  kelsMalloc_64s (int len) { return kels::aligned_array<Kel64s>(len); }
Kel32f*  kelsMalloc_32f (int len) { return kels::aligned_array<Kel32f>(len); }
Kel64f*  kelsMalloc_64f (int len) { return kels::aligned_array<Kel64f>(len); }
Kel8sc*  kelsMalloc_8sc (int len) { return kels::aligned_array<Kel8sc>(len); }
Kel16sc* kelsMalloc_16sc(int len) { return kels::aligned_array<Kel16sc>(len); }
Kel32sc* kelsMalloc_32sc(int len) { return kels::aligned_array<Kel32sc>(len); }
Kel64sc* kelsMalloc_64sc(int len) { return kels::aligned_array<Kel64sc>(len); }
Kel32fc* kelsMalloc_32fc(int len) { return kels::aligned_array<Kel32fc>(len); }
Kel64fc* kelsMalloc_64fc(int len) { return kels::aligned_array<Kel64fc>(len); }
// clang-format on

void kelsFree(void* p) {
    if (p) std::free(static_cast<void**>(p)[-1]);
}
}
