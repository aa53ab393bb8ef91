#pragma once

#include "base/NonCopyable.h"

namespace quorvane {

/// Whether the program is opened when the person logs in.
enum class LoginItemStatus { NotRegistered = 0, Enabled = 1, RequiresApproval = 2, NotFound = 3 };

/// What the desktop knows of this program. Main thread only.
class Application : NonCopyable {
public:
    virtual ~Application() = default;

    [[nodiscard]] virtual LoginItemStatus loginItemStatus() const = 0;
    /// Whether the program is frontmost: one of its windows has the keyboard.
    [[nodiscard]] virtual bool isActive() const = 0;
};

} // namespace quorvane
