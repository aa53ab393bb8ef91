#pragma once

#include "platform/StopResult.h"

namespace quorvane {

/// Ends this user's running applications of our bundle identifier: asks each to quit, and forces it
/// to after a second. Returns within 2 s for each. Main thread only.
[[nodiscard]] StopResult stopRunning();

} // namespace quorvane
