#include <gtest/gtest.h>

#include "base/UniformDraw.h"
#include "effects/crash/FreezeManager.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

TEST(FreezeTimeLimit, IsTheLengthOfThatFreeze) {
    SimulatedMachine machine;
    // The wait and the length, in turn.
    machine.random.script({0, uniformDrawBound / 4, 0, uniformDrawBound});
    const auto manager = FreezeManager::create(machine.platform());
    manager->start();
    machine.runLoop.advance(20);
    ASSERT_EQ(machine.screens.panels().size(), 1U);
    EXPECT_EQ(machine.screens.panels().at(0)->timeLimit, 3.25);
    machine.runLoop.advance(23.25);
    ASSERT_EQ(machine.screens.panels().size(), 2U);
    EXPECT_EQ(machine.screens.panels().at(1)->timeLimit, 4);
    manager->stop();
}

} // namespace
} // namespace quorvane
