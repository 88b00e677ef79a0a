#include "speech.h"

#include "failure.h"

#include <cstdlib>
#include <sstream>

namespace examples {

std::filesystem::path find_speech(const std::string& name) {
    const char* listed = std::getenv("XDG_DATA_DIRS");
    std::istringstream directories(listed && *listed ? listed : "/usr/local/share:/usr/share");
    for (std::string directory; std::getline(directories, directory, ':');)
        if (auto file = std::filesystem::path(directory) / "sounds/alsa" / name; exists(file)) return file;
    throw Failure("The recording " + name + " of the package alsa-utils is not installed.");
}

} // namespace examples
