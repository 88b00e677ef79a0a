// Allocators and the version record.

#include "kels/services.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

template <class F>
void for_every_allocator(F test) {
    const auto for_each = [&](auto... allocate) { (test(allocate), ...); };
    for_each(kelsMalloc_8u, kelsMalloc_8s, kelsMalloc_16u, kelsMalloc_16s, kelsMalloc_32u, kelsMalloc_32s,
             kelsMalloc_64s, kelsMalloc_32f, kelsMalloc_64f, kelsMalloc_8sc, kelsMalloc_16sc, kelsMalloc_32sc,
             kelsMalloc_64sc, kelsMalloc_32fc, kelsMalloc_64fc);
}

TEST(Memory, BlocksAreAlignedAndWritableToTheirEnd) {
    for_every_allocator([]<class T>(T* (*allocate)(int)) {
        for (int len : {1, 2, 3, 5, 8, 31, 1000, 70001}) {
            T* p = allocate(len);
            ASSERT_NE(p, nullptr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 32, 0u);
            // What is written is checked by the heap itself, and by the address sanitizer.
            std::memset(static_cast<void*>(p), 0xA5, static_cast<std::size_t>(len) * sizeof(T));
            kelsFree(p);
        }
    });
}

TEST(Memory, LengthsBelowOneGiveNull) {
    for_every_allocator([]<class T>(T* (*allocate)(int)) {
        for (int len : {0, -1, INT_MIN}) EXPECT_EQ(allocate(len), nullptr);
    });
}

// Where the address space cannot hold the block, the byte count must not wrap around to a small one.
TEST(Memory, SizesThatDoNotFitGiveNull) {
    if (sizeof(void*) > 4) GTEST_SKIP() << "every length fits 64 bits";
    for_every_allocator([]<class T>(T* (*allocate)(int)) {
        const int wraps = static_cast<int>((std::uint64_t{1} << 32) / sizeof(T));
        EXPECT_TRUE(sizeof(T) <= 2 || !allocate(wraps));
        EXPECT_TRUE(sizeof(T) <= 1 || !allocate(INT_MAX));
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

TEST(Constants, HaveTheirBits) {
    EXPECT_EQ(std::bit_cast<std::uint32_t>(kelConstantOfNAN_32f), 0xFFC00000u);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(kelConstantOfINF_32f), 0x7F800000u);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(kelConstantOfINF_NEG_32f), 0xFF800000u);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(kelConstantOfNAN_64f), 0xFFF8000000000000u);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(kelConstantOfINF_64f), 0x7FF0000000000000u);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(kelConstantOfINF_NEG_64f), 0xFFF0000000000000u);
}

} // namespace
