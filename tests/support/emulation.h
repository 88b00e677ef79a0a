// Less of the same where an emulator runs the tests: there a reference in extended precision takes a hundred times as
// long.
#pragma once

#include <cstdlib>

namespace kels_test {

/// Whether KELS_TEST_EMULATED is set.
inline const bool emulated = std::getenv("KELS_TEST_EMULATED") != nullptr;

/// How much of something a test takes.
inline int effort(int native, int in_emulator) { return emulated ? in_emulator : native; }

} // namespace kels_test
