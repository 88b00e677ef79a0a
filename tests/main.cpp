// Entry of the test program: says which library and which data it runs with.

#include "kels/services.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>

namespace {

const char* loaded_library() {
    Dl_info info = {};
    dladdr(reinterpret_cast<void*>(kelsGetLibVersion), &info);
    return info.dli_fname;
}

// Where the loader is told to take another level, it must have found it.
TEST(Library, IsTheOneUnderTest) {
    const char* wanted = std::getenv("KELS_TEST_LIBRARY");
    if (!wanted) GTEST_SKIP() << "KELS_TEST_LIBRARY names no object";
    EXPECT_TRUE(std::filesystem::equivalent(loaded_library(), wanted)) << loaded_library() << " instead of " << wanted;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::printf("library %s\nseed %llu (KELS_TEST_SEED)\n", loaded_library(),
                static_cast<unsigned long long>(kels_test::seed()));
    return RUN_ALL_TESTS();
}
