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

/// Delivers named notifications to the observers of the name, in the order of registration. Main
/// thread only, blocks included.
class NotificationCenter : NonCopyable {
public:
    /// Identifies a registration; never 0.
    using Token = std::uint64_t;

    virtual ~NotificationCenter() = default;

    /// Registers `block` for `name`, from any sender.
    virtual Token addObserver(std::string_view name, std::function<void()> block) = 0;

    /// Ends a registration; an unknown token is ignored. May be called from inside a block; a
    /// removed block is not called again, even by a `post` in progress.
    virtual void removeObserver(Token token) = 0;

    /// Calls the observers of `name` before it returns.
    virtual void post(std::string_view name) = 0;
};

} // namespace quorvane
