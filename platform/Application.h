#pragma once

#include "base/NonCopyable.h"

namespace quorvane {

/// Whether the program is a login item: opened when the user logs in.
enum class LoginItemStatus { NotRegistered = 0, Enabled = 1, RequiresApproval = 2, NotFound = 3 };

/// This program as the desktop sees it. Main thread only.
class Application : NonCopyable {
public:
    virtual ~Application() = default;

    [[nodiscard]] virtual LoginItemStatus loginItemStatus() const = 0;
    /// Whether one of the program's windows has the keyboard focus.
    [[nodiscard]] virtual bool isActive() const = 0;
};

} // namespace quorvane
