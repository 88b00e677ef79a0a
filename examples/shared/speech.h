// The spoken recordings that come with Debian's alsa-utils.
#pragma once

#include <filesystem>
#include <string>

namespace examples {

/// Where this system keeps a recording, such as Front_Center.wav.
std::filesystem::path find_speech(const std::string& name);

} // namespace examples
