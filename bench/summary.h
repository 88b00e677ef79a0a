// The reporter of the benchmarks: a table an operation, this library beside its peers.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>

namespace bench {

/// Keeps the least time of every benchmark over its repetitions, and prints the tables when all have run. With a file
/// it writes the same as rows of tab-separated values there, for report.py.
class Summary : public benchmark::BenchmarkReporter {
public:
    explicit Summary(std::string rows_file) : rows_file_(std::move(rows_file)) {}
    bool ReportContext(const Context&) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::string rows_file_;
    std::map<std::string, double> nanoseconds_; ///< a call, by the benchmark's name
};

} // namespace bench
