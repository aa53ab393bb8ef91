#pragma once

#include "platform/Platform.h"

namespace quorvane {

/// Services that replace a platform's; null keeps the platform's.
struct ExchangedServices {
    RunLoop* runLoop = nullptr;
    HIDService* hid = nullptr;
    NotificationCenter* workspace = nullptr;
    EventTapService* eventTaps = nullptr;
    Accessibility* accessibility = nullptr;
    HapticService* haptics = nullptr;
    ScreenService* screens = nullptr;
    Console* console = nullptr;
};

/// `platform` with `services` in place of its own; all of them outlive their users.
inline Platform exchange(const Platform& platform, const ExchangedServices& services) {
    return {
        .runLoop = services.runLoop != nullptr ? *services.runLoop : platform.runLoop,
        .hid = services.hid != nullptr ? *services.hid : platform.hid,
        .workspace = services.workspace != nullptr ? *services.workspace : platform.workspace,
        .defaultCenter = platform.defaultCenter,
        .audio = platform.audio,
        .eventTaps = services.eventTaps != nullptr ? *services.eventTaps : platform.eventTaps,
        .accessibility =
            services.accessibility != nullptr ? *services.accessibility : platform.accessibility,
        .haptics = services.haptics != nullptr ? *services.haptics : platform.haptics,
        .screens = services.screens != nullptr ? *services.screens : platform.screens,
        .application = platform.application,
        .userDefaults = platform.userDefaults,
        .bundle = platform.bundle,
        .system = platform.system,
        .random = platform.random,
        .console = services.console != nullptr ? *services.console : platform.console,
    };
}

} // namespace quorvane
