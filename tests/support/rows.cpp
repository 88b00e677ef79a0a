#include "support/rows.h"

#include "support/control_state.h"
#include "support/digests.h"
#include "support/emulation.h"
#include "support/guarded_memory.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <dlfcn.h>

namespace kels_test {
namespace {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

constexpr int vector_bytes = 64;
constexpr int longest = 1 << 20;
constexpr std::size_t margin = 2 * vector_bytes;

bool is_real(Kind kind) { return kind == Kind::f32 || kind == Kind::f64; }
bool is_signed(Kind kind) { return kind != Kind::u8 && kind != Kind::u16 && kind != Kind::u32; }

/// The least and the largest of an integer type.
std::pair<std::int64_t, std::int64_t> range_of(Type type) {
    const int digits = 8 * type.part_size() - is_signed(type.kind);
    const std::int64_t most = digits == 63 ? LLONG_MAX : (1LL << digits) - 1;
    return {is_signed(type.kind) ? -most - 1 : 0, most};
}

// Comparison

std::uint64_t part_bits(const std::byte* p, int size) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, p, static_cast<std::size_t>(size));
    return bits;
}

double as_double(Kind kind, std::uint64_t bits) {
    return kind == Kind::f32 ? std::bit_cast<float>(static_cast<std::uint32_t>(bits)) : std::bit_cast<double>(bits);
}

/// Units in the last place between two values of one sign; a NaN is as good as any other.
double ulps_between(Kind kind, std::uint64_t a, std::uint64_t b) {
    const double x = as_double(kind, a), y = as_double(kind, b);
    if (std::isnan(x) && std::isnan(y)) return 0;
    if (std::isnan(x) || std::isnan(y) || std::signbit(x) != std::signbit(y)) return HUGE_VAL;
    return static_cast<double>(a > b ? a - b : b - a);
}

std::string print_part(Kind kind, std::uint64_t bits, int size) {
    const int above = 64 - 8 * size;
    if (!is_real(kind))
        return std::to_string(is_signed(kind) ? static_cast<std::int64_t>(bits << above) >> above
                                              : static_cast<std::int64_t>(bits));
    char text[64];
    std::snprintf(text, sizeof text, "%.17g (0x%llx)", as_double(kind, bits), static_cast<unsigned long long>(bits));
    return text;
}

std::string print(Type type, const std::byte* p) {
    std::string text;
    for (int part = 0; part < type.parts; ++part) {
        if (part > 0) text += ", ";
        text += print_part(type.kind, part_bits(p + part * type.part_size(), type.part_size()), type.part_size());
    }
    return type.parts == 1 ? text : text.insert(0, "(").append(")");
}

/// How the results differed from the reference, since the test of a row began.
struct {
    std::size_t compared, other_bits;
} tally;

/// Whether two numbers differ by no more than the slack and some units in the last place of the second.
bool is_near(Kind kind, std::uint64_t got, std::uint64_t want, double slack, int ulps) {
    const double x = as_double(kind, got), y = as_double(kind, want);
    const double ulp = std::abs(as_double(kind, want ^ 1) - y);
    return std::abs(x - y) <= slack + ulps * ulp;
}

bool matches(Type type, int tolerance, bool loose, const double* slack, const std::byte* got, const std::byte* want) {
    for (int part = 0; part < type.parts; ++part, got += type.part_size(), want += type.part_size()) {
        const std::uint64_t a = part_bits(got, type.part_size()), b = part_bits(want, type.part_size());
        ++tally.compared;
        if (a == b) continue;
        if (!is_real(type.kind) || tolerance == Row::every_bit) return false;
        if (loose && as_double(type.kind, a) == 0 && as_double(type.kind, b) == 0) continue;
        if (slack[part] > 0 && is_near(type.kind, a, b, slack[part], tolerance)) {
            tally.other_bits += !is_near(type.kind, a, b, slack[part], 0);
            continue;
        }
        const double distance = ulps_between(type.kind, a, b);
        if (distance > tolerance) return false;
        tally.other_bits += distance > 0;
    }
    return true;
}

/// What fills every byte that a call may not touch.
const std::byte* noise() {
    static const std::vector<std::byte> bytes = [] {
        Random random("noise");
        constexpr std::size_t period = 65521;
        std::vector<std::byte> b(longest * sizeof(Kel64fc) + 2 * margin);
        for (std::size_t i = 0; i < b.size(); ++i)
            b[i] = i < period ? static_cast<std::byte>(random.bits()) : b[i - period];
        return b;
    }();
    return bytes.data();
}

