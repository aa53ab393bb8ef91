#pragma once

#include <array>
#include <string_view>

namespace quorvane {

/// One result of the hardware check: the feature, whether it passed, and the text for each case.
struct CheckRow {
    std::string_view feature;
    bool passed = false;
    std::string_view ok;
    std::string_view fail;

    bool operator==(const CheckRow&) const = default;
};

/// The six results, in display order. The last three always pass.
[[nodiscard]] constexpr std::array<CheckRow, 6>
makeCheckRows(bool hasLidSensor, bool hasAccessibility, bool hasTrackpad) {
    return {{{.feature = "Lid creak",
              .passed = hasLidSensor,
              .ok = "Lid sensor detected",
              .fail = "Lid sensor not found — this feature won't be available"},
             {.feature = "Keyboard crack",
              .passed = hasAccessibility,
              .ok = "Accessibility granted",
              .fail = "Accessibility permission needed — enable in System Settings"},
             {.feature = "Trackpad vibration",
              .passed = hasTrackpad,
              .ok = "Force Touch trackpad detected",
              .fail = "No built-in trackpad — vibration won't work"},
             {.feature = "Fan noise", .passed = true, .ok = "Ready", .fail = ""},
             {.feature = "Startup sound", .passed = true, .ok = "Ready", .fail = ""},
             {.feature = "Launch at login", .passed = true, .ok = "Ready", .fail = ""}}};
}

} // namespace quorvane
