#pragma once

#include <string_view>

class QWindow;

namespace quorvane {

/// Presses or toggles the control of `window` that is called `name`, through its accessibility
/// interface as a screen reader would. False if no control of that name can be acted on just now.
[[nodiscard]] bool pressControl(QWindow& window, std::string_view name);

} // namespace quorvane
