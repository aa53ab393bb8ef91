#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <cstddef>

#include "platform/linux/system/LinuxRunLoop.h"
#include "platform/linux/system/TerminationSignals.h"

namespace quorvane {
namespace {

/// Has a system call of this process fail as if no file descriptor were left. Really to use them up
/// would also keep the sanitizers from looking at memory.
void leaveNoDescriptorFor(unsigned systemCall) {
    std::array<sock_filter, 4> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, systemCall, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EMFILE),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program{.len = filter.size(), .filter = filter.data()};
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

void makeRunLoopWithout(unsigned systemCall) {
    leaveNoDescriptorFor(systemCall);
    const LinuxRunLoop runLoop;
}

void makeTerminationSignals() {
    leaveNoDescriptorFor(SYS_signalfd4);
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
