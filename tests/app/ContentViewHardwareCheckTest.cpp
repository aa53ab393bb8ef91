#include "tests/app/ContentViewFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using Screen = ContentView::Screen;

using ContentViewHardwareCheckTest = ContentViewFixture;

TEST_F(ContentViewHardwareCheckTest, TheHardwareCheckShowsItsResultsAfterAFixedPause) {
    addLid(100);
    machine.system.model = "MacBookPro18,3";
    machine.accessibility.trusted = true;
    makeView().onAppear();
    view->runHardwareCheck();
    EXPECT_TRUE(view->isChecking());
    machine.runLoop.advance(1.499);
    EXPECT_TRUE(view->isChecking());
    EXPECT_FALSE(view->checkDone());
    EXPECT_FALSE(view->sensor().sensorFound());
    machine.runLoop.advance(0.001);
    EXPECT_FALSE(view->isChecking());
    EXPECT_TRUE(view->checkDone());
    EXPECT_TRUE(view->hasLidSensor());
    EXPECT_TRUE(view->hasAccessibility());
    EXPECT_TRUE(view->hasTrackpad());
}

TEST_F(ContentViewHardwareCheckTest, TheResultsComeInTheirOrder) {
    addLid(100);
    machine.system.model = "MacBook";
    machine.accessibility.trusted = true;
    makeView();
    std::vector<std::string> order;
    const auto note = [&](const Observable<bool>& flag, std::string name) {
        return flag.observe([&order, name = std::move(name)] { order.push_back(name); });
    };
    const auto found = note(view->sensor().sensorFound(), "probe");
    const auto lidFlag = note(view->hasLidSensor(), "lid");
    const auto permission = note(keyboard->permission, "permission");
    const auto access = note(view->hasAccessibility(), "accessibility");
    const auto trackpad = note(view->hasTrackpad(), "trackpad");
    const auto done = note(view->checkDone(), "done");
    const auto checking = note(view->isChecking(), "checking");
    view->runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_THAT(order, ElementsAre("checking", "probe", "lid", "permission", "accessibility",
                                   "trackpad", "done", "checking"));
}

TEST_F(ContentViewHardwareCheckTest, StoresThePermissionInTheKeyboardEffectWithoutAPrompt) {
    makeView();
    keyboard->permission = true;
    view->runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_FALSE(keyboard->permission);
    EXPECT_FALSE(view->hasAccessibility());
    machine.accessibility.trusted = true;
    view->runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_TRUE(keyboard->permission);
    EXPECT_TRUE(view->hasAccessibility());
    machine.accessibility.trusted = false;
    view->runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_FALSE(keyboard->permission);
    EXPECT_FALSE(view->hasAccessibility());
    EXPECT_EQ(machine.accessibility.prompts, 0);
}

TEST_F(ContentViewHardwareCheckTest, ASensorFoundOnlyThroughTheFallbackCountsAsNotFound) {
    makeView().runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_TRUE(view->sensor().sensorFound());
    EXPECT_FALSE(view->hasLidSensor());
}

TEST_F(ContentViewHardwareCheckTest, ContinueWithEveryCheckFailedStillPersistsAndLeaves) {
    makeView().runHardwareCheck();
    machine.runLoop.advance(2);
    EXPECT_FALSE(view->hasLidSensor() || view->hasAccessibility() || view->hasTrackpad());
    view->confirmHardwareCheck();
    EXPECT_TRUE(machine.userDefaults.boolForKey("hardwareChecked"));
    EXPECT_EQ(view->screen(), Screen::Warning);
}

TEST_F(ContentViewHardwareCheckTest, TheModelTestIsASubstringInAnyLetterCase) {
    makeView();
    for (const auto* model : {"MacBookPro18,3", "macbook", "X MACBOOK Y"}) {
        machine.system.model = model;
        EXPECT_TRUE(view->isRunningOnMacBook()) << model;
    }
    for (const auto* model : {"Mac14,2", "ThinkPad X1", "", "Mac Book"}) {
        machine.system.model = model;
        EXPECT_FALSE(view->isRunningOnMacBook()) << model;
    }
}

TEST_F(ContentViewHardwareCheckTest, TheRowsShowPassedAndFailedAndTheLastThreeAreAlwaysReady) {
    makeView();
    const auto failed = view->checkRows();
    EXPECT_EQ(failed[0].fail, "Lid sensor not found — this feature won't be available");
    EXPECT_EQ(failed[1].fail, "Accessibility permission needed — enable in System Settings");
    EXPECT_EQ(failed[2].fail, "No built-in trackpad — vibration won't work");
    std::vector<bool> passed;
    for (const CheckRow& each : failed)
        passed.push_back(each.passed);
    EXPECT_THAT(passed, ElementsAre(false, false, false, true, true, true));
    EXPECT_EQ(failed[5],
              (CheckRow{.feature = "Launch at login", .passed = true, .ok = "Ready", .fail = ""}));
}

TEST_F(ContentViewHardwareCheckTest, EachRowShowsItsOwnResult) {
    makeView();
    const auto passed = [this] {
        view->runHardwareCheck();
        machine.runLoop.advance(1.5);
        std::string rows;
        for (const CheckRow& each : view->checkRows())
            rows += each.passed ? '+' : '-';
        return rows;
    };
    EXPECT_EQ(passed(), "---+++");
    machine.accessibility.trusted = true;
    EXPECT_EQ(passed(), "-+-+++");
    machine.accessibility.trusted = false;
    machine.system.model = "MacBook";
    EXPECT_EQ(passed(), "--++++");
    machine.system.model = "";
    addLid(100);
    EXPECT_EQ(passed(), "+--+++");
}

TEST_F(ContentViewHardwareCheckTest, TheRowsHaveTheirFeaturesAndTexts) {
    std::vector<std::string> rows;
    for (const CheckRow& each : makeCheckRows(true, true, true))
        rows.push_back(std::string(each.feature) + ": " + std::string(each.ok));
    EXPECT_THAT(
        rows, ElementsAre("Lid creak: Lid sensor detected", "Keyboard crack: Accessibility granted",
                          "Trackpad vibration: Force Touch trackpad detected", "Fan noise: Ready",
                          "Startup sound: Ready", "Launch at login: Ready"));
}

TEST_F(ContentViewHardwareCheckTest, TheFlagIsStoredBeforeTheScreenChanges) {
    makeView();
    bool stored = false;
    const auto screen = view->screen().observe(
        [&] { stored = machine.userDefaults.boolForKey("hardwareChecked"); });
    view->confirmHardwareCheck();
    EXPECT_TRUE(stored);
}

TEST_F(ContentViewHardwareCheckTest, EndsAlsoWithoutAnEffectThatNeedsPermission) {
    machine.accessibility.trusted = true;
    ContentView alone(machine.platform(), startup, {});
    alone.runHardwareCheck();
    machine.runLoop.advance(1.5);
    EXPECT_TRUE(alone.checkDone());
    EXPECT_TRUE(alone.hasAccessibility());
}

} // namespace
} // namespace quorvane
