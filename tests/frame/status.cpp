// Status codes have their numbers and texts, those of statuses.txt.

#include "kels/status.h"

#include <gtest/gtest.h>

#include <climits>
#include <fstream>
#include <map>
#include <string>

namespace {

std::map<int, std::string> kept_texts() {
    std::map<int, std::string> texts;
    std::ifstream file(KELS_STATUSES);
    for (int number; file >> number >> std::ws;) std::getline(file, texts[number]);
    return texts;
}

const char* text_of(int code) { return kelGetStatusString(static_cast<KelStatus>(code)); }

TEST(Status, EveryNumberHasItsText) {
    auto texts = kept_texts();
    EXPECT_EQ(texts.size(), 121U);
    for (int number = -10010; number <= 1000; ++number) {
        const std::string wanted = texts.contains(number) ? texts[number] : "Unknown Status Code";
        EXPECT_EQ(text_of(number), wanted) << number;
        EXPECT_EQ(KELS_FAILED(number), number < 0) << number;
    }
}

// Not even a number that no enumeration of these names could hold, as only C can pass it.
#if defined(__clang__)
[[clang::no_sanitize("function")]] // the types of the call and of the function differ for that
#endif
const char*
text_of_any(int number) {
    return reinterpret_cast<const char* (*)(int)>(kelGetStatusString)(number);
}

TEST(Status, AnyNumberMayBeAskedFor) {
    for (int number : {INT_MIN, -32769, 32768, INT_MAX})
        EXPECT_STREQ(text_of_any(number), "Unknown Status Code") << number;
}

} // namespace
