#include "platform/posix/Threads.h"

#include <atomic>
#include <csignal>
#include <exception>
#include <gmock/gmock.h>
#include <new>
#include <stdexcept>
#include <variant>

#include "tests/support/NoThreads.h"

namespace quorvane {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(ThreadsTest, AThreadRuns) {
    std::atomic<bool> hasRun = false;
    startThread("worker", [&] { hasRun = true; }).join();
    EXPECT_TRUE(hasRun);
}

TEST(ThreadsTest, AThreadThatCannotBeStartedIsALineAndNoThread) {
    CaptureStderr();
    const NoThreads noThreads;
    EXPECT_FALSE(startThread("worker", [] {}).joinable());
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the thread \"worker\" cannot be started: Resource "
                                   "temporarily unavailable\n");
}

TEST(ThreadsTest, AThreadThatRunsOutOfMemoryEndsWithALine) {
    CaptureStderr();
    startThread("worker", [] { throw std::bad_alloc(); }).join();
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the thread \"worker\" ended: std::bad_alloc\n");
}

TEST(ThreadsDeathTest, AnUncaughtExceptionNamesItselfAndTheThreadBeforeTheAbort) {
    EXPECT_EXIT(
        {
            tellUncaughtExceptions();
            startThread("worker", [] { throw std::logic_error("a broken rule"); }).join();
        },
        testing::KilledBySignal(SIGABRT), "^quorvane: fatal: thread \"worker\": a broken rule\n");
}

TEST(ThreadsDeathTest, ABadVariantAccessIsNamedToo) {
    using Number = std::variant<int, bool>;
    const auto breakRule = [] {
        tellUncaughtExceptions();
        const Number number = 1;
        startThread("worker", [&] { static_cast<void>(std::get<bool>(number)); }).join();
    };
    EXPECT_EXIT(breakRule(), testing::KilledBySignal(SIGABRT),
                "^quorvane: fatal: thread \"worker\": .*variant");
}

TEST(ThreadsDeathTest, TerminationWithoutAnExceptionIsNamedToo) {
    EXPECT_EXIT(
        {
            tellUncaughtExceptions();
            std::terminate();
        },
        testing::KilledBySignal(SIGABRT),
        "^quorvane: fatal: thread \".*\": terminated without an exception\n");
}

} // namespace quorvane
