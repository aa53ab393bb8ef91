#pragma once

#include <memory>

#include "platform/NotificationCenter.h"

namespace quorvane {

/// NSWorkspace's centre, which posts sleep and wake.
[[nodiscard]] std::unique_ptr<NotificationCenter> makeWorkspaceCenter();

/// The default centre, for notifications inside this process.
[[nodiscard]] std::unique_ptr<NotificationCenter> makeDefaultCenter();

} // namespace quorvane
