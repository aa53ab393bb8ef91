#pragma once

#include "platform/StopResult.h"

namespace quorvane {

/// Ends this user's running instance, whatever it is doing: asks it over the session bus to close
/// its window, after 0.5 s sends SIGTERM, after another second SIGKILL. Finds it by its name on the
/// bus or by its lock. Needs neither a display nor a QGuiApplication, and returns within 3 s.
[[nodiscard]] StopResult stopRunning();

} // namespace quorvane
