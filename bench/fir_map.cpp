#include "fir_map.h"

#include "data.h"
#include "harness.h"

#include <kels.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>
#include <vector>

namespace bench {
namespace {

using Owner = std::unique_ptr<KelFirContext, KelStatus (*)(KelFirContext*)>;

/// Powers of two from `low` to `high`, each between its neighbours.
std::vector<int> powers_and_neighbours(int low, int high) {
    std::vector<int> all;
    for (int power = low; power <= high; power *= 2)
        for (int n : {power - 1, power, power + 1})
            if (n >= 1 && n <= high && (all.empty() || n > all.back())) all.push_back(n);
    return all;
}

/// Nanoseconds of a call, the least of some short runs.
template <class Call>
double nanoseconds(Call call) {
    using Clock = std::chrono::steady_clock;
    double least = INFINITY;
    for (int run = 0; run < 3; ++run) {
        int calls = 0;
        const auto begin = Clock::now();
        std::chrono::duration<double, std::nano> passed{};
        while (passed.count() < 1e5) {
            call();
            ++calls;
            passed = Clock::now() - begin;
        }
        least = std::min(least, passed.count() / calls);
    }
    return least;
}

struct Cell {
    double out_of_place = INFINITY, in_place = INFINITY;
};

struct Map {
    std::vector<int> taps = powers_and_neighbours(16, 8192), blocks = powers_and_neighbours(1, 65536);
    std::vector<std::vector<Cell>> rows; ///< by taps, then by blocks: nanoseconds a sample

    /// Round after round, and of every cell the least: a machine that is slow for a while spoils one of them.
    void measure() {
        constexpr int rounds = 6;
        rows.assign(taps.size(), std::vector<Cell>(blocks.size()));
        for (int round = 0; round < rounds; ++round)
            for (std::size_t t = 0; t < taps.size(); ++t) {
                std::fprintf(stderr, "\rround %d of %d, %d taps   ", round + 1, rounds, taps[t]);
                measure_row(taps[t], rows[t]);
            }
        std::fprintf(stderr, "\r");
    }

    void measure_row(int count, std::vector<Cell>& row) const {
        const auto source = noise<Kel32f>(blocks.back());
        const auto result = zeros<Kel32f>(blocks.back());
        KelFirContext* context = nullptr;
        kelsFIRInitAlloc_32f(&context, noise<Kel32f>(count).get(), count, nullptr);
        const Owner owner(context, kelsFIRFree_32f);
        for (std::size_t b = 0; b < blocks.size(); ++b) {
            const int block = blocks[b];
            const double apart = nanoseconds([&] { kelsFIR_32f(source.get(), result.get(), block, context); });
            std::copy_n(source.get(), block, result.get());
            // Filtered again and again, noise may grow beyond all numbers: every call gets its samples anew.
            const double copy = nanoseconds([&] { std::copy_n(source.get(), block, result.get()); });
            const double in_place = nanoseconds([&] {
                std::copy_n(source.get(), block, result.get());
                kelsFIR_32f_I(result.get(), block, context);
            });
            row[b].out_of_place = std::min(row[b].out_of_place, apart / block);
            row[b].in_place = std::min(row[b].in_place, std::max(in_place - copy, 0.0) / block);
        }
    }

    void print() const {
        std::printf("Nanoseconds a sample of kelsFIR_32f, blocks down, taps across, powers of two\n\n%8s", "");
        for (int count : taps)
            if ((count & (count - 1)) == 0) std::printf("%8d", count);
        for (std::size_t b = 0; b < blocks.size(); ++b) {
            if ((blocks[b] & (blocks[b] - 1)) != 0) continue;
            std::printf("\n%8d", blocks[b]);
            for (std::size_t t = 0; t < taps.size(); ++t)
                if ((taps[t] & (taps[t] - 1)) == 0) std::printf("%8.2f", rows[t][b].out_of_place);
        }
        std::printf("\n\n");
    }

    /// The steepest steps between blocks of neighbouring lengths.
    template <class Cost>
    void print_steps(const char* form, Cost cost) const {
        struct Step {
            double ratio;
            int taps, block;
        };
        std::vector<Step> steps;
        for (std::size_t t = 0; t < taps.size(); ++t)
            for (std::size_t b = 1; b < blocks.size(); ++b)
                if (blocks[b] == blocks[b - 1] + 1 && blocks[b] > 4) {
                    const double here = cost(rows[t][b]), before = cost(rows[t][b - 1]);
                    steps.push_back({std::max(here / before, before / here), taps[t], blocks[b]});
                }
        std::ranges::sort(steps, [](const Step& a, const Step& b) { return a.ratio > b.ratio; });
        const auto steep = std::ranges::count_if(steps, [](const Step& step) { return step.ratio > 1.3; });
        std::printf("%s: of %zu steps from a block to one a sample longer, %td change the cost by more than 1.3", form,
                    steps.size(), steep);
        for (std::size_t i = 0; i < 3; ++i)
            std::printf("%s %.2f (%d taps, %d samples)", i == 0 ? "; the steepest" : ",", steps[i].ratio, steps[i].taps,
                        steps[i].block);
        std::printf("\n");
    }

    bool draw(const char* file) const {
        std::ostringstream script;
        script << "set terminal pngcairo noenhanced size 1100,760 font ',12'\nset output '" << file << "'\n"
               << "set logscale xyz\nset logscale cb\nset view map\nset pm3d map corners2color c1\n"
               << "set title 'kelsFIR_32f, level " << level() << ": nanoseconds a sample'\n"
               << "set xlabel 'samples a block'\nset ylabel 'taps'\nset xrange [1:65536]\nset yrange [15:8192]\n"
               << "set palette defined (0 '#0b1b4d', 1 '#1f77b4', 2 '#7fd6a5', 3 '#f5e663', 4 '#e4572e')\n"
               << "set xtics 1,4\nset ytics (16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192)\n"
               << "splot '-' using 1:2:3 with pm3d notitle\n";
        for (std::size_t t = 0; t < taps.size(); ++t) {
            for (std::size_t b = 0; b < blocks.size(); ++b)
                script << blocks[b] << ' ' << taps[t] << ' ' << rows[t][b].out_of_place << '\n';
            script << '\n';
        }
        script << "e\n";
        std::FILE* gnuplot = popen("gnuplot", "w");
        if (!gnuplot) return false;
        const std::string text = script.str();
        const bool written = std::fwrite(text.data(), 1, text.size(), gnuplot) == text.size();
        return pclose(gnuplot) == 0 && written;
    }
};

} // namespace

int map_fir() {
    constexpr const char* file = "fir-map.png";
    Map map;
    map.measure();
    map.print();
    map.print_steps("Out of place", [](const Cell& cell) { return cell.out_of_place; });
    map.print_steps("In place", [](const Cell& cell) { return cell.in_place; });
    if (!map.draw(file)) {
        std::fprintf(stderr, "kels-bench: gnuplot could not draw %s\n", file);
        return EXIT_FAILURE;
    }
    std::printf("Picture    %s\n", file);
    return EXIT_SUCCESS;
}

} // namespace bench
