#include <cmath>
#include <fuzzer/FuzzedDataProvider.h>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"
#include "sensing/LidAngleSensor.h"
#include "tests/fuzz/Fuzzing.h"

namespace quorvane {

namespace {

std::vector<std::uint8_t> someReport(FuzzedDataProvider& input) {
    return input.ConsumeBytes<std::uint8_t>(input.ConsumeIntegralInRange<std::size_t>(0, 12));
}

double angleIn(const std::vector<std::uint8_t>& report, double otherwise) {
    return report.size() < 3 ? otherwise : report[1] + 256 * report[2];
}

void poll(SimulatedMachine& machine, SimulatedHIDDevice& device, FuzzedDataProvider& input) {
    const auto sensor = LidAngleSensor::create(machine.platform());
    device.setReport(someReport(input));
    sensor->probeSensor();
    sensor->start();
    while (!sensor->usingSleepWake() && input.remaining_bytes() > 0) {
        const auto report = someReport(input);
        const double expected = angleIn(report, sensor->angle());
        device.setReport(report);
        machine.runLoop.advance(0.034); // At least one poll.
        require(sensor->angle() == expected, "a whole report is the angle, a short one is none");
        require(std::isfinite(sensor->velocity()), "the velocity is a number");
    }
}

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    FuzzedDataProvider input(data, size);
    SimulatedMachine machine;
    const auto device = machine.hid.addDevice(0x8104);
    poll(machine, *device, input);
    return 0;
}
