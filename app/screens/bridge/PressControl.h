#pragma once

#include <string_view>

class QWindow;

namespace quorvane {

/// Presses or toggles the control of `window` whose accessible name is `name`, through its
/// accessibility interface, as a screen reader would. False if no such control can be pressed now.
/// Main thread only.
[[nodiscard]] bool pressControl(QWindow& window, std::string_view name);

} // namespace quorvane
