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

/// The services of the operating system. Created once, by `main` or by a test, and passed down
/// through constructors; the services outlive their users.
struct Platform {
    RunLoop& runLoop;
    HIDService& hid;
    /// The workspace's notifications: see WorkspaceNotification.
    NotificationCenter& workspace;
    /// Notifications within this process.
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
