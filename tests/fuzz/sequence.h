// Random sequences of calls. A drive reads its choices from an input's bytes and holds two ways to one result against
// each other; a target is a group of drives. The fuzzer makes inputs (main.cpp), and so do the tests (replay.cpp).
//
//     const bool added = add_target("fir", {drive_fir<Family_32f>, ...});
//
// Checks are GoogleTest's, which end the program in a fuzzer.
#pragma once

#include "support/allocation_faults.h"
#include "support/digests.h"
#include "support/guarded_array.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

namespace kels_test {

/// Data within the range that sums are told for, of any finite size, or with infinities, NaNs and extremes as well.
enum class Style { tame, finite, any };

/// Choices out of bytes. Behind the last one every choice is 0.
class Input {
public:
    explicit Input(std::span<const std::uint8_t> all) : bytes(all) {}

    bool more() const { return !bytes.empty(); }
    int below(int n) {
        int value = byte();
        if (n > 256) value += byte() << 8;
        return value % n;
    }
    bool one_in(int n) { return below(n) == n - 1; }

    /// From 1 to `most`: short ones, those around vectors and blocks, and any.
    int length(int most) {
        const int kind = below(4);
        if (kind == 3) return 1 + below(most);
        if (kind == 2) return std::clamp((8 << below(8)) + below(5) - 2, 1, most);
        return 1 + below(std::min(most, kind == 1 ? 70 : 9));
    }
    int scale_factor() { return one_in(8) ? below(256) - 128 : below(20) - 3; }
    Edge edge() { return below(2) == 0 ? Edge::back : Edge::front; }
    Random random() { return Random(static_cast<std::uint64_t>(below(1 << 16))); }

    /// Calls, at times with an allocation failing, which must give kelStatusNoMemory; and then again.
    template <class Call>
    KelStatus attempt(Call call) {
        if (one_in(8)) {
            const FailingAllocation failing(1 + below(3));
            const KelStatus status = call();
            if (!failing.happened()) return status;
            EXPECT_EQ(status, kelStatusNoMemory);
        }
        return call();
    }
    template <class Call>
    KelStatus plainly(Call call) const {
        return call();
    }

    template <class T>
    std::vector<T> data(int count, Style style = Style::any) {
        constexpr Type type = type_of<T>();
        constexpr bool real = type.kind == Kind::f32 || type.kind == Kind::f64;
        constexpr bool is_unsigned = type.kind == Kind::u8 || type.kind == Kind::u16 || type.kind == Kind::u32;
        constexpr double largest = real ? 1 : type.part_size() == 1 ? 100 : 32000;
        Random source = random();
        const int choice = style == Style::tame ? 0 : below(style == Style::finite ? 2 : 3);
        const double high = choice == 0 ? largest : 0;
        std::vector<T> x(static_cast<std::size_t>(count));
        fill_random(source, type, x.data(), x.size(), is_unsigned ? 0 : -high, high,
                    choice == 2 ? usual_special_share : 0);
        return x;
    }

private:
    std::span<const std::uint8_t> bytes;

    int byte() {
        if (bytes.empty()) return 0;
        const int first = bytes[0];
        bytes = bytes.subspan(1);
        return first;
    }
};

using Drive = void (*)(Input&);

struct Target {
    const char* name;
    std::vector<Drive> drives;
};

std::vector<Target>& targets();
inline bool add_target(const char* name, std::initializer_list<Drive> drives) {
    targets().push_back({name, drives});
    return true;
}

/// Runs one drive of the target, which must leave no allocated block behind.
void run(const Target& target, std::span<const std::uint8_t> bytes);

// What drives do

/// Results of a call into an array at a page that may not be touched: call(array).
template <class T, class In, class Call>
std::vector<T> results(In& in, std::size_t count, Call call) {
    GuardedArray<T> y(count, in.edge());
    std::memset(static_cast<void*>(y.data()), 0x5A, count * sizeof(T));
    EXPECT_EQ(in.attempt([&] { return call(y.data()); }), kelStatusOk);
    return y.values();
}

/// The same in place of x, in room for at least so many: call(array).
template <class T, class In, class Call>
std::vector<T> results_in_place(In& in, std::vector<T> x, Call call, std::size_t room = 0) {
    x.resize(std::max(x.size(), room));
    GuardedArray<T> y(x, in.edge());
    EXPECT_EQ(in.attempt([&] { return call(y.data()); }), kelStatusOk);
    return y.values();
}

/// The context that make(&context) makes.
template <class Context, class Make>
std::unique_ptr<Context, KelStatus (*)(Context*)> made(Input& in, KelStatus (*release)(Context*), Make make) {
    Context* context = nullptr;
    EXPECT_EQ(in.attempt([&] { return make(&context); }), kelStatusOk);
    return {context, release};
}

template <class T>
std::vector<T> piece(const std::vector<T>& x, int from, int count) {
    return {x.begin() + from, x.begin() + from + count};
}
template <class T>
void append(std::vector<T>& x, const std::vector<T>& more) {
    x.insert(x.end(), more.begin(), more.end());
}

/// Every part of both, as numbers.
template <class T>
struct Parts {
    static constexpr Type type = type_of<T>();
    using Part = decltype([] {
        if constexpr (ComplexSample<T>)
            return decltype(T::re){};
        else
            return T{};
    }());
    std::span<const Part> a, b;
    Parts(const std::vector<T>& x, const std::vector<T>& y)
        : a(reinterpret_cast<const Part*>(x.data()), x.size() * type.parts),
          b(reinterpret_cast<const Part*>(y.data()), y.size() * type.parts) {}
};

/// The same bits, or a NaN for a NaN.
template <class T>
void expect_same(const std::vector<T>& x, const std::vector<T>& y, const char* what) {
    ASSERT_EQ(x.size(), y.size()) << what;
    const Parts<T> parts(x, y);
    for (std::size_t i = 0; i < parts.a.size(); ++i) {
        const auto a = parts.a[i], b = parts.b[i];
        ASSERT_TRUE(std::memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b))
            << what << ": " << +a << " and " << +b << ", part " << i << " of " << parts.a.size();
    }
}

template <class T>
void expect_near(const std::vector<T>& x, const std::vector<T>& y, double tolerance, const char* what) {
    ASSERT_EQ(x.size(), y.size()) << what;
    const Parts<T> parts(x, y);
    for (std::size_t i = 0; i < parts.a.size(); ++i) {
        const auto a = static_cast<double>(parts.a[i]), b = static_cast<double>(parts.b[i]);
        ASSERT_LE(std::abs(a - b), tolerance) << what << ": " << a << " and " << b << ", part " << i;
    }
}

constexpr auto exactly = [](const auto& whole, const auto& parts, const char* what) {
    expect_same(whole, parts, what);
};

/// What one stream gives at once, held against what another gives in two pieces: stream(context, from, count).
template <class One, class Two, class Stream, class Compare = decltype(exactly)>
auto at_once_and_cut(One&& one, Two&& two, int count, int cut, Stream stream, Compare compare = exactly) {
    const auto whole = stream(one, 0, count);
    auto parts = whole;
    parts.clear();
    if (cut > 0) parts = stream(two, 0, cut);
    append(parts, stream(two, cut, count - cut));
    compare(whole, parts, "cut stream");
    return whole;
}

/// The sum of all parts' magnitudes.
template <class T>
double magnitude(const std::vector<T>& x) {
    double sum = 0;
    for (const auto part : Parts<T>(x, x).a) sum += std::abs(static_cast<double>(part));
    return sum;
}

} // namespace kels_test
