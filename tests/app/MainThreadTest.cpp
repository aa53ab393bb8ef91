#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <utility>

#include "effects/crash/BSODManager.h"
#include "effects/crash/FreezeManager.h"
#include "effects/creak/AudioManager.h"
#include "effects/fan/FanManager.h"
#include "effects/keyboard/KeyboardCrackManager.h"
#include "effects/startup/StartupSoundManager.h"
#include "platform/simulated/SimulatedMachine.h"
#include "sensing/LidAngleSensor.h"
#include "tests/support/ExchangedPlatform.h"
#include "tests/support/WatchedRunLoop.h"

namespace quorvane {
namespace {

/// What is made by `create` belongs to the main thread, with its timers, taps and nodes.
template <class Class>
class Owner {
public:
    /// Lets go of it on another thread; how many blocks that put on the main queue.
    int letGoElsewhere() {
        const int before = m_runLoop.asyncCount;
        std::thread([last = std::move(m_object)]() mutable { last.reset(); }).join();
        const int after = m_runLoop.asyncCount;
        m_machine.runLoop.runMainQueue();
        return after - before;
    }

    /// Its deleter takes this for the main thread, its destructor does not.
    void letGoWithDoubts() {
        m_runLoop.truthsBeforeDenial = 1;
        m_object.reset();
    }

private:
    SimulatedMachine m_machine;
    WatchedRunLoop m_runLoop{m_machine.runLoop};
    std::shared_ptr<Class> m_object =
        Class::create(exchange(m_machine.platform(), {.runLoop = &m_runLoop}));
};

TEST(MainThread, DroppedOnAnotherThreadTheyAreDestroyedFromTheMainQueue) {
    EXPECT_EQ(Owner<LidAngleSensor>().letGoElsewhere(), 1);
    EXPECT_EQ(Owner<AudioManager>().letGoElsewhere(), 1);
    EXPECT_EQ(Owner<KeyboardCrackManager>().letGoElsewhere(), 1);
    EXPECT_EQ(Owner<FanManager>().letGoElsewhere(), 1);
    EXPECT_EQ(Owner<BSODManager>().letGoElsewhere(), 1);
    EXPECT_EQ(Owner<FreezeManager>().letGoElsewhere(), 1);
    EXPECT_EQ(Owner<StartupSoundManager>().letGoElsewhere(), 1);
}

TEST(MainThreadDeathTest, ADestructorAnywhereElseEndsTheProgramAndNamesTheClass) {
    EXPECT_DEATH(Owner<LidAngleSensor>().letGoWithDoubts(), "LidAngleSensor must be destroyed");
    EXPECT_DEATH(Owner<AudioManager>().letGoWithDoubts(), "AudioManager must be destroyed");
    EXPECT_DEATH(Owner<KeyboardCrackManager>().letGoWithDoubts(),
                 "KeyboardCrackManager must be destroyed");
    EXPECT_DEATH(Owner<FanManager>().letGoWithDoubts(), "FanManager must be destroyed");
    EXPECT_DEATH(Owner<BSODManager>().letGoWithDoubts(), "BSODManager must be destroyed");
    EXPECT_DEATH(Owner<FreezeManager>().letGoWithDoubts(), "FreezeManager must be destroyed");
    EXPECT_DEATH(Owner<StartupSoundManager>().letGoWithDoubts(),
                 "StartupSoundManager must be destroyed");
}

} // namespace
} // namespace quorvane
