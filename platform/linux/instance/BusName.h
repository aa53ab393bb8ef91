#pragma once

namespace quorvane {

/// What a running Quorvane is called on the session bus, and what it offers there.
constexpr auto busName = "org.quorvane.Quorvane";
constexpr auto busPath = "/org/quorvane/Quorvane";
constexpr auto busInterface = "org.freedesktop.Application";
/// The action that closes its window.
constexpr auto stopAction = "stop";

} // namespace quorvane
