#pragma once

#include "platform/InProcessNotificationCenter.h"
#include "platform/Platform.h"
#include "platform/linux/audio/PulseAudioService.h"
#include "platform/linux/desktop/LinuxApplication.h"
#include "platform/linux/haptics/LinuxHaptics.h"
#include "platform/linux/hid/LinuxHID.h"
#include "platform/linux/keyboard/KeyReaderProcess.h"
#include "platform/linux/keyboard/LinuxAccessibility.h"
#include "platform/linux/keyboard/LinuxEventTapService.h"
#include "platform/linux/overlays/LinuxScreens.h"
#include "platform/linux/power/LinuxSleepNotifications.h"
#include "platform/linux/system/LinuxBundle.h"
#include "platform/linux/system/LinuxConsole.h"
#include "platform/linux/system/LinuxRandom.h"
#include "platform/linux/system/LinuxRunLoop.h"
#include "platform/linux/system/LinuxSystemInfo.h"
#include "platform/linux/system/LinuxUserDefaults.h"

namespace quorvane {

/// The services of a Linux desktop. Needs a QCoreApplication on the constructing thread, which is
/// the main thread from then on. Construction opens only the run loop's descriptors, and begins to
/// look for the lid's sensor on another thread; buses, other devices and files are opened on first
/// use.
class LinuxPlatform {
public:
    /// The services, which live as long as this object.
    [[nodiscard]] Platform platform();

private:
    LinuxRunLoop m_runLoop;
    LinuxHID m_hid;
    LinuxSleepNotifications m_workspace;
    InProcessNotificationCenter m_defaultCenter;
    PulseAudioService m_audio;
    KeyReaderProcess m_keyReader;
    LinuxEventTapService m_eventTaps{m_keyReader};
    LinuxAccessibility m_accessibility{m_keyReader};
    LinuxHaptics m_haptics;
    LinuxScreens m_screens;
    LinuxApplication m_application;
    LinuxUserDefaults m_userDefaults;
    LinuxBundle m_bundle;
    LinuxSystemInfo m_system;
    LinuxRandom m_random;
    LinuxConsole m_console;
};

} // namespace quorvane
