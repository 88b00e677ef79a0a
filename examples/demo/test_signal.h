// Recordings that need no file: the demo makes its own.
#pragma once

#include "wav_file.h"

#include <optional>
#include <string>
#include <string_view>

namespace examples::demo {

/// A few seconds of a signal by its name (`tone`, `sweep`, `noise`), or nothing if none has that name.
std::optional<Recording> make_signal(std::string_view name);

/// All names, as a sentence lists them.
std::string signal_names();

} // namespace examples::demo
