#include "support/digests.h"

#include <cstring>
#include <string_view>

namespace kels_test {
namespace {

bool is_nan(Kind kind, std::uint64_t bits) {
    if (kind == Kind::f32) return (bits & 0x7FFFFFFF) > 0x7F800000;
    return kind == Kind::f64 && (bits & 0x7FFFFFFFFFFFFFFF) > 0x7FF0000000000000;
}

} // namespace

void digest(const char* function, Type type, const void* data, std::size_t count) {
    if (!digests || std::string_view(function).find("64f") != std::string_view::npos) return;
    std::uint64_t& hash = digests->try_emplace(function, 0xCBF29CE484222325).first->second;
    const auto* p = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < count * type.parts; ++i, p += type.part_size()) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, p, static_cast<std::size_t>(type.part_size()));
        hash = (hash ^ (is_nan(type.kind, bits) ? ~std::uint64_t{0} : bits)) * 0x100000001B3;
        hash ^= hash >> 29;
    }
}

} // namespace kels_test
