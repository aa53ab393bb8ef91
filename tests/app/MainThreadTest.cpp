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

/// Owns an object made by `create`, which must be destroyed on the main thread.
template <class Class>
class Owner {
public:
    /// Drops it on another thread; returns the number of blocks queued on the main queue by that.
    int dropElsewhere() {
        const int before = m_runLoop.asyncCount;
        std::thread([last = std::move(m_object)]() mutable { last.reset(); }).join();
        const int after = m_runLoop.asyncCount;
        m_machine.runLoop.runMainQueue();
        return after - before;
    }

    /// Drops it with a run loop whose `isMainThread` is true for the deleter and then false.
    void dropWithWrongThread() {
        m_runLoop.correctAnswers = 1;
        m_object.reset();
    }

private:
    SimulatedMachine m_machine;
    WatchedRunLoop m_runLoop{m_machine.runLoop};
    std::shared_ptr<Class> m_object =
        Class::create(exchange(m_machine.platform(), {.runLoop = &m_runLoop}));
};

TEST(MainThread, DroppedOnAnotherThreadTheyAreDestroyedFromTheMainQueue) {
    EXPECT_EQ(Owner<LidAngleSensor>().dropElsewhere(), 1);
    EXPECT_EQ(Owner<AudioManager>().dropElsewhere(), 1);
    EXPECT_EQ(Owner<KeyboardCrackManager>().dropElsewhere(), 1);
    EXPECT_EQ(Owner<FanManager>().dropElsewhere(), 1);
    EXPECT_EQ(Owner<BSODManager>().dropElsewhere(), 1);
    EXPECT_EQ(Owner<FreezeManager>().dropElsewhere(), 1);
    EXPECT_EQ(Owner<StartupSoundManager>().dropElsewhere(), 1);
}

TEST(MainThreadDeathTest, ADestructorOnAnotherThreadEndsTheProgramAndNamesTheClass) {
    EXPECT_DEATH(Owner<LidAngleSensor>().dropWithWrongThread(), "LidAngleSensor must be destroyed");
    EXPECT_DEATH(Owner<AudioManager>().dropWithWrongThread(), "AudioManager must be destroyed");
    EXPECT_DEATH(Owner<KeyboardCrackManager>().dropWithWrongThread(),
                 "KeyboardCrackManager must be destroyed");
    EXPECT_DEATH(Owner<FanManager>().dropWithWrongThread(), "FanManager must be destroyed");
    EXPECT_DEATH(Owner<BSODManager>().dropWithWrongThread(), "BSODManager must be destroyed");
    EXPECT_DEATH(Owner<FreezeManager>().dropWithWrongThread(), "FreezeManager must be destroyed");
    EXPECT_DEATH(Owner<StartupSoundManager>().dropWithWrongThread(),
                 "StartupSoundManager must be destroyed");
}

} // namespace
} // namespace quorvane
