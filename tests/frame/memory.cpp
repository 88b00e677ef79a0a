// Allocators and the version record.

#include "kels/services.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

template <class T>
struct Allocator {
    T* (*allocate)(int);
    int element_size;
};

template <class F>
void for_every_allocator(F test) {
    test(Allocator<Kel8u>{kelsMalloc_8u, 1});
    test(Allocator<Kel8s>{kelsMalloc_8s, 1});
    test(Allocator<Kel16u>{kelsMalloc_16u, 2});
    test(Allocator<Kel16s>{kelsMalloc_16s, 2});
    test(Allocator<Kel32u>{kelsMalloc_32u, 4});
    test(Allocator<Kel32s>{kelsMalloc_32s, 4});
    test(Allocator<Kel64s>{kelsMalloc_64s, 8});
    test(Allocator<Kel32f>{kelsMalloc_32f, 4});
    test(Allocator<Kel64f>{kelsMalloc_64f, 8});
    test(Allocator<Kel8sc>{kelsMalloc_8sc, 2});
    test(Allocator<Kel16sc>{kelsMalloc_16sc, 4});
    test(Allocator<Kel32sc>{kelsMalloc_32sc, 8});
    test(Allocator<Kel64sc>{kelsMalloc_64sc, 16});
    test(Allocator<Kel32fc>{kelsMalloc_32fc, 8});
    test(Allocator<Kel64fc>{kelsMalloc_64fc, 16});
}

TEST(Memory, BlocksAreAlignedAndWritableToTheirEnd) {
    for_every_allocator([](auto a) {
        for (int len : {1, 2, 3, 5, 8, 31, 1000, 70001}) {
            auto* p = a.allocate(len);
            ASSERT_NE(p, nullptr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 32, 0u);
            // What is written is checked by the heap itself, and by the address sanitizer.
            std::memset(static_cast<void*>(p), 0xA5, static_cast<std::size_t>(len) * a.element_size);
            kelsFree(p);
        }
    });
}

TEST(Memory, LengthsBelowOneGiveNull) {
    for_every_allocator([](auto a) {
        for (int len : {0, -1, INT_MIN}) EXPECT_EQ(a.allocate(len), nullptr);
    });
}

// Where the address space cannot hold the block, the byte count must not wrap around to a small one.
TEST(Memory, SizesThatDoNotFitGiveNull) {
    if (sizeof(void*) > 4) GTEST_SKIP() << "every length fits 64 bits";
    for_every_allocator([](auto a) {
        const int wraps = static_cast<int>((std::uint64_t{1} << 32) / a.element_size);
        if (a.element_size > 2) {
            EXPECT_EQ(a.allocate(wraps), nullptr);
        }
        if (a.element_size > 1) {
            EXPECT_EQ(a.allocate(INT_MAX), nullptr);
        }
    });
}

// The word below the block holds what malloc gave, at most an alignment and a word below.
TEST(Memory, TheRawAddressStandsBelowTheBlock) {
    for (int len = 1; len < 100; ++len) {
        Kel16s* p = kelsMalloc_16s(len);
        const auto raw = reinterpret_cast<std::uintptr_t*>(p)[-1];
        const auto distance = reinterpret_cast<std::uintptr_t>(p) - raw;
        EXPECT_GE(distance, sizeof(void*));
        EXPECT_LE(distance, 31 + sizeof(void*));
        kelsFree(p);
    }
}

TEST(Memory, FreeingNullDoesNothing) { kelsFree(nullptr); }

TEST(Version, RecordIsTheSameOnEveryCall) {
    const kelLibraryVersion* v = kelsGetLibVersion();
    EXPECT_EQ(v, kelsGetLibVersion());
    EXPECT_EQ(v->major, 2);
    EXPECT_EQ(v->minor, 0);
    EXPECT_EQ(v->majorBuild, 6);
    EXPECT_EQ(KELS_VERSION_MAJOR, v->major);
    EXPECT_EQ(KELS_VERSION_MINOR, v->minor);
    EXPECT_EQ(KELS_VERSION_PATCH, v->majorBuild);
    EXPECT_EQ(v->build, 39);
    EXPECT_EQ(std::memcmp(v->targetCpu, "q3\0", 4), 0);
    EXPECT_STREQ(v->name, "kelsq3");
    EXPECT_STREQ(v->version, "2.0.6 build 39");
    EXPECT_EQ(sizeof(kelLibraryVersion), 20 + (sizeof(void*) == 8 ? 4 : 0) + 3 * sizeof(void*));
}

TEST(Version, BuildDateIsMonthDayYear) {
    const std::string date = kelsGetLibVersion()->buildDate;
    ASSERT_EQ(date.size(), 11u) << date;
    EXPECT_NE(std::string("JanFebMarAprMayJunJulAugSepOctNovDec").find(date.substr(0, 3)), std::string::npos) << date;
    EXPECT_GE(std::stoi(date.substr(4, 2)), 1) << date;
    EXPECT_GE(std::stoi(date.substr(7)), 2025) << date;
}

template <class Bits, class T>
Bits bits_of(const T& object) {
    Bits bits;
    static_assert(sizeof bits == sizeof object);
    std::memcpy(&bits, &object, sizeof bits);
    return bits;
}

TEST(Constants, HaveTheirBits) {
    EXPECT_EQ(bits_of<std::uint32_t>(kelConstantOfNAN_32f), 0xFFC00000u);
    EXPECT_EQ(bits_of<std::uint32_t>(kelConstantOfINF_32f), 0x7F800000u);
    EXPECT_EQ(bits_of<std::uint32_t>(kelConstantOfINF_NEG_32f), 0xFF800000u);
    EXPECT_EQ(bits_of<std::uint64_t>(kelConstantOfNAN_64f), 0xFFF8000000000000u);
    EXPECT_EQ(bits_of<std::uint64_t>(kelConstantOfINF_64f), 0x7FF0000000000000u);
    EXPECT_EQ(bits_of<std::uint64_t>(kelConstantOfINF_NEG_64f), 0xFFF0000000000000u);
}

} // namespace
