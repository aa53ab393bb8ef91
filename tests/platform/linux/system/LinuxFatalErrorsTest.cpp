#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "platform/linux/system/LinuxRunLoop.h"
#include "platform/linux/system/TerminationSignals.h"

namespace quorvane {
namespace {

/// Lets the process open only `count` (0 or 1) more file descriptors.
void leaveDescriptors(unsigned count) {
    const int next = dup(STDERR_FILENO);
    close(next);
    const rlimit limit{.rlim_cur = static_cast<rlim_t>(next) + count,
                       .rlim_max = static_cast<rlim_t>(next) + count};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

void makeRunLoop(unsigned descriptors) {
    leaveDescriptors(descriptors);
    const LinuxRunLoop runLoop;
}

void makeTerminationSignals() {
    leaveDescriptors(0);
    const TerminationSignals terminationSignals;
}

TEST(LinuxFatalErrorsDeathTest, ARunLoopWithoutADescriptorNamesItself) {
    EXPECT_DEATH(makeRunLoop(0),
                 "quorvane: fatal: LinuxRunLoop: no timer descriptor: Too many open files");
    EXPECT_DEATH(makeRunLoop(1),
                 "quorvane: fatal: LinuxRunLoop: no event descriptor: Too many open files");
}

TEST(LinuxFatalErrorsDeathTest, TerminationSignalsWithoutADescriptorNameThemselves) {
    EXPECT_DEATH(makeTerminationSignals(),
                 "quorvane: fatal: TerminationSignals: no signal descriptor: Too many open files");
}

} // namespace
} // namespace quorvane