GuardedMemory& guarded_memory(std::size_t argument) {
    static std::unique_ptr<GuardedMemory> memory[8];
    auto& m = memory[argument];
    if (!m) m = std::make_unique<GuardedMemory>(longest * sizeof(Kel64fc) + 4 * margin);
    return *m;
}

// One call of a row

/// Where the arrays of a call stand.
struct Placement {
    enum { at_end, at_start, shifted } where = shifted;
    int offset = 0;
};

std::ostream& operator<<(std::ostream& out, const Placement& p) {
    if (p.where == Placement::at_end) return out << "arrays before an unmapped page";
    if (p.where == Placement::at_start) return out << "arrays behind an unmapped page";
    return out << "offset " << p.offset;
}

struct Slot {
    Argument argument;
    std::size_t bytes = 0;
    std::vector<std::byte> found;    // inputs, values and the length, before the call
    std::vector<std::byte> expected; // outputs after it
    std::byte* place = nullptr;
    std::byte* lowest = nullptr; // what is watched around it
    std::byte* highest = nullptr;
};

/// Arguments of one call, what it should store, and the call itself at any place.
class Call {
public:
    Call(const Row& tested, int len, Random& random) : row(tested), length(len), slots(tested.arguments.size()) {
        const int specials = special_share(random);
        for (std::size_t i = 0; i < slots.size(); ++i) {
            slots[i].argument = row.arguments[i];
            draw(i, random, specials);
        }
    }

    /// Replaces the input by every value of its type, or the inputs by every pair of bytes.
    void sweep() {
        int shift = 0;
        for (Slot& s : slots) {
            if (!s.argument.is_input()) continue;
            const std::size_t size = s.argument.type.size;
            for (std::size_t at = 0; at < s.bytes; at += size) {
                const std::size_t value = at / size >> shift;
                std::memcpy(&s.found[at], &value, size);
            }
            shift += 8;
        }
    }

