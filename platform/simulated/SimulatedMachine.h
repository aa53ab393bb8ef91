#pragma once

#include <memory>

#include "platform/InProcessNotificationCenter.h"
#include "platform/Platform.h"
#include "platform/simulated/Faults.h"
#include "platform/simulated/SimulatedEventTapService.h"
#include "platform/simulated/SimulatedHID.h"
#include "platform/simulated/SimulatedHaptics.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "platform/simulated/SimulatedScreens.h"
#include "platform/simulated/SimulatedSystem.h"
#include "platform/simulated/audio/SimulatedAudio.h"

namespace quorvane {

/// A whole machine in virtual time, for tests to set up and inspect.
struct SimulatedMachine {
    SimulatedRunLoop runLoop;
    std::shared_ptr<Faults> faults = std::make_shared<Faults>();
    SimulatedHID hid{runLoop, faults};
    InProcessNotificationCenter workspace;
    InProcessNotificationCenter defaultCenter;
    SimulatedAudio audio{runLoop, faults};
    SimulatedEventTapService eventTaps{faults};
    SimulatedAccessibility accessibility{faults};
    SimulatedHaptics haptics{runLoop, faults};
    SimulatedScreens screens{faults};
    SimulatedApplication application{faults};
    SimulatedUserDefaults userDefaults{faults};
    SimulatedBundle bundle{faults};
    SimulatedSystemInfo system{faults};
    SimulatedRandom random;
    SimulatedConsole console;

    [[nodiscard]] Platform platform() {
        return {.runLoop = runLoop,
                .hid = hid,
                .workspace = workspace,
                .defaultCenter = defaultCenter,
                .audio = audio,
                .eventTaps = eventTaps,
                .accessibility = accessibility,
                .haptics = haptics,
                .screens = screens,
                .application = application,
                .userDefaults = userDefaults,
                .bundle = bundle,
                .system = system,
                .random = random,
                .console = console};
    }
};

} // namespace quorvane
