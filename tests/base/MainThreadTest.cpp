#include "base/MainThread.h"
#include "base/NonCopyable.h"

#include <gtest/gtest.h>
#include <thread>
#include <utility>

#include "platform/simulated/SimulatedRunLoop.h"

namespace quorvane {
namespace {

class Owned : NonCopyable {
public:
    Owned(SimulatedRunLoop& runLoop, bool& destroyed)
        : m_runLoop(runLoop), m_destroyed(destroyed) {}

    ~Owned() {
        requireMainThread(m_runLoop, "Owned");
        m_destroyed = true;
    }

private:
    SimulatedRunLoop& m_runLoop;
    bool& m_destroyed;
};

TEST(MainThreadOwned, TheLastReferenceOnTheMainThreadDestroysAtOnce) {
    SimulatedRunLoop runLoop;
    bool destroyed = false;
    auto owned = makeMainThreadOwned(runLoop, std::make_unique<Owned>(runLoop, destroyed));
    owned.reset();
    EXPECT_TRUE(destroyed);
}

TEST(MainThreadOwned, TheLastReferenceOnAnotherThreadDestroysFromTheMainQueue) {
    SimulatedRunLoop runLoop;
    bool destroyed = false;
    auto owned = makeMainThreadOwned(runLoop, std::make_unique<Owned>(runLoop, destroyed));
    std::thread([last = std::move(owned)]() mutable { last.reset(); }).join();
    EXPECT_FALSE(destroyed);
    runLoop.runMainQueue();
    EXPECT_TRUE(destroyed);
}

TEST(MainThreadOwnedDeathTest, DestructionOnAnotherThreadNamesTheClass) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            SimulatedRunLoop runLoop;
            bool destroyed = false;
            auto owned = std::make_unique<Owned>(runLoop, destroyed);
            std::thread([last = std::move(owned)]() mutable { last.reset(); }).join();
        },
        "Owned must be destroyed on the main thread");
}

} // namespace
} // namespace quorvane
