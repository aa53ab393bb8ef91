#include "platform/linux/keyboard/SessionType.h"

#include <cstdlib>

namespace quorvane {

namespace {

bool isSet(const char* variable) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment while we run.
    const char* value = std::getenv(variable);
    return value && *value;
}

} // namespace

bool isX11Session() {
    return isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY");
}

} // namespace quorvane
