#include "base/MainThreadOwned.h"
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

TEST(MainThreadOwned, the_last_reference_on_the_main_thread_destroys_at_once) {
    SimulatedRunLoop runLoop;
    bool destroyed = false;
    auto owned = makeMainThreadOwned(runLoop, std::make_unique<Owned>(runLoop, destroyed));
    owned.reset();
    EXPECT_TRUE(destroyed);
}

TEST(MainThreadOwned, the_last_reference_on_another_thread_hops_to_the_main_thread) {
    SimulatedRunLoop runLoop;
    bool destroyed = false;
    auto owned = makeMainThreadOwned(runLoop, std::make_unique<Owned>(runLoop, destroyed));
    std::thread([last = std::move(owned)]() mutable { last.reset(); }).join();
    EXPECT_FALSE(destroyed);
    runLoop.runMainQueue();
    EXPECT_TRUE(destroyed);
}

TEST(MainThreadOwnedDeathTest, destruction_on_another_thread_names_the_class) {
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
