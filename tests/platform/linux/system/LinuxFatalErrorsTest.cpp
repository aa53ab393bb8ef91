#include <gtest/gtest.h>

#include <cerrno>

#include "platform/linux/system/LinuxRunLoop.h"
#include "platform/linux/system/TerminationSignals.h"
#include "tests/support/RefusedCalls.h"

namespace quorvane {
namespace {

void makeRunLoopWithout(unsigned systemCall) {
    refuse(systemCall, EMFILE);
    const LinuxRunLoop runLoop;
}

void makeTerminationSignals() {
    refuse(SYS_signalfd4, EMFILE);
    const TerminationSignals terminationSignals;
}

TEST(LinuxFatalErrorsDeathTest, ARunLoopWithoutADescriptorNamesItself) {
    EXPECT_DEATH(makeRunLoopWithout(SYS_timerfd_create),
                 "quorvane: fatal: LinuxRunLoop: no timer descriptor: Too many open files");
    EXPECT_DEATH(makeRunLoopWithout(SYS_eventfd2),
                 "quorvane: fatal: LinuxRunLoop: no event descriptor: Too many open files");
}

TEST(LinuxFatalErrorsDeathTest, TerminationSignalsWithoutADescriptorNameThemselves) {
    EXPECT_DEATH(makeTerminationSignals(),
                 "quorvane: fatal: TerminationSignals: no signal descriptor: Too many open files");
}

} // namespace
} // namespace quorvane
