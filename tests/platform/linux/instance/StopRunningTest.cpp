#include "platform/linux/instance/StopRunning.h"

#include <grp.h>
#include <sys/prctl.h>

#include <chrono>
#include <csignal>
#include <filesystem>

#include "tests/platform/linux/instance/InstanceFixture.h"
#include "tests/support/HungBus.h"

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr uid_t other = 65534;

void becomeAnotherUser() {
    if (setgroups(0, nullptr) != 0 || setresgid(other, other, other) != 0 ||
        setresuid(other, other, other) != 0)
        _exit(100);
    // As after exec: else /proc shows it as root's.
    prctl(PR_SET_DUMPABLE, 1);
}

class StopRunningTest : public InstanceTest {};

TEST_F(StopRunningTest, WithoutAnInstanceThereIsNothingToStop) {
    EXPECT_EQ(stopRunning(), StopResult::NothingRuns);
    EXPECT_TRUE(std::filesystem::is_empty(m_runtime.path()));
}

TEST_F(StopRunningTest, OneThatDoesNotAnswerIsTerminated) {
    const auto first = startFirst([] { std::signal(SIGTERM, [](int) { _exit(7); }); });
    const auto begun = Clock::now();
    EXPECT_EQ(stopRunning(), StopResult::Stopped);
    EXPECT_GT(Clock::now() - begun, 450ms);
    EXPECT_LT(Clock::now() - begun, 1s);
    EXPECT_EQ(first->wait(), 7);
}

TEST_F(StopRunningTest, OneThatDoesNotTerminateIsKilled) {
    const auto first = startFirst([] { std::signal(SIGTERM, SIG_IGN); });
    const auto begun = Clock::now();
    EXPECT_EQ(stopRunning(), StopResult::Stopped);
    EXPECT_GT(Clock::now() - begun, 1450ms);
    EXPECT_LT(Clock::now() - begun, 2500ms);
    EXPECT_FALSE(first->isAlive());
}

TEST_F(StopRunningTest, OnAHungBusTheLockNamesTheProcess) {
    const auto first = startFirst();
    const HungBus hung;
    useBus(hung.address());
    const auto begun = Clock::now();
    EXPECT_EQ(stopRunning(), StopResult::Stopped);
    EXPECT_LT(Clock::now() - begun, 1s);
    EXPECT_FALSE(first->isAlive());
}

TEST_F(StopRunningTest, WithoutARuntimeFolderTheBusNamesTheProcess) {
    const auto first = startFirst();
    const EnvironmentVariable nowhere("XDG_RUNTIME_DIR", std::nullopt);
    EXPECT_EQ(stopRunning(), StopResult::Stopped);
    EXPECT_FALSE(first->isAlive());
}

TEST_F(StopRunningTest, AnotherUsersInstanceIsLeftAlone) {
    if (geteuid() != 0)
        return; // Only root can become another user.
    const auto busFolder = std::filesystem::path(m_bus.address().substr(10)).parent_path();
    for (const auto& folder : {m_runtime.path(), busFolder})
        std::filesystem::permissions(folder, std::filesystem::perms::all);
    const auto first = startFirst(&becomeAnotherUser);
    EXPECT_EQ(stopRunning(), StopResult::NothingRuns);
    useBus("unix:path=/nonexistent/no-bus");
    EXPECT_EQ(stopRunning(), StopResult::NothingRuns);
    EXPECT_TRUE(first->isAlive());
}

} // namespace

} // namespace quorvane
