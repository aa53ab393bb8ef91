#pragma once

#include <string>

namespace quorvane {

/// Chooses the display server for the toolkit, which must not have been started yet: X11 whenever
/// it answers, Wayland sessions included, because only there a window can stand above everything
/// else. A choice that the person made through the environment stands, unchecked.
/// What is wrong, for a person, if there is no display to be had; else empty.
[[nodiscard]] std::string chooseDisplayServer();

} // namespace quorvane
