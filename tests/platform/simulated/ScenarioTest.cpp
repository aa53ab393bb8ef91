#include "platform/simulated/Scenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/NotificationCenter.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Scenario parse(std::string_view text) {
    const auto parsed = parseScenario(text);
    if (const auto* error = std::get_if<ScenarioError>(&parsed))
        ADD_FAILURE() << error->description;
    return std::get<Scenario>(parsed);
}

std::string mistakeIn(std::string_view text) {
    const auto parsed = parseScenario(text);
    const auto* error = std::get_if<ScenarioError>(&parsed);
    return error ? error->description : "no mistake";
}

TEST(Scenario, AnEmptyOneDescribesAMachineWithoutDevices) {
    const Scenario scenario = parse("{}");
    EXPECT_TRUE(scenario.devices.empty());
    EXPECT_FALSE(scenario.trusted);
    EXPECT_FALSE(scenario.defaults);
}

TEST(Scenario, DescribesTheMachineItsDevicesAndWhatHappens) {
    const Scenario scenario = parse(R"(
        // A comment.
        { "model": "MacBookAir10,1", "trusted": true, "loginItem": true,
          "defaults": { "hardwareChecked": true }, "hidManagerRefusesOpen": true,
          "hid": [ { "vendor": "0x046d", "product": 513, "lid": [[0, 100], [1, 50]],
                     "refusesOpen": true, "unplugAt": 3, "readings": { "5": [1, 2] } } ],
          "events": [ { "at": 1, "press": "OK" }, { "at": 1, "screens": "sleep" },
                      { "at": 2, "machine": "wake" }, { "at": 2, "key": "repeat" },
                      { "at": 3, "post": "autoStartSimulation" }, { "at": 4, "quit": true } ] })");
    EXPECT_EQ(scenario.model, "MacBookAir10,1");
    EXPECT_TRUE(scenario.trusted && scenario.loginItem && scenario.hidManagerRefusesOpen);
    EXPECT_TRUE(scenario.defaults->at("hardwareChecked"));
    ASSERT_EQ(scenario.devices.size(), 1U);
    const Scenario::Device& device = scenario.devices[0];
    EXPECT_EQ(device.vendorID, 0x046D);
    EXPECT_EQ(device.productID, 513);
    EXPECT_EQ(device.lid.size(), 2U);
    EXPECT_TRUE(device.refusesOpen);
    EXPECT_EQ(device.unplugAt, 3);
    EXPECT_THAT(device.readings.at(5), ElementsAre(1, 2));
    ASSERT_EQ(scenario.events.size(), 6U);
    EXPECT_EQ(std::get<Scenario::Press>(scenario.events[0].what).control, "OK");
    EXPECT_EQ(std::get<Scenario::Workspace>(scenario.events[1].what).name,
              WorkspaceNotification::screensDidSleep);
    EXPECT_EQ(std::get<Scenario::Workspace>(scenario.events[2].what).name,
              WorkspaceNotification::didWake);
    EXPECT_EQ(std::get<Scenario::Key>(scenario.events[3].what), Scenario::Key::Repeat);
    EXPECT_EQ(std::get<Scenario::Post>(scenario.events[4].what).name, "autoStartSimulation");
    EXPECT_TRUE(std::holds_alternative<Scenario::Quit>(scenario.events[5].what));
}

TEST(Scenario, EveryMistakeHasItsError) {
    EXPECT_THAT(mistakeIn("{"), HasSubstr("unexpected end of input"));
    EXPECT_EQ(mistakeIn("[]"), "the scenario is not an object");
    EXPECT_EQ(mistakeIn(R"({"modle": "x"})"), R"(the scenario has an unknown key "modle")");
    EXPECT_EQ(mistakeIn(R"({"model": 3})"),
              R"(the scenario: "model" has a value of the wrong kind)");
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": 1}]})"),
              "an event must be exactly one of press, post, screens, machine, key, quit");
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": 1, "press": "a", "key": "up"}]})"),
              "an event must be exactly one of press, post, screens, machine, key, quit");
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": 2, "quit": true}, {"at": 1, "quit": true}]})"),
              "the events' times decrease");
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": -1, "quit": true}]})"), "a time is negative");
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": 1, "screens": "off"}]})"),
              R"("screens" does not take "off")");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"product": "lid"}]})"),
              R"("lid" is not an ID in hexadecimal)");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"product": ""}]})"), R"("" is not an ID in hexadecimal)");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[1, 2], [0, 3]]}]})"), "a lid's times decrease");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[-1, 2], [1, 3]]}]})"), "a time is negative");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[1, -2]]}]})"), "a lid's angle is outside 0 to 65535");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[1, 65536]]}]})"),
              "a lid's angle is outside 0 to 65535");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"readings": {"0": []}}]})"),
              R"("0" is not the number of a reading)");
}