    /// Replaces the parts of the inputs by these integers, in all combinations as far as there is room, others at
    /// random.
    void fill_with(const std::vector<std::int64_t>& integers, Random& random) {
        std::size_t stride = 1;
        for (Slot& s : slots) {
            if (!s.argument.is_input()) continue;
            const auto size = static_cast<std::size_t>(s.argument.type.part_size());
            for (std::size_t part = 0; part < s.argument.type.parts; ++part, stride *= integers.size())
                for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i) {
                    const bool combined = stride * integers.size() <= static_cast<std::size_t>(length);
                    const std::size_t pick = combined ? i / stride : static_cast<std::size_t>(random.bits() >> 1);
                    std::memcpy(&s.found[(i * s.argument.type.parts + part) * size], &integers[pick % integers.size()],
                                size);
                }
        }
    }

    /// Replaces real inputs and values by numbers of one size, or of sizes of their own, anywhere in their range.
    void resize(Random& random) {
        const int common = random.below(INT_MAX);
        for (Slot& s : slots) {
            const Type part = {s.argument.type.kind, 1, static_cast<std::uint8_t>(s.argument.type.part_size())};
            if (!is_real(part.kind)) continue;
            const int most = part.kind == Kind::f32 ? 128 : 1024, least = part.kind == Kind::f32 ? -148 : -1073;
            const int exponent = least + (random.below(2) ? common : random.below(INT_MAX)) % (most - least + 1);
            for (std::size_t at = 0; at < s.found.size(); at += part.size) {
                const int smaller = random.below(2) ? random.below(60) : 0;
                const double x = std::ldexp(random.uniform(0.5, 1), exponent - smaller);
                put_number(part, &s.found[at], s.argument.is_value() || random.below(2) ? x : -x);
            }
        }
    }

    /// Replaces all integers of each part of an input by the least or the largest one, as the bits of `which` say.
    void fill_with_extremes(int which) {
        for (Slot& s : slots) {
            if (!s.argument.is_array() || !s.argument.is_input()) continue;
            const auto size = static_cast<std::size_t>(s.argument.type.part_size());
            const auto [least, most] = range_of(s.argument.type);
            for (std::size_t part = 0; part < s.argument.type.parts; ++part, which >>= 1)
                for (std::size_t at = part * size; at < s.bytes; at += s.argument.type.size)
                    std::memcpy(&s.found[at], which & 1 ? &most : &least, size);
        }
    }

    /// Sets a value argument.
    void set(std::size_t argument, double value) {
        put_number(slots[argument].argument.type, slots[argument].found.data(), value);
    }

    /// What the reference makes of it, rounded in the x87 mode of these.
    void expect_rounded_by(const ControlState& modes) {
        constexpr std::uint16_t precision = 0x300;
        under({static_cast<std::uint16_t>(modes.x87 | precision), default_modes.mxcsr}, [this] { expect(); });
    }

    void expect() {
        std::vector<void*> in, out, places;
        for (Slot& s : slots) {
            in.push_back(s.found.data());
            out.push_back(s.expected.data());
            if (s.argument.is_pointer()) places.push_back(s.place);
        }
        expected_status = row.reference({in.data(), out.data(), length, slack, places});
    }

    /// Calls at the place, under other modes if there are some, and holds what was stored against what is expected;
    /// the modes may change results, unless `same_results`.
    AssertionResult run(const Placement& at = {}, const ControlState* modes = nullptr, bool same_results = true) {
        place_all(at);
        expect_here();
        AssertionResult result = call(expected_status, addresses(), modes);
        if (result && same_results) result = check_all();
        return result ? result : result << at;
    }

    void digest_results() const {
        for (const Slot& s : slots)
            if (s.argument.is_output() && !row.depends_on_place)
                digest(row.name, s.argument.type, s.place, s.bytes / s.argument.type.size);
    }

    /// From now on takes results that are off by so many units more, and zeros of either sign.
    void loosen(int ulps) {
        tolerance += ulps;
        for (double& s : slack) s *= 4;
        loose = true;
    }

    /// Calls with the output at the place of an input.
    AssertionResult run_aliased(std::size_t input, std::size_t output) {
        place_all({});
        slots[output].place = slots[input].place;
        expect_here();
        const AssertionResult called = call(expected_status, addresses());
        return called ? check_values(output) : called;
    }

    /// Calls with one pointer null (or none, with no such argument) or a bad length; nothing may be stored.
    AssertionResult run_bad(std::size_t null_argument, int len, KelStatus status, const ControlState* modes = nullptr) {
        place_all({});
        std::vector<void*> a = addresses();
        if (null_argument < a.size()) a[null_argument] = nullptr;
        for (std::size_t i = 0; i < slots.size(); ++i)
            if (slots[i].argument.role == Role::length) a[i] = &len;
        AssertionResult called = call(status, a, modes);
        for (const Slot& s : slots)
            if (called && s.argument.is_pointer() && !untouched(s)) called = AssertionFailure() << "stored; ";
        if (called) return called;
        if (null_argument < a.size()) called << "argument " << null_argument << " null, ";
        return called << "length argument " << len;
    }

    /// From now on expects what has just been stored, to the last bit; but where the row takes any NaN for a NaN, so
    /// does this: which of two operands' NaNs survives is the compiler's choice. Elsewhere other bits may be right.
    void expect_stored() {
        if (row.depends_on_place) return;
        for (Slot& s : slots)
            if (s.argument.is_output()) s.expected.assign(s.place, s.place + s.bytes);
        tolerance = std::min(tolerance, 0);
    }

    /// Takes over inputs, values and expected outputs of another call, each in their order.
    void take(const Call& other) {
        take(other, &Argument::is_input, &Slot::found);
        take(other, &Argument::is_value, &Slot::found);
        take(other, &Argument::is_output, &Slot::expected);
        expected_status = other.expected_status;
        tolerance = other.tolerance;
    }

