// What a benchmark is here: a piece of work of some size that this library and its peers do, each as a contender.
// Contenders of one work may be registered in different files; the summary puts them side by side.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace bench {

/// One line of the summary. Works with the same operation stand in one table, works of one size in one line.
struct Work {
    std::string family;    ///< fft, fir ...: what a run may be limited to
    std::string operation; ///< heading of the table
    std::string size;      ///< of the line
    double elements;       ///< per call
    double amount;         ///< bytes or floating-point operations per call
    const char* rate;      ///< "GB/s" or "GFLOP/s"
};

inline const std::string ours = "kels";

/// Others than this library; its own works that stand beside a work as a measure of it have names that begin as it has.
inline bool is_peer(const std::string& who) { return !who.starts_with(ours); }

/// A work and who does it; its benchmark goes by the name.
struct Entry {
    std::string name;
    Work work;
    std::string who;
};

/// All that is registered, this library's works first.
const std::vector<Entry>& entries();

/// Keeps the entry and gives the benchmark's name.
std::string enter(const Work& work, const std::string& who);

/// Tells a waiting user, now and then, what is being measured.
void show_progress(const std::string& benchmark_name);

/// Registers a contender. `make()` prepares data and plans and gives a callable that does the work once; it is called
/// anew for every measurement, and its result owns all that it needs.
template <class Make>
void contend(const Work& work, const std::string& who, Make make) {
    const std::string name = enter(work, who);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        show_progress(name);
        auto call = make();
        for (auto _ : state) {
            call();
            benchmark::ClobberMemory();
        }
        const double calls = double(state.iterations());
        state.counters["elements/s"] = benchmark::Counter(work.elements * calls, benchmark::Counter::kIsRate);
        state.counters[work.rate] = benchmark::Counter(1e-9 * work.amount * calls, benchmark::Counter::kIsRate);
    });
}

/// A file of contenders has one object of this type, which registers them before main begins. The file of a peer is
/// compiled when the peer is installed, and gives its name.
struct Registration {
    template <class Register>
    explicit Registration(Register register_all, const char* peer = nullptr) {
        register_all();
        if (peer) name_peer(peer);
    }
    static void name_peer(const char* peer);
};

/// The file of this library's object that the loader took, and its level: base, v3, v4.
std::string object_file();
std::string level();

/// The peers in this program.
const std::vector<std::string>& peers();

} // namespace bench
