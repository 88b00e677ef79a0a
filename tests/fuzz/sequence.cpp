#include "fuzz/sequence.h"

namespace kels_test {

std::vector<Target>& targets() {
    static std::vector<Target> all;
    return all;
}

void run(const Target& target, std::span<const std::uint8_t> bytes) {
    Input in(bytes);
    const long live = live_blocks();
    target.drives[static_cast<std::size_t>(in.below(static_cast<int>(target.drives.size())))](in);
    EXPECT_EQ(live_blocks(), live) << target.name << ": blocks left";
}

} // namespace kels_test