private:
    const Row& row;
    int length;
    int tolerance = row.tolerance;
    bool loose = false;
    KelStatus expected_status = kelStatusOk;
    double slack[2] = {row.spare, row.spare};
    std::vector<Slot> slots;

    /// One value of so many is special, or none. What ends in one result shows the others only without many NaNs.
    int special_share(Random& random) const {
        if (row.is_finite) return 0;
        if (row.form != Form::reduction) return usual_special_share;
        const int shares[] = {usual_special_share, std::max(length, 2), 0};
        return shares[random.below(3)];
    }

    void draw(std::size_t i, Random& random, int specials) {
        Slot& s = slots[i];
        const std::size_t count = s.argument.is_array() ? length : 1;
        s.bytes = count * s.argument.type.size;
        if (s.argument.is_output()) s.expected.resize(s.bytes);
        if (s.argument.role == Role::length) {
            s.found.resize(sizeof length);
            std::memcpy(s.found.data(), &length, sizeof length);
        } else if (s.argument.role != Role::destination && s.argument.role != Role::result) {
            s.found.resize(s.bytes);
            fill_random(random, s.argument.type, s.found.data(), count, row.low, row.high, specials);
        }
    }

    void expect_here() {
        if (row.depends_on_place) expect();
    }

    std::vector<void*> addresses() {
        std::vector<void*> a;
        for (Slot& s : slots) a.push_back(s.argument.is_pointer() ? s.place : s.found.data());
        return a;
    }

    void place_all(const Placement& at) {
        for (std::size_t i = 0; i < slots.size(); ++i)
            if (slots[i].argument.is_pointer()) place_one(slots[i], guarded_memory(i), at, static_cast<int>(i));
    }

    // Shifted arrays of one call stand at different offsets.
    static void place_one(Slot& s, const GuardedMemory& memory, const Placement& at, int index) {
        switch (at.where) {
        case Placement::at_end:
            s.place = memory.end() - s.bytes;
            break;
        case Placement::at_start:
            s.place = memory.begin();
            break;
        case Placement::shifted:
            s.place = memory.begin() + margin + at.offset * (2 * index + 1) % vector_bytes;
        }
        s.lowest = std::max(s.place - margin, memory.begin());
        s.highest = std::min(s.place + s.bytes + margin, memory.end());
        std::memcpy(s.lowest, noise(), static_cast<std::size_t>(s.highest - s.lowest));
        if (s.argument.is_input()) std::memcpy(s.place, s.found.data(), s.bytes);
    }

    AssertionResult call(KelStatus wanted, const std::vector<void*>& a, const ControlState* modes = nullptr) {
        KelStatus status = kelStatusOk;
        ControlState after;
        const ControlState before = ControlState::current();
        const ControlState set = modes ? *modes : before;
        const bool survived = runs_without_fault([&] {
            set.load();
            status = row.call(row.function, a.data());
            after = ControlState::current();
            before.load();
        });
        before.load();
        if (!survived) return AssertionFailure() << "touched memory beyond its arrays; " << describe();
        if (status != wanted)
            return AssertionFailure() << "status " << status << " instead of " << wanted << "; " << describe();
        if (!after.same_modes(set)) return AssertionFailure() << "left other control words; " << describe();
        return AssertionSuccess();
    }

    std::string describe() const { return "length " + std::to_string(length) + ", "; }

    static bool margins_untouched(const Slot& s) {
        const auto below = static_cast<std::size_t>(s.place - s.lowest);
        const std::byte* behind = s.place + s.bytes;
        return std::memcmp(s.lowest, noise(), below) == 0 &&
               std::memcmp(behind, noise() + below + s.bytes, static_cast<std::size_t>(s.highest - behind)) == 0;
    }

    static bool untouched(const Slot& s) {
        const std::byte* inside = s.argument.is_input() ? s.found.data() : noise() + (s.place - s.lowest);
        return margins_untouched(s) && std::memcmp(s.place, inside, s.bytes) == 0;
    }

    AssertionResult check_all() const {
        for (std::size_t i = 0; i < slots.size(); ++i) {
            const Slot& s = slots[i];
            if (!s.argument.is_pointer()) continue;
            const bool clean = s.argument.role == Role::source ? untouched(s) : margins_untouched(s);
            if (!clean) return AssertionFailure() << "stored in or around argument " << i << "; " << describe();
            if (!s.argument.is_output()) continue;
            if (AssertionResult good = check_values(i); !good) return good;
        }
        return AssertionSuccess();
    }

    AssertionResult check_values(std::size_t i) const {
        const Slot& s = slots[i];
        const Type type = s.argument.type;
        const int accepted = s.argument.role == Role::carried ? Row::every_bit : tolerance;
        for (std::size_t at = 0; at < s.bytes; at += type.size)
            if (!matches(type, accepted, loose, slack, s.place + at, &s.expected[at]))
                return AssertionFailure() << "argument " << i << ", element " << at / type.size << ": "
                                          << print(type, s.place + at) << " instead of " << print(type, &s.expected[at])
                                          << operands(at / type.size) << "; " << describe();
        return AssertionSuccess();
    }

    std::string operands(std::size_t element) const {
        std::string text = " from";
        for (const Slot& s : slots) {
            const std::size_t at = s.argument.is_array() ? element : 0;
            if (s.argument.is_input()) text += " " + print(s.argument.type, &s.found[at * s.argument.type.size]);
            if (s.argument.is_value()) text += " value " + print(s.argument.type, s.found.data());
        }
        return text;
    }

    void take(const Call& other, bool (Argument::*pick)() const, std::vector<std::byte> Slot::*what) {
        auto from = other.slots.begin();
        for (Slot& s : slots) {
            if (!(s.argument.*pick)()) continue;
            while (!(from->argument.*pick)()) ++from;
            s.*what = *from++.*what;
        }
    }
};

