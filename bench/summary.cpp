#include "summary.h"

#include "harness.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace bench {
namespace {

struct Line {
    const Work* work;
    std::map<std::string, double> nanoseconds; ///< by contender
};

struct Table {
    std::string family, operation;
    std::vector<std::string> peers;
    std::vector<Line> lines;
};

/// The element for which `matches` holds, or the new one at the end.
template <class T, class Matches>
T& find_or_add(std::vector<T>& list, Matches matches, T fresh) {
    const auto found = std::ranges::find_if(list, matches);
    return found != list.end() ? *found : list.emplace_back(std::move(fresh));
}

std::vector<Table> tables_of(const std::map<std::string, double>& nanoseconds) {
    std::vector<Table> tables;
    for (const Entry& entry : entries()) {
        const Work& work = entry.work;
        const auto measured = nanoseconds.find(entry.name);
        if (measured == nanoseconds.end()) continue;
        Table& table = find_or_add(
            tables, [&](const Table& t) { return t.family == work.family && t.operation == work.operation; },
            Table{work.family, work.operation, {}, {}});
        Line& line = find_or_add(
            table.lines, [&](const Line& l) { return l.work->size == work.size; }, Line{&work, {}});
        line.nanoseconds[entry.who] = measured->second;
        if (entry.who != ours)
            find_or_add(
                table.peers, [&](const std::string& peer) { return peer == entry.who; }, entry.who);
    }
    return tables;
}

/// Three digits and a unit.
std::string time_text(double nanoseconds) {
    constexpr std::pair<double, const char*> units[] = {{1e9, "s"}, {1e6, "ms"}, {1e3, "us"}, {1, "ns"}};
    char text[32];
    for (const auto& [scale, unit] : units)
        if (nanoseconds >= 0.9995 * scale || scale == 1) {
            const double value = nanoseconds / scale;
            std::snprintf(text, sizeof text, "%.*f %s", value < 9.995 ? 2 : value < 99.95 ? 1 : 0, value, unit);
            break;
        }
    return text;
}

void print_contender(const Line& line, const std::string& who) {
    const auto found = line.nanoseconds.find(who);
    if (found == line.nanoseconds.end()) {
        std::printf(" %10s %9s %8s", "-", "-", "-");
        return;
    }
    const double time = found->second;
    std::printf(" %10s %9.4f %8.1f", time_text(time).c_str(), time / line.work->elements, line.work->amount / time);
}

void print_ratio(const Line& line, const std::string& peer) {
    const auto mine = line.nanoseconds.find(ours), theirs = line.nanoseconds.find(peer);
    if (mine == line.nanoseconds.end() || theirs == line.nanoseconds.end())
        std::printf(" %7s", "-");
    else
        std::printf(" %7.2f", theirs->second / mine->second);
}

void print(const Table& table) {
    const char* rate = table.lines.front().work->rate;
    std::printf("\n%s: %s\n%-10s | %-29s", table.family.c_str(), table.operation.c_str(), "", ours.c_str());
    for (const std::string& peer : table.peers) std::printf(" | %-37s", peer.c_str());
    std::printf("\n%-10s | %10s %9s %8s", "", "call", "ns/elem", rate);
    for (std::size_t i = 0; i < table.peers.size(); ++i)
        std::printf(" | %10s %9s %8s %7s", "call", "ns/elem", rate, "ratio");
    std::printf("\n");
    for (const Line& line : table.lines) {
        std::printf("%10s |", line.work->size.c_str());
        print_contender(line, ours);
        for (const std::string& peer : table.peers) {
            std::printf(" |");
            print_contender(line, peer);
            print_ratio(line, peer);
        }
        std::printf("\n");
    }
}

/// How the rows that peers have too stand against the best of them.
void print_standing(const std::vector<Table>& tables) {
    int rows = 0, ahead = 0;
    double logarithms = 0, worst = 0;
    std::string worst_row;
    for (const Table& table : tables)
        for (const Line& line : table.lines) {
            const auto mine = line.nanoseconds.find(ours);
            double best = 0;
            for (const auto& [who, time] : line.nanoseconds)
                if (is_peer(who) && (best == 0 || time < best)) best = time;
            if (mine == line.nanoseconds.end() || best == 0) continue;
            const double ratio = best / mine->second;
            if (rows++ == 0 || ratio < worst) {
                worst = ratio;
                worst_row = table.operation + " " + line.work->size;
            }
            ahead += ratio >= 1;
            logarithms += std::log(ratio);
        }
    if (rows > 0)
        std::printf("\nLevel %s: %d rows beside a peer, %d ahead of the best of them; ratio %.2f on geometric average, "
                    "%.2f at worst (%s)\n",
                    level().c_str(), rows, ahead, std::exp(logarithms / rows), worst, worst_row.c_str());
}

void write_rows(const std::vector<Table>& tables, const std::string& name) {
    std::FILE* file = std::fopen(name.c_str(), "w");
    if (!file) {
        std::perror(("kels-bench: " + name).c_str());
        std::exit(EXIT_FAILURE);
    }
    for (const Table& table : tables)
        for (const Line& line : table.lines)
            for (const auto& [who, time] : line.nanoseconds)
                std::fprintf(file, "%s\t%s\t%s\t%s\t%s\t%.6g\t%.6g\n", level().c_str(), table.family.c_str(),
                             table.operation.c_str(), line.work->size.c_str(), who.c_str(), time, line.work->elements);
    std::fclose(file);
}

} // namespace

bool Summary::ReportContext(const Context&) { return true; }

void Summary::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
        const double time = 1e9 * run.cpu_accumulated_time / double(run.iterations);
        const auto [least, fresh] = nanoseconds_.insert({run.run_name.function_name, time});
        if (!fresh) least->second = std::min(least->second, time);
    }
}

void Summary::Finalize() {
    const std::vector<Table> tables = tables_of(nanoseconds_);
    for (const Table& table : tables) print(table);
    print_standing(tables);
    if (!rows_file_.empty()) write_rows(tables, rows_file_);
    std::printf("\nLeast processor time over the repetitions; ratio: the peer's time to ours, above 1 where ours is "
                "shorter.\n");
}

} // namespace bench