TEST(Scenario, NumbersAreParsedStrictly) {
    for (const std::string reading : {"5x", "x5", "", " 5", "5 ", "+5", "-5", "1.5", "99999999999"})
        EXPECT_EQ(mistakeIn(R"({"hid": [{"readings": {")" + reading + R"(": []}}]})"),
                  '"' + reading + R"(" is not the number of a reading)");
    for (const std::string id : {"0x", "0x81x4", " 0x8104", "0x8104 ", "+8104", "0x999999999"})
        EXPECT_EQ(mistakeIn(R"({"hid": [{"product": ")" + id + R"("}]})"),
                  '"' + id + R"(" is not an ID in hexadecimal)");
    for (const std::string id : {"-1", "65536", "4294967296", R"("-1")", R"("0x10000")"})
        EXPECT_EQ(mistakeIn(R"({"hid": [{"vendor": )" + id + "}]}"), "an ID is outside 0 to 65535");
    for (const std::string byte : {"-1", "256", "1.5", "true", R"("1")", "[1]"})
        EXPECT_EQ(mistakeIn(R"({"hid": [{"readings": {"1": [1, )" + byte + "]}}]}"),
                  "a report's byte is not a whole number from 0 to 255");
}

TEST(Scenario, APointOfALidIsTwoNumbers) {
    for (const std::string point : {"[]", "[1]", "[1, 100, 3]", "[[1, 100], [2, 50]]"})
        EXPECT_NE(mistakeIn(R"({"hid": [{"lid": [)" + point + "]}]}"), "no mistake") << point;
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[0, 100], [1, 100, 3]]}]})"),
              "a lid's point is not [seconds, degrees]");
    for (const std::string lid : {"100", R"([[1, "100"]])", R"({"1": 100})", "[1, 100]", "null"})
        EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": )" + lid + "}]}"),
                  R"(a device: "lid" has a value of the wrong kind)");
}

TEST(Scenario, AListForAnObjectOrTheReverseIsAMistake) {
    EXPECT_EQ(mistakeIn(R"({"hid": {"a": {}}})"),
              R"(the scenario: "hid" has a value of the wrong kind)");
    EXPECT_EQ(mistakeIn(R"({"events": {"a": {"at": 1, "quit": true}}})"),
              R"(the scenario: "events" has a value of the wrong kind)");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"readings": [[1, 2]]}]})"),
              R"(a device: "readings" has a value of the wrong kind)");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"readings": {"1": {"a": 1}}}]})"),
              R"(a device: "readings" has a value of the wrong kind)");
}

TEST(Scenario, QuitTakesNothingButTrue) {
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": 1, "quit": false}]})"),
              R"("quit" does not take false)");
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": 1, "quit": 1}]})"),
              R"(an event: "quit" has a value of the wrong kind)");
}

TEST(Scenario, ValuesJustWithinBoundsAreAccepted) {
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[0, 0], [1, 65535]]}]})"), "no mistake");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[0, 65536]]}]})"),
              "a lid's angle is outside 0 to 65535");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"lid": [[1, 2], [1, 3]]}]})"), "no mistake") << "a jump";
    EXPECT_EQ(mistakeIn(R"({"hid": [{"readings": {"1": [255, 0], "2": []}}]})"), "no mistake");
    EXPECT_EQ(mistakeIn(R"({"hid": [{"vendor": 0, "product": 65535}, {"product": "0xffff"}]})"),
              "no mistake");
    EXPECT_EQ(parse(R"({"hid": [{"product": "8104"}]})").devices[0].productID, 0x8104);
    EXPECT_EQ(mistakeIn(R"({"events": [{"at": 0, "quit": true}, {"at": 0, "key": "up"}]})"),
              "no mistake");
}

TEST(Scenario, AFileThatCannotBeReadGivesTheReason) {
    const auto missing = loadScenario("no/such/file.scenario");
    EXPECT_EQ(std::get<ScenarioError>(missing).description, "No such file or directory");
    const auto folder = loadScenario(".");
    EXPECT_EQ(std::get<ScenarioError>(folder).description, "Is a directory");
}

TEST(Scenario, ALidMovesInStraightLinesAndRestsBeforeAndAfter) {
    const std::vector<Scenario::LidPoint> way{{.at = 1, .degrees = 100}, {.at = 3, .degrees = 50}};
    EXPECT_EQ(lidAngleAt(way, 0), 100);
    EXPECT_EQ(lidAngleAt(way, 1), 100);
    EXPECT_EQ(lidAngleAt(way, 2), 75);
    EXPECT_EQ(lidAngleAt(way, 3), 50);
    EXPECT_EQ(lidAngleAt(way, 99), 50);
}

TEST(Scenario, ALidMayJump) {
    const std::vector<Scenario::LidPoint> way{{.at = 1, .degrees = 100}, {.at = 1, .degrees = 50}};
    EXPECT_EQ(lidAngleAt(way, 0.999), 100);
    EXPECT_EQ(lidAngleAt(way, 1), 50);
}

} // namespace
} // namespace quorvane