// Value arguments

constexpr double scale_factors[] = {0, 1, 2, 7, 15, 16, 31, 33, 70, -1, -3, -9, -31, -40, INT_MAX, INT_MIN};

bool is_scaled(const Row& row) { return std::string_view(row.name).ends_with("Sfs"); }

/// What is one value: arguments by value, and what is carried.
std::vector<std::size_t> value_positions(const Row& row) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < row.arguments.size(); ++i)
        if (row.arguments[i].is_value() || row.arguments[i].role == Role::carried) found.push_back(i);
    return found;
}

int scale_position(const Row& row) { return is_scaled(row) ? static_cast<int>(row.arguments.size()) - 1 : -1; }

/// How many draws it takes to see every kind of value.
int draws(const Row& row) {
    if (is_scaled(row)) return static_cast<int>(std::size(scale_factors));
    return value_positions(row).empty() && row.form != Form::reduction ? 2 : 12;
}

/// A call with drawn inputs, the k-th scale factor and values that the row allows. The reference has not run yet.
Call drawn(const Row& row, int len, int k, Random& random) {
    Call call(row, len, random);
    const auto values = value_positions(row);
    for (std::size_t v = 0; v < values.size(); ++v) {
        const auto& choice = row.choices[std::min<std::size_t>(v, 3)];
        if (v < 4 && choice.count > 0)
            call.set(values[v], choice.items[(k + random.below(2)) % choice.count]);
        else if (static_cast<int>(values[v]) == scale_position(row))
            call.set(values[v], scale_factors[k % std::size(scale_factors)]);
    }
    return call;
}

// The tests

bool ends_in_one(const Row& row) { return row.form == Form::reduction || row.form == Form::update; }

bool stores(const Row& row, Kind kind) {
    return std::ranges::any_of(row.arguments, [=](auto& a) { return a.is_output() && a.type.kind == kind; });
}

std::vector<Type> input_types(const Row& row) {
    std::vector<Type> types;
    for (const Argument& a : row.arguments)
        if (a.is_input() && a.is_array()) types.push_back(a.type);
    return types;
}

/// True if every input there can be fits in one call.
bool can_sweep(const Row& row) {
    const auto types = input_types(row);
    if (ends_in_one(row) || types.empty()) return false;
    return types.size() == 1 ? types[0].size <= 2 : types.size() == 2 && types[0].size == 1 && types[1].size == 1;
}

void matches_reference(const Row& row) {
    Random random(row.name);
    tally = {};
    for (int len : {1, 2, 7, 33, 256, 1000, 4099})
        for (int k = 0; len >= row.shortest_length && k < draws(row); ++k) {
            Call call = drawn(row, len, k, random);
            call.expect();
            ASSERT_TRUE(call.run());
        }
    for (const int len : row.lengths)
        for (int k = 0; k < std::clamp((emulated ? 1 << 14 : 1 << 18) / len, 1, draws(row)); ++k) {
            Call call = drawn(row, len, len + k, random);
            call.expect();
            ASSERT_TRUE(call.run({Placement::shifted, 8 * k % vector_bytes})); // aligned in several ways
        }
    for (int k = 0; can_sweep(row) && k < draws(row); ++k) {
        Call call = drawn(row, 1 << 16, k, random);
        call.sweep();
        call.expect();
        ASSERT_TRUE(call.run());
    }
    for (int k = 0; row.has_every_size && k < effort(1000, 100); ++k) {
        Call call = drawn(row, row.shortest_length + k % 20, k, random);
        call.resize(random);
        call.expect();
        ASSERT_TRUE(call.run());
    }
    // One of a thousand, and what chance may add where few are compared.
    EXPECT_TRUE(!stores(row, Kind::f32) || tally.other_bits <= tally.compared / 1000 + 4)
        << tally.other_bits << " of " << tally.compared << " results";
}

