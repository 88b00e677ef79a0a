// kels-bench [family] [--rows file] [benchmark flags]: measures this library and the installed peers in one run.
// kels-bench fir --map: what a sample of a FIR filter costs, over taps and block lengths, as a picture.
#include "fir_map.h"
#include "harness.h"
#include "summary.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string_view>

namespace bench {
namespace {

// Other work on the machine comes and goes: contenders take turns, in short pieces, and the best piece of each counts.
constexpr const char* default_flags[] = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=9",
                                         "--benchmark_min_time=0.01"};

std::set<std::string> families() {
    std::set<std::string> names;
    for (const Entry& entry : entries()) names.insert(entry.work.family);
    return names;
}

std::string joined(const auto& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

/// The family that the first argument names, which is taken away then; empty for all of them.
std::string take_family(std::vector<char*>& arguments) {
    if (arguments.size() < 2 || arguments[1][0] == '-') return "";
    std::string family = arguments[1];
    arguments.erase(arguments.begin() + 1);
    if (family == "all") return "";
    if (families().contains(family)) return family;
    std::fprintf(stderr, "kels-bench: there is no family '%s'; there are: %s\n", family.c_str(),
                 joined(families()).c_str());
    std::exit(EXIT_FAILURE);
}

/// The file that --rows names; both are taken away then.
std::string take_rows_file(std::vector<char*>& arguments) {
    const auto flag = std::ranges::find(arguments, std::string_view("--rows"));
    if (arguments.end() - flag < 2) return "";
    const std::string file = flag[1];
    arguments.erase(flag, flag + 2);
    return file;
}

void print_heading() {
    std::printf("Measuring  %s\n", object_file().c_str());
    std::printf("Beside     %s\n", joined(peers()).c_str());
    if (*KELS_BENCH_MISSING) std::printf("Missing    %s\n", KELS_BENCH_MISSING);
    std::fflush(stdout);
}

int run(std::vector<char*> arguments) {
    const std::string family = take_family(arguments);
    if (family == "fir" && arguments.size() > 1 && arguments[1] == std::string("--map")) return map_fir();
    const std::string rows_file = take_rows_file(arguments);
    // Flags that the user gives come after these, and win.
    for (const char* flag : default_flags) arguments.insert(arguments.begin() + 1, const_cast<char*>(flag));
    int count = int(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return EXIT_FAILURE;
    if (!family.empty()) benchmark::SetBenchmarkFilter('^' + family + "/.*" + benchmark::GetBenchmarkFilter());
    print_heading();
    Summary summary(rows_file);
    return benchmark::RunSpecifiedBenchmarks(&summary) > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace bench

int main(int argc, char** argv) { return bench::run({argv, argv + argc}); }
