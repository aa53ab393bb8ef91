#pragma once

#include "platform/Application.h"
#include "platform/Audio.h"
#include "platform/EventTap.h"
#include "platform/HID.h"
#include "platform/Haptics.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "platform/Screens.h"
#include "platform/System.h"

namespace quorvane {

/// The operating system as the logic sees it. Built once, by `main` or by a test, and handed down
/// through constructors; the services outlive everything that is given them.
struct Platform {
    RunLoop& runLoop;
    HIDService& hid;
    /// The workspace's own centre: screens did sleep, screens did wake, did wake.
    NotificationCenter& workspace;
    /// The default centre, for notifications inside this process.
    NotificationCenter& defaultCenter;
    AudioService& audio;
    EventTapService& eventTaps;
    Accessibility& accessibility;
    HapticService& haptics;
    ScreenService& screens;
    Application& application;
    UserDefaults& userDefaults;
    Bundle& bundle;
    SystemInfo& system;
    Random& random;
    Console& console;
};

} // namespace quorvane