/// The least and the largest integers over and over, as often as sums that are kept in few bits do not hold.
void takes_extremes(const Row& row) {
    Random random(row.name);
    int k = 0, parts = 0;
    for (const Type& type : input_types(row)) parts += type.parts;
    for (const int len : {2, 63, 64, 65, 16383, 16384, 16385, 65535, 65536, 65537, effort(300001, 70000)})
        for (int which = 0; which < 1 << parts; ++which) {
            Call call = drawn(row, len, k++, random);
            call.fill_with_extremes(which);
            call.expect();
            ASSERT_TRUE(call.run());
        }
}

/// Elements beside which scaled integers are ties or overflow: a power of two, three of it, and their neighbours.
std::vector<std::int64_t> telling_integers(Type type, bool few) {
    const auto [least, most] = range_of(type);
    std::vector<std::int64_t> all = {0, least, least + 1, most - 1, most};
    for (int shift = 0; most >> (shift + 1) > 0; ++shift)
        for (const std::int64_t odd : {1, 3})
            for (const std::int64_t beside : {-1, 0, 1})
                for (const std::int64_t sign : {1, -1}) {
                    if ((odd == 3 && few) || (sign < 0 && least == 0)) continue;
                    all.push_back(std::clamp<std::int64_t>(sign * ((odd << shift) + beside), least, most));
                }
    return all;
}

/// Every scale factor, from beyond the one at which all vanishes to beyond the one at which all saturates, on telling
/// integers and pairs of them, and with every factor on other ones of few bits.
void takes_every_factor(const Row& row) {
    const auto types = input_types(row);
    const bool few = types.size() > 1 || types[0].parts > 1;
    auto integers = telling_integers(types[0], few);
    integers.insert(integers.end(), row.telling_integers.begin(), row.telling_integers.end());
    const std::size_t fixed = integers.size();
    std::vector<int> factors = {INT_MIN, INT_MIN + 1, -1000, INT_MAX, INT_MAX - 1, 1000};
    for (int factor = -70; factor <= 70; factor += emulated ? 9 : 1) factors.push_back(factor);
    constexpr int most_pairs = 1024, stride = 7;
    Random random(row.name);
    const auto values = value_positions(row);
    for (const int factor : factors) {
        integers.resize(fixed);
        for (int x = factor & stride; !few && types[0].size <= 2 && x < 1 << 16; x += stride) integers.push_back(x);
        const int count = few ? most_pairs : static_cast<int>(integers.size());
        for (const int constant : {-1, 0, 1}) { // 0 and 1 are telling, too
            if (constant >= 0 && (values.size() == 1 || row.choices[0].count > 0)) continue;
            Call call = drawn(row, count, 0, random);
            call.fill_with(integers, random);
            if (constant >= 0) call.set(values[0], constant);
            call.set(static_cast<std::size_t>(scale_position(row)), factor);
            call.expect();
            ASSERT_TRUE(call.run()) << "factor " << factor;
        }
    }
}

/// Rows with a scale factor and integers that it scales exactly: what the x87 unit rounds may be off beside a tie.
bool scales_integers(const Row& row) {
    const auto types = input_types(row);
    return is_scaled(row) && !row.depends_on_rounding && !ends_in_one(row) && !types.empty() && !is_real(types[0].kind);
}

bool all_outputs_integer(const Row& row) { return !stores(row, Kind::f32) && !stores(row, Kind::f64); }

constexpr std::size_t none = ~std::size_t{0};

/// Every bad value, also beside those that are found after it; before or after a null array and a bad length.
void refuses_values(const Row& row, Random& random) {
    const auto values = value_positions(row);
    const int len = row.shortest_length + 36;
    std::size_t array = 0;
    while (!row.arguments[array].is_array()) ++array;
    for (std::size_t i = 0; i < row.refusals.size(); ++i) {
        const Refusal& r = row.refusals[i];
        Call call = drawn(row, len, 0, random);
        for (const Refusal& later : std::span(row.refusals).subspan(i))
            if (later.value != r.value) call.set(values[later.value], later.bad);
        call.set(values[r.value], r.bad);
        const bool first = row.checks_values_first;
        ASSERT_TRUE(call.run_bad(none, len, r.status)) << "value " << r.value << ": " << r.bad;
        ASSERT_TRUE(call.run_bad(array, len, first ? r.status : kelStatusNullPtr)) << r.bad;
        ASSERT_TRUE(call.run_bad(none, 0, first ? r.status : kelStatusBadSize)) << r.bad;
    }
}

