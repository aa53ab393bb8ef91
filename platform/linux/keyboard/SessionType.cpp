#include "platform/linux/keyboard/SessionType.h"

#include <QtGlobal>

namespace quorvane {

bool isX11Session() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") &&
           qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace quorvane
