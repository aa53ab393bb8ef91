#include "platform/macos/MacPlatform.h"

namespace quorvane {

Platform MacPlatform::platform() {
    return {.runLoop = m_runLoop,
            .hid = m_hid,
            .workspace = *m_workspace,
            .defaultCenter = *m_defaultCenter,
            .audio = m_audio,
            .eventTaps = m_eventTaps,
            .accessibility = m_accessibility,
            .haptics = m_haptics,
            .screens = m_screens,
            .application = m_application,
            .userDefaults = m_userDefaults,
            .bundle = m_bundle,
            .system = m_system,
            .random = m_random,
            .console = m_console};
}

} // namespace quorvane
