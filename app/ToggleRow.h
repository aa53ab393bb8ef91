#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/Observable.h"

namespace quorvane {

/// The texts of a row of the control panel, which live as long as the program.
struct ToggleRowText {
    /// Name of the system symbol.
    std::string_view icon;
    std::string_view label;
    std::string_view infoTitle;
    std::string_view info;

    bool operator==(const ToggleRowText&) const = default;
};

/// A row of the control panel: its texts and the two-way binding of its switch.
struct ToggleRow {
    ToggleRowText text;
    /// The state that the switch shows. `setOn` need not change it: the feature may fail to start.
    const Observable<bool>* isOn = nullptr;
    std::function<void(bool)> setOn;
    /// Why the feature is off although it was switched on, or cannot be noticed, for the user; else
    /// empty. Null in rows that never have a hint.
    const Observable<std::string>* hint = nullptr;
};

/// The rows' texts, in display order.
namespace ToggleRowTexts {

inline constexpr ToggleRowText buildQuality{
    .icon = "door.left.hand.open",
    .label = "Build quality",
    .infoTitle = "Build Quality",
    .info = "Premium hinge quality simulation. Experience the authentic build quality of a real "
            "Windows laptop.\n\nTry moving your laptop lid to feel the difference."};

inline constexpr ToggleRowText keyboard{
    .icon = "keyboard",
    .label = "Keyboard",
    .infoTitle = "Tactile Feedback",
    .info = "Genuine keyboard feedback. Feel the premium tactile response of original Windows "
            "hardware.\n\nJust start typing anything."};

inline constexpr ToggleRowText thermals{
    .icon = "fan",
    .label = "Thermals",
    .infoTitle = "Thermal Performance",
    .info = "Original Windows fan acoustics. Authentic thermal management at its finest.\n\n"
            "Enable and enjoy. Trackpad vibration included."};

inline constexpr ToggleRowText stability{
    .icon = "exclamationmark.triangle",
    .label = "Stability",
    .infoTitle = "System Stability",
    .info = "Experience the legendary Windows stability. Random crashes included at no extra "
            "cost.\n\nSit back and wait. It will happen."};

inline constexpr ToggleRowText performance{
    .icon = "snowflake",
    .label = "Performance",
    .infoTitle = "Multitasking Performance",
    .info = "Advanced multitasking optimization. Your Mac will occasionally take a moment to "
            "think.\n\nJust keep using your Mac normally. Freezes will come to you."};

inline constexpr ToggleRowText startup{
    .icon = "power",
    .label = "Startup",
    .infoTitle = "Boot Experience",
    .info = "The iconic startup experience. Relive the classic moment of booting a real Windows "
            "machine.\n\nClose the lid and open it again to hear it."};

} // namespace ToggleRowTexts

} // namespace quorvane
