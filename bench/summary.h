// The reporter of the benchmarks: a table an operation, this library beside its peers.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace bench {

/// Keeps the least time of every benchmark over its repetitions, and prints the tables when all have run.
class Summary : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::map<std::string, double> nanoseconds_; ///< a call, by the benchmark's name
};

} // namespace bench