void obeys_frame(const Row& row) {
    Random random(row.name);
    Call call = drawn(row, row.shortest_length + 36, 0, random);
    call.expect();
    for (int len : {0, -1, INT_MIN, row.shortest_length - 1}) ASSERT_TRUE(call.run_bad(none, len, kelStatusBadSize));
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
        const Argument a = row.arguments[i];
        if (!a.is_pointer() || row.nullable_arguments >> i & 1) continue;
        ASSERT_TRUE(call.run_bad(i, row.shortest_length + 36, kelStatusNullPtr));
        ASSERT_TRUE(call.run_bad(i, 0, row.checks_length_first ? kelStatusBadSize : kelStatusNullPtr));
    }
    // Whatever modes the caller has set stay set.
    for (const ControlState& modes : odd_modes) ASSERT_TRUE(call.run_bad(none, 0, kelStatusBadSize, &modes));
    refuses_values(row, random);
}

/// Integers do not feel the caller's modes; what follows the caller's rounding follows the x87 unit's.
void keeps_modes(const Row& row) {
    Random random(row.name);
    for (int k = 0; k < draws(row); ++k) {
        Call call = drawn(row, row.shortest_length + 36, k, random);
        call.expect();
        if (row.ignores_modes) {
            ASSERT_TRUE(call.run());
            call.expect_stored();
        }
        const bool same_results = all_outputs_integer(row) || row.depends_on_rounding || row.ignores_modes;
        for (const ControlState& modes : odd_modes) {
            if (row.depends_on_rounding) call.expect_rounded_by(modes);
            ASSERT_TRUE(call.run({}, &modes, same_results))
                << "under control words " << std::hex << modes.x87 << ", " << modes.mxcsr;
        }
    }
}

/// Real numbers do not feel the x87 word, and the other rounding modes of the SIMD unit in the last places only.
void feels_rounding_little(const Row& row) {
    constexpr int last_places = 2;
    Random random(row.name);
    for (int k = 0; k < draws(row); ++k) {
        Call call = drawn(row, row.shortest_length + 36, k, random);
        if (row.has_every_size && k % 2) call.resize(random);
        call.expect();
        Call loose = call;
        loose.loosen(last_places);
        for (const std::uint32_t mxcsr : {0x3F80, 0x5F80, 0x7F80}) {
            const ControlState modes = {default_modes.x87, mxcsr};
            ASSERT_TRUE(loose.run({}, &modes)) << "under MXCSR " << std::hex << mxcsr;
        }
        ASSERT_TRUE(call.run());
        call.expect_stored();
        for (ControlState modes : odd_modes) {
            modes.mxcsr = default_modes.mxcsr;
            ASSERT_TRUE(call.run({}, &modes)) << "under x87 word " << std::hex << modes.x87;
        }
    }
}

void stays_inside(const Row& row) {
    Random random(row.name);
    int narrowest = vector_bytes;
    for (const Argument& a : row.arguments)
        if (a.is_array()) narrowest = std::min<int>(narrowest, a.type.size);
    const int to = std::max(2 * vector_bytes / narrowest + 1, row.shortest_length + 8);
    for (int len = row.shortest_length; len <= to; ++len) {
        Call call = drawn(row, len, len, random);
        call.expect();
        ASSERT_TRUE(call.run({Placement::at_end}));
        ASSERT_TRUE(call.run({Placement::at_start}));
        for (int offset = 0; offset < vector_bytes; ++offset) ASSERT_TRUE(call.run({Placement::shifted, offset}));
    }
}

/// Sources and destinations of a row that may be one array.
std::vector<std::pair<std::size_t, std::size_t>> aliases(const Row& row) {
    std::vector<std::pair<std::size_t, std::size_t>> found;
    if (row.needs_disjoint) return found;
    for (std::size_t in = 0; in < row.arguments.size(); ++in)
        for (std::size_t out = 0; out < row.arguments.size(); ++out)
            if (row.arguments[in].role == Role::source && row.arguments[out].role == Role::destination &&
                row.arguments[in].type.size == row.arguments[out].type.size)
                found.emplace_back(in, out);
    return found;
}

