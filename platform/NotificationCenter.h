#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/NonCopyable.h"

namespace quorvane {

/// The workspace centre's notifications.
namespace WorkspaceNotification {
inline constexpr std::string_view screensDidSleep = "NSWorkspaceScreensDidSleepNotification";
inline constexpr std::string_view screensDidWake = "NSWorkspaceScreensDidWakeNotification";
inline constexpr std::string_view didWake = "NSWorkspaceDidWakeNotification";
} // namespace WorkspaceNotification

/// Delivers named notifications to whoever observes the name, in the order of registration.
/// Blocks run on the main thread; all calls are made there.
class NotificationCenter : NonCopyable {
public:
    /// Stands for one registration; never zero.
    using Token = std::uint64_t;

    virtual ~NotificationCenter() = default;

    /// Registers `block` for `name`, from whichever sender.
    virtual Token addObserver(std::string_view name, std::function<void()> block) = 0;

    /// Ends a registration; a token that is not (or no longer) known is ignored. May be called from
    /// inside a block; a removed block does not run again, not even for a notice under way.
    virtual void removeObserver(Token token) = 0;

    /// Delivers `name` to its observers before it returns.
    virtual void post(std::string_view name) = 0;
};

} // namespace quorvane
