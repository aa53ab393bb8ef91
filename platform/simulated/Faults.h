#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace quorvane {

/// The ways in which a call of a simulated service can fail.
enum class Fault {
    /// Opening a HID manager fails.
    HIDManagerOpen,
    /// A HID manager gives no set of devices.
    HIDDeviceSet,
    /// Opening a HID device fails.
    HIDDeviceOpen,
    /// Reading a HID report fails.
    HIDReport,
    /// A HID report ends after two bytes.
    HIDReportLength,
    /// A resource is not found.
    Resource,
    /// A sound file cannot be opened.
    FileOpen,
    /// A sound file cannot be read once it is open.
    FileRead,
    /// A buffer cannot be made.
    BufferCreation,
    /// A buffer is made without memory for samples.
    BufferSamples,
    /// There is no standard format.
    StandardFormat,
    /// A file player cannot be made.
    FilePlayerCreation,
    /// A file player is made, but has no sound.
    FilePlayerSound,
    /// A file player cannot be prepared.
    FilePlayerPrepare,
    /// A file player does not play.
    FilePlayerPlay,
    /// An engine does not start.
    EngineStart,
    /// A tap, or its source, cannot be made.
    Tap,
    TapSource,
    /// The program may not listen to the keyboard, for as long as this one query.
    Trust,
    /// There is no main screen.
    MainScreen,
    /// A panel that is brought to the front does not appear.
    PanelFront,
    /// A pulse is not felt.
    HapticPulse,
    /// A setting is not stored.
    UserDefaultsWrite,
    /// The login items, or the model's name, cannot be queried.
    LoginItemStatus,
    ModelName,
};

inline constexpr std::size_t faultCount = static_cast<std::size_t>(Fault::ModelName) + 1;

/// Which calls of a simulated machine's services fail; at first none. The services ask it. Main
/// thread only.
class Faults {
public:
    /// Every call from now on fails, until `mend`. Calls that return an error return `description`.
    void fail(Fault fault, std::string description) {
        plan(fault) = {.always = true, .description = std::move(description)};
    }

    /// The `n`-th call from now on fails, counted from 1, and no other.
    void failOnce(Fault fault, int n) { plan(fault) = {.callsLeft = n}; }

    void mend(Fault fault) { plan(fault) = {}; }

    /// Whether the call of `failOnce` is still to come.
    [[nodiscard]] bool isAwaited(Fault fault) { return plan(fault).callsLeft > 0; }

    /// What a call that fails returns as its error.
    [[nodiscard]] const std::string& description(Fault fault) { return plan(fault).description; }

    /// Counts a call, and tells whether it fails.
    [[nodiscard]] bool fails(Fault fault) {
        Plan& planned = plan(fault);
        if (planned.callsLeft == 0)
            return planned.always;
        --planned.callsLeft;
        return planned.callsLeft == 0;
    }

private:
    struct Plan {
        bool always = false;
        /// 0: none in particular.
        int callsLeft = 0;
        std::string description = "simulated fault";
    };

    [[nodiscard]] Plan& plan(Fault fault) { return m_plans.at(static_cast<std::size_t>(fault)); }

    std::array<Plan, faultCount> m_plans;
};

} // namespace quorvane
