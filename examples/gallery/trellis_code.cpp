// The grid's points have four labels, so that equal ones lie two steps apart; a type has two pairs of labels, its pairs
// of points lie two steps apart, too. What leaves a state is of four types, and so is what enters it.
#include "trellis_code.h"

#include "failure.h"

#include <algorithm>

namespace examples {
namespace {

/// Labels around a square; in the kit's tile the origin is at column 2 and row 2.
constexpr Kel8u labels[16] = {0, 1, 0, 1, 3, 2, 3, 2, 0, 1, 0, 1, 3, 2, 3, 2};

int label(int x, int y) { return labels[((x - 1) / 2 & 3) + 4 * ((y - 1) / 2 & 3)]; }

/// The kit's subset of a pair with labels a and b, or a + 2 and b + 2.
int type_of(const Pair& p) {
    const int a = label(p[0], p[1]), b = label(p[2], p[3]);
    return 4 * (a & 1) + ((b - a) & 3);
}

/// The systematic code with feedback whose parity checks are 23, 2 and 14 (octal): its lowest bit is that of the type.
int next_state(int state, int branch) {
    return (state >> 1) ^ (state & 1 ? 9 : 0) ^ (branch & 1 ? 1 : 0) ^ (branch & 2 ? 6 : 0);
}

int type_sent(int state, int branch) { return 2 * branch + (state & 1); }

/// The coordinate of the point that lies so many steps beside the reference point.
int coordinate(Kel16s reference, int steps) { return (reference - 128) / 128 + 1 + 2 * steps; }

} // namespace

TrellisCode::TrellisCode() {
    for (int i = 0; i < states * branches; ++i) next_[i] = Kel8u(next_state(i / branches, i % branches));
    for (int i = 0; i < 4096; ++i) {
        const Pair p = {2 * (i & 7) - 7, 2 * (i >> 3 & 7) - 7, 2 * (i >> 6 & 7) - 7, 2 * (i >> 9) - 7};
        pairs_[type_of(p)].push_back(p);
    }
    for (std::vector<Pair>& pairs : pairs_) { // those of least power
        std::ranges::stable_sort(pairs, {}, examples::power);
        pairs.resize(pairs_of_a_type);
    }
}

double TrellisCode::power() const {
    double sum = 0;
    for (const std::vector<Pair>& pairs : pairs_)
        for (const Pair& p : pairs) sum += examples::power(p);
    return sum / (types * pairs_of_a_type);
}

std::vector<Pair> TrellisCode::encoded(const std::vector<Kel16s>& bytes) const {
    std::vector<Pair> sent;
    int state = 0;
    for (const int byte : bytes) {
        const int branch = byte & 3;
        sent.push_back(pairs_[type_sent(state, branch)][std::size_t(byte >> 2)]);
        state = next_[state * branches + branch];
    }
    return sent;
}

std::vector<Pair> TrellisCode::decoded(const std::vector<Kel16sc>& received) const {
    const std::size_t count = received.size() / 2;
    std::vector<Kel32u> path(count * states);
    std::vector<Kel16sc> references(2 * count);
    std::array<Kel16u, states> errors, entered;
    errors.fill(30000);
    errors[0] = 0;
    for (std::size_t n = 0; n < count; ++n) {
        Kel32u nearest[16];
        Kel16u symbols[2 * types];
        for (std::size_t i = 0; i < 2; ++i)
            check(
                kelsGetVarPointDV_16sc(&received[2 * n + i], &references[2 * n + i], nearest + 8 * i, labels, states));
        check(kelsBuildSymblTableDV4D_16sc(nearest, symbols, states, 0));
        entered.fill(65535);
        check(
            kelsCalcStatesDV_16sc(errors.data(), next_, entered.data(), symbols, path.data(), states, int(n) * states));
        const Kel16u least = *std::ranges::min_element(entered);
        std::ranges::transform(entered, errors.begin(), [=](Kel16u e) { return Kel16u(e - least); });
    }

    std::vector<Pair> pairs(count);
    std::size_t state = std::size_t(std::ranges::min_element(errors) - errors.begin());
    for (std::size_t n = count; n-- > 0;) {
        constexpr int columns[] = {0, 1, 1, 0}, rows[] = {0, 0, 1, 1}; // of the kit's codes
        const Kel32u step = path[n * states + state], first = step & 255, second = step >> 8 & 255;
        const Kel16sc* reference = &references[2 * n];
        pairs[n] = {coordinate(reference[0].re, columns[first]), coordinate(reference[0].im, rows[first]),
                    coordinate(reference[1].re, columns[second]), coordinate(reference[1].im, rows[second])};
        state = step >> 16;
    }
    return pairs;
}

} // namespace examples
