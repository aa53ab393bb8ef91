#include <algorithm>
#include <string>
#include <vector>

#include "platform/simulated/Scenario.h"
#include "platform/simulated/ScenarioPlayer.h"
#include "platform/simulated/SimulatedMachine.h"
#include "tests/fuzz/Fuzzing.h"

namespace quorvane {

namespace {

void checkPlace(const ScenarioError& error, std::string_view text) {
    const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
    require(error.line >= 1 && error.line <= lines, "an error is in a line of the file");
    require(error.column >= 1 && error.column <= static_cast<int>(text.size()) + 1,
            "an error is in a column of its line");
    require(!error.description.empty(), "an error says what is wrong");
}

void checkLids(const Scenario& scenario, double time) {
    for (const auto& device : scenario.devices) {
        if (device.lid.empty())
            continue;
        const double angle = lidAngleAt(device.lid, time);
        require(angle >= 0 && angle <= 65535, "a lid is at an angle that a report can hold");
    }
}

/// What the player passes on, of an event.
std::string nameOf(const Scenario::Event& event) {
    if (const auto* press = std::get_if<Scenario::Press>(&event.what))
        return press->control;
    if (std::holds_alternative<Scenario::Key>(event.what))
        return "key";
    return std::holds_alternative<Scenario::Quit>(event.what) ? "quit" : "";
}

void play(const Scenario& scenario) {
    SimulatedMachine machine;
    ScenarioPlayer player(scenario, machine.runLoop, machine.workspace, machine.defaultCenter);
    player.setUpMachine(machine.hid, machine.accessibility, machine.system);
    std::vector<std::string> happened;
    player.start({.press = [&](std::string_view control) { happened.emplace_back(control); },
                  .key = [&](const TapEvent&) { happened.emplace_back("key"); },
                  .quit = [&] { happened.emplace_back("quit"); }});
    std::vector<std::string> expected;
    double end = 0;
    for (const Scenario::Event& event : scenario.events) {
        require(event.at >= end, "times never decrease");
        end = event.at;
        checkLids(scenario, end);
        if (std::string name = nameOf(event);
            !name.empty() || std::holds_alternative<Scenario::Press>(event.what))
            expected.push_back(std::move(name));
    }
    machine.runLoop.advance(end + 1);
    require(happened == expected, "every event happens, in the order of the file");
}

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvane;
    const auto text = textOf(data, size);
    const auto parsed = parseScenario(text);
    if (const auto* error = std::get_if<ScenarioError>(&parsed))
        checkPlace(*error, text);
    else
        play(std::get<Scenario>(parsed));
    return 0;
}
