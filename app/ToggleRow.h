#pragma once

#include <functional>
#include <string>

#include "base/Observable.h"

namespace quorvane {

/// What a row of the control panel says.
struct ToggleRowText {
    /// Name of a system symbol.
    std::string icon;
    std::string label;
    std::string infoTitle;
    std::string info;
};

/// A row of the control panel: its words and the two-way binding of its switch.
struct ToggleRow {
    ToggleRowText text;
    /// The flag that the switch shows. The binding's write side never sets it directly; the switch
    /// shows whatever the feature reports after the call.
    const Observable<bool>* isOn = nullptr;
    std::function<void(bool)> setOn;
};

} // namespace quorvane
