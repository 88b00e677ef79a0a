// The fuzzer's targets as tests: kept inputs, random ones, and the digests of what functions store on the way, which
// are the same at every level and on 32-bit x86. KELS_TEST_NEW_DIGESTS names a file for a new table.

#include "fuzz/sequence.h"
#include "support/emulation.h"

#include <cinttypes>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace kels_test;

const std::filesystem::path here = KELS_FUZZ_DIRECTORY;

std::vector<std::uint8_t> random_bytes(Random& random, int most) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(1 + random.below(most)));
    for (std::uint8_t& b : bytes) b = static_cast<std::uint8_t>(random.bits());
    return bytes;
}

TEST(Sequences, OfKeptInputs) {
    int count = 0;
    for (const Target& target : targets()) {
        const auto directory = here / "corpus" / target.name;
        if (!std::filesystem::exists(directory)) continue;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            SCOPED_TRACE(entry.path());
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            run(target, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
            ++count;
        }
    }
    EXPECT_GT(count, 0) << here;
}

TEST(Sequences, OfRandomInputs) {
    Random random("sequences");
    for (const Target& target : targets())
        for (int i = 0, all = effort(300, 10); i < all; ++i) {
            const auto bytes = random_bytes(random, 60);
            run(target, bytes);
            ASSERT_FALSE(HasFailure()) << target.name << ", input " << i;
        }
}

Digests digests_of_fixed_run() {
    Digests sums;
    digests = &sums;
    Random random(std::uint64_t{1});
    for (const Target& target : targets())
        for (std::size_t i = 0; i < 24 * target.drives.size(); ++i) {
            auto bytes = random_bytes(random, 60);
            bytes[0] = static_cast<std::uint8_t>(i % target.drives.size());
            run(target, bytes);
        }
    for (const Row* row : all_rows()) {
        Random data(std::uint64_t{2});
        for (int k = 0; k < 9; ++k) try_row(*row, 1 + 5 * k * k, k, data);
    }
    digests = nullptr;
    return sums;
}

std::string line(const std::string& function, std::uint64_t digest) {
    char text[200];
    std::snprintf(text, sizeof text, "%-40s %016" PRIx64, function.c_str(), digest);
    return text;
}

TEST(Digests, AreTheKeptOnes) {
    const Digests sums = digests_of_fixed_run();
    if (const char* path = std::getenv("KELS_TEST_NEW_DIGESTS")) {
        std::ofstream file(path);
        for (const auto& [function, sum] : sums) file << line(function, sum) << '\n';
    }
    Digests kept;
    std::ifstream file(here / "digests.txt");
    std::string function;
    for (std::uint64_t sum; file >> function >> std::hex >> sum;) kept[function] = sum;
    for (const auto& [name, sum] : sums) EXPECT_EQ(line(name, sum), line(name, kept[name]));
    for (const auto& [name, sum] : kept) EXPECT_TRUE(sums.contains(name)) << name << " stores nothing";
}

} // namespace
