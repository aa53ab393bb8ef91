#pragma once

#include <memory>

#include "platform/Platform.h"
#include "platform/ThreadedHID.h"
#include "platform/macos/MacAccessibility.h"
#include "platform/macos/MacAudio.h"
#include "platform/macos/MacConsole.h"
#include "platform/macos/MacEventTapService.h"
#include "platform/macos/MacHID.h"
#include "platform/macos/MacNotificationCenter.h"
#include "platform/macos/MacRandom.h"
#include "platform/macos/MacRunLoop.h"
#include "platform/macos/MacScreens.h"
#include "platform/macos/MacSystem.h"
#include "platform/macos/MacSystemInfo.h"

namespace quorvane {

/// The services of a Mac. To be made on the main thread, after the QGuiApplication.
class MacPlatform {
public:
    /// The services, which live as long as this object.
    [[nodiscard]] Platform platform();

private:
    MacRunLoop m_runLoop;
    MacHID m_devices;
    ThreadedHID m_hid{m_devices};
    std::unique_ptr<NotificationCenter> m_workspace = makeWorkspaceCenter();
    std::unique_ptr<NotificationCenter> m_defaultCenter = makeDefaultCenter();
    MacAudio m_audio;
    MacEventTapService m_eventTaps;
    MacAccessibility m_accessibility;
    MacHaptics m_haptics;
    MacScreens m_screens;
    MacApplication m_application;
    MacUserDefaults m_userDefaults;
    MacBundle m_bundle;
    MacSystemInfo m_system;
    MacRandom m_random;
    MacConsole m_console;
};

} // namespace quorvane
