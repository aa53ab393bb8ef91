#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/Observable.h"

namespace quorvane {

/// What a row of the control panel says, in texts that live as long as the program.
struct ToggleRowText {
    /// Name of a system symbol.
    std::string_view icon;
    std::string_view label;
    std::string_view infoTitle;
    std::string_view info;

    bool operator==(const ToggleRowText&) const = default;
};

/// A row of the control panel: its words and the two-way binding of its switch.
struct ToggleRow {
    ToggleRowText text;
    /// The flag that the switch shows. The binding's write side never sets it directly; the switch
    /// shows whatever the feature reports after the call.
    const Observable<bool>* isOn = nullptr;
    std::function<void(bool)> setOn;
    /// Why the feature stays off although it was switched on, for a person; empty while there is
    /// nothing to tell. Null in rows that never tell anything.
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
