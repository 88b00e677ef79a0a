// The fuzzer: kels-fuzz <target> [options and directories of libFuzzer's]. Without a target it names them.

#include "fuzz/sequence.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

// The environment hands the target's name on to the processes that the fuzzer starts itself.
constexpr const char* variable = "KELS_FUZZ_TARGET";
const kels_test::Target* chosen = nullptr;

void choose(std::string_view name) {
    for (const kels_test::Target& target : kels_test::targets())
        if (name == target.name) chosen = &target;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerInitialize(int* argc, char*** argv) {
    testing::FLAGS_gtest_throw_on_failure = true; // and nobody catches
    if (*argc > 1) choose((*argv)[1]);
    if (chosen) {
        setenv(variable, chosen->name, 1);
        (*argv)[1] = (*argv)[0];
        ++*argv, --*argc;
    } else if (const char* inherited = std::getenv(variable)) {
        choose(inherited);
    }
    if (chosen) return 0;
    for (const kels_test::Target& target : kels_test::targets()) std::puts(target.name);
    std::exit(*argc > 1);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kels_test::run(*chosen, {data, size});
    return 0;
}