/// The row that does out of place what this one does in place, if the family has it.
const Row* partner_of(const Row& row, const Rows& rows) {
    std::string name = row.name;
    const std::size_t mark = name.rfind("_I");
    if (row.form != Form::in_place || mark == std::string::npos) return nullptr;
    name.erase(mark + (name.ends_with("_ISfs") ? 1 : 0), name.ends_with("_ISfs") ? 1 : 2);
    for (const Row& other : rows)
        if (name == other.name) return &other;
    return nullptr;
}

void in_place_is_same(const Row& row, const Row* partner) {
    Random random(row.name);
    for (int len : {1, 2, 5, 31, 64, 100, 1025}) {
        if (len < row.shortest_length) continue;
        for (int k = 0; k < draws(row); ++k) {
            Call call = drawn(row, len, k, random);
            call.expect();
            ASSERT_TRUE(call.run());
            call.expect_stored();
            for (const auto& [in, out] : aliases(row))
                ASSERT_TRUE(call.run_aliased(in, out)) << "in place of argument " << in;
            if (!partner) continue;
            Call other(*partner, len, random);
            other.take(call);
            ASSERT_TRUE(other.run()) << partner->name;
        }
    }
}

class RowTest : public testing::Test {
public:
    explicit RowTest(std::function<void()> test) : body(std::move(test)) {}
    void TestBody() override { body(); }

private:
    std::function<void()> body;
};

std::vector<const Row*>& registered_rows() {
    static std::vector<const Row*> rows;
    return rows;
}

void add(const std::string& suite, const char* name, const std::function<void()>& body) {
    testing::RegisterTest(suite.c_str(), name, nullptr, nullptr, __FILE__, __LINE__,
                          [body]() -> testing::Test* { return new RowTest(body); });
}

} // namespace

const char* exported_name(void (*function)()) {
    Dl_info info;
    void* address = reinterpret_cast<void*>(function);
    if (dladdr(address, &info) == 0 || info.dli_saddr != address) {
        std::fprintf(stderr, "a row's function is no export of the library\n");
        std::abort();
    }
    return info.dli_sname;
}

std::vector<const Row*> all_rows() {
    std::sort(registered_rows().begin(), registered_rows().end(),
              [](const Row* a, const Row* b) { return std::string_view(a->name) < b->name; });
    return registered_rows();
}

void try_row(const Row& row, int len, int k, Random& random) {
    Call call = drawn(row, std::max(len, row.shortest_length), k, random);
    call.expect();
    constexpr decltype(Placement::where) places[] = {Placement::at_end, Placement::at_start, Placement::shifted};
    ASSERT_TRUE(call.run({places[random.below(3)], random.below(vector_bytes)})) << row.name;
    call.digest_results();
    for (const auto& [in, out] : aliases(row))
        ASSERT_TRUE(call.run_aliased(in, out)) << row.name << " in place of " << in;
}

bool add_rows(const char* family, const Rows& added) {
    static std::list<Rows> kept; // as long as the program
    const Rows& rows = kept.emplace_back(added);
    for (const Row& row : rows) {
        if (!row.is_driven_elsewhere) registered_rows().push_back(&row);
        const std::string suite = family + std::string("/").append(row.name);
        const Row* partner = partner_of(row, rows);
        add(suite, "matches_reference", [&row] { matches_reference(row); });
        if (ends_in_one(row) && !is_real(input_types(row)[0].kind))
            add(suite, "takes_extremes", [&row] { takes_extremes(row); });
        if (scales_integers(row)) add(suite, "takes_every_factor", [&row] { takes_every_factor(row); });
        add(suite, "obeys_frame", [&row] { obeys_frame(row); });
        add(suite, "keeps_modes", [&row] { keeps_modes(row); });
        if (row.tolerance >= 0 && !row.depends_on_rounding && !row.ignores_modes && !all_outputs_integer(row))
            add(suite, "feels_rounding_little", [&row] { feels_rounding_little(row); });
        add(suite, "stays_inside", [&row] { stays_inside(row); });
        if (partner || !aliases(row).empty())
            add(suite, "in_place_is_same", [&row, partner] { in_place_is_same(row, partner); });
    }
    return true;
}

} // namespace kels_test
