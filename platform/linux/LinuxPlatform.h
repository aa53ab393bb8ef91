#pragma once

#include "platform/InProcessNotificationCenter.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxConsole.h"
#include "platform/linux/LinuxEventTaps.h"
#include "platform/linux/LinuxHID.h"
#include "platform/linux/LinuxHaptics.h"
#include "platform/linux/LinuxRandom.h"
#include "platform/linux/LinuxRunLoop.h"
#include "platform/linux/LinuxScreens.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "platform/linux/LinuxUserDefaults.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/OpenALAudioService.h"

namespace quorvane {

/// The services of a Linux desktop. Needs a QCoreApplication on the constructing thread, which is
/// the main thread from then on. Making it opens nothing but the run loop's descriptors: buses,
/// devices and files are touched when they are first asked for.
class LinuxPlatform {
public:
    /// The services, which live as long as this object.
    [[nodiscard]] Platform platform();

private:
    LinuxRunLoop m_runLoop;
    LinuxHID m_hid;
    LinuxWorkspace m_workspace;
    InProcessNotificationCenter m_defaultCenter;
    OpenALAudioService m_audio;
    LinuxEventTaps m_eventTaps;
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
