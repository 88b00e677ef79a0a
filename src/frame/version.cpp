// The version record and the exported constants. The headers state the version, and the build makes a text of it.

#include "kels/services.h"

#include <bit>

namespace {

constexpr kelLibraryVersion record = {
    .major = KELS_VERSION_MAJOR,
    .minor = KELS_VERSION_MINOR,
    .majorBuild = KELS_VERSION_PATCH,
    .build = 39,
    .targetCpu = "q3",
    .name = "kelsq3",
    .version = KELS_VERSION " build 39",
    .buildDate = __DATE__,
};

} // namespace

extern "C" {

const kelLibraryVersion* kelsGetLibVersion(void) { return &record; }

constinit const Kel32f kelConstantOfNAN_32f = std::bit_cast<Kel32f>(0xFFC00000u);
constinit const Kel32f kelConstantOfINF_32f = std::bit_cast<Kel32f>(0x7F800000u);
constinit const Kel32f kelConstantOfINF_NEG_32f = std::bit_cast<Kel32f>(0xFF800000u);
constinit const Kel64f kelConstantOfNAN_64f = std::bit_cast<Kel64f>(0xFFF8000000000000ull);
constinit const Kel64f kelConstantOfINF_64f = std::bit_cast<Kel64f>(0x7FF0000000000000ull);
constinit const Kel64f kelConstantOfINF_NEG_64f = std::bit_cast<Kel64f>(0xFFF0000000000000ull);
}
