#include "platform/macos/MacStopRunning.h"

#import <AppKit/AppKit.h>

namespace quorvane {

namespace {

/// Runs the run loop, without which `terminated` does not change.
bool endsWithinASecond(NSRunningApplication* application) {
    constexpr int turns = 20;
    for (int i = 0; i < turns && !application.terminated; ++i)
        [NSRunLoop.currentRunLoop runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    return application.terminated;
}

bool ends(NSRunningApplication* application) {
    [application terminate];
    if (endsWithinASecond(application))
        return true;
    [application forceTerminate];
    return endsWithinASecond(application);
}

} // namespace

StopResult stopRunning() {
    auto result = StopResult::NothingRuns;
    for (NSRunningApplication* application in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:@"org.quorvane.Quorvane"]) {
        if ([application isEqual:NSRunningApplication.currentApplication])
            continue;
        if (!ends(application))
            return StopResult::Failed;
        result = StopResult::Stopped;
    }
    return result;
}

} // namespace quorvane
