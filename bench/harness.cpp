#include "harness.h"

#include "kels.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace bench {
namespace {

// Registration runs before main, from every file: these must exist as soon as the first one asks.
std::vector<Entry>& all_entries() {
    static std::vector<Entry> entries;
    return entries;
}

std::vector<std::string>& all_peers() {
    static std::vector<std::string> peers;
    return peers;
}

} // namespace

const std::vector<Entry>& entries() { return all_entries(); }

const std::vector<std::string>& peers() { return all_peers(); }

std::string object_file() {
    Dl_info object{};
    dladdr(reinterpret_cast<const void*>(&kelGetStatusString), &object);
    return object.dli_fname ? object.dli_fname : "";
}

std::string level() {
    const std::string file = object_file(), mark = "x86-64-";
    const std::size_t at = file.rfind(mark + 'v');
    return at == std::string::npos ? KELS_FIRST_LEVEL : file.substr(at + mark.size(), 2);
}

void Registration::name_peer(const char* peer) { all_peers().push_back(peer); }

std::string enter(const Work& work, const std::string& who) {
    std::string name = work.family + '/' + work.operation + '/' + work.size + '/' + who;
    std::ranges::replace(name, ' ', '_');
    all_entries().push_back({name, work, who});
    return name;
}

void show_progress(const std::string& benchmark_name) {
    using clock = std::chrono::steady_clock;
    static clock::time_point last;
    static const bool terminal = isatty(STDERR_FILENO);
    const auto pause = terminal ? std::chrono::milliseconds(200) : std::chrono::milliseconds(15000);
    if (clock::now() - last < pause) return;
    last = clock::now();
    if (terminal)
        std::fprintf(stderr, "\r%-78.78s\r", benchmark_name.c_str());
    else
        std::fprintf(stderr, "measuring %s\n", benchmark_name.c_str());
}

} // namespace bench
