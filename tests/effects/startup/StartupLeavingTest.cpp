#include "tests/effects/startup/StartupFixture.h"

#include <functional>
#include <string>
#include <utility>

#include "tests/support/ExchangedPlatform.h"
#include "tests/support/WatchedRunLoop.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using StartupLeavingTest = StartupFixture;

TEST_F(StartupLeavingTest, TheLoginCheckDoesNothingAfterTheManagersDestruction) {
    machine.application.loginItem = LoginItemStatus::Enabled;
    makeManager();
    manager.reset();
    advance(2);
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(StartupLeavingTest, TheLastLineIsPrintedAlsoAfterTheManagersDestruction) {
    makeManager();
    wakeUp();
    manager.reset();
    advance(clipLength);
    EXPECT_THAT(machine.console.lines,
                ElementsAre(playingLine, rumbleLine, hapticLine, completeLine));
}

TEST_F(StartupLeavingTest, DroppingTheManagerEndsWakeUpsPulsesAndTheEngine) {
    makeManager();
    wakeUp();
    advance(1);
    const auto count = pulses().size();
    ASSERT_GT(count, 0U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 1U);
    manager.reset();
    EXPECT_EQ(machine.audio.runningEngineCount(), 0U);
    EXPECT_EQ(machine.workspace.observerCount(), 0U);
    advance(20);
    EXPECT_EQ(pulses().size(), count);
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U) << "the ramp's timer ends itself";
}

/// A workspace centre that calls a hook before it removes an observer.
class WatchedWorkspace final : public NotificationCenter {
public:
    explicit WatchedWorkspace(NotificationCenter& real) : m_real(real) {}

    Token addObserver(std::string_view name, std::function<void()> block) override {
        return m_real.addObserver(name, std::move(block));
    }

    void removeObserver(Token token) override {
        onRemove();
        m_real.removeObserver(token);
    }

    void post(std::string_view name) override { m_real.post(name); }

    std::function<void()> onRemove;

private:
    NotificationCenter& m_real;
};

TEST_F(StartupLeavingTest, ItsDestructionEndsWakeUpsThenPulsesThenTheEngine) {
    WatchedWorkspace workspace(machine.workspace);
    WatchedRunLoop runLoop(machine.runLoop);
    manager = StartupSoundManager::create(
        exchange(machine.platform(), {.runLoop = &runLoop, .workspace = &workspace}));
    manager->startRumble();
    manager->startHaptic();
    advance(4);
    std::vector<std::string> order;
    const auto note = [&](const std::string& what) {
        order.push_back(what + (machine.audio.runningEngineCount() == 1 ? " engine" : ""));
    };
    workspace.onRemove = [&] { note("wake-ups"); };
    runLoop.onInvalidate = [&] { note("pulses"); };
    manager.reset();
    EXPECT_THAT(order, ElementsAre("wake-ups engine", "pulses engine"));
    EXPECT_EQ(machine.audio.engineStopCount(), 1U);
    EXPECT_EQ(machine.audio.runningEngineCount(), 0U);
}

} // namespace
} // namespace quorvane
