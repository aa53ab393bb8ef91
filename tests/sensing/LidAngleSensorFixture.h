#pragma once

#include <algorithm>
#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "platform/simulated/SimulatedMachine.h"
#include "sensing/LidAngleSensor.h"

namespace quorvane {

/// A sensor on a simulated machine in virtual time.
class LidAngleSensorFixture : public testing::Test {
protected:
    /// A sensor that has found a lid at `degrees`.
    void probeLidAt(unsigned degrees) {
        lid = machine.hid.addDevice(0x8104);
        lid->setAngle(degrees);
        sensor->probeSensor();
        ASSERT_FALSE(sensor->usingSleepWake());
    }

    /// Moves the lid evenly from now on, from 100 degrees.
    void moveLid(double degreesPerSecond) {
        const double start = machine.runLoop.currentMediaTime();
        lid->setAngle([start, degreesPerSecond](double time) {
            return 100 + degreesPerSecond * (time - start);
        });
    }

    /// A running sensor whose lid has moved from 100 to 130 degrees in the last second.
    void pollMovingLid() {
        probeLidAt(100);
        moveLid(30);
        sensor->start();
        machine.runLoop.advance(1);
        ASSERT_NEAR(sensor->velocity(), 30, 6);
    }

    /// Runs to the next poll.
    void advanceOnePoll() {
        machine.runLoop.advance(*machine.runLoop.nextDeadline() -
                                machine.runLoop.currentMediaTime());
    }

    /// How often the managers got `call`.
    [[nodiscard]] std::ptrdiff_t callCount(const std::string& call) const {
        return std::count(machine.hid.calls().begin(), machine.hid.calls().end(), call);
    }

    SimulatedMachine machine;
    std::shared_ptr<LidAngleSensor> sensor = LidAngleSensor::create(machine.platform());
    std::shared_ptr<SimulatedHIDDevice> lid;
};

} // namespace quorvane
