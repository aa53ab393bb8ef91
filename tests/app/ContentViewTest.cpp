#include "tests/app/ContentViewFixture.h"

#include <utility>

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Screen = ContentView::Screen;

using ContentViewTest = ContentViewFixture;

// Construction.

TEST_F(ContentViewTest, StartsWithEverythingOffButTheStartupExperience) {
    makeView();
    EXPECT_FALSE(view->audioEnabled());
    EXPECT_FALSE(view->sufferingMode());
    EXPECT_FALSE(view->hardwareChecked());
    EXPECT_FALSE(view->isChecking());
    EXPECT_FALSE(view->checkDone());
    EXPECT_FALSE(view->showInfo());
    EXPECT_EQ(view->activeInfoLabel().get(), "");
    EXPECT_EQ(view->textScale().get().value, 0.5);
    EXPECT_EQ(view->emojiRotation().get().value, 0);
    EXPECT_EQ(view->glowAmount().get().value, 0);
    EXPECT_EQ(view->floatingEmojis().size(), 12U);
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
}

TEST_F(ContentViewTest, MakesTheEffectsInTheirOrderAndStartsNone) {
    makeView();
    EXPECT_THAT(created, ElementsAre("keyboard", "fan", "bsod", "freeze"));
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(machine.hid.calls(), IsEmpty());
    EXPECT_THAT(machine.console.lines, IsEmpty());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(ContentViewTest, WithoutEffectsItHasTheCreakAndTheStartupExperience) {
    ContentView alone(machine.platform(), startup, {});
    ASSERT_EQ(alone.toggleRows().size(), 2U);
    EXPECT_EQ(alone.toggleRows()[0].text.label, "Build quality");
    EXPECT_EQ(alone.toggleRows()[1].text.label, "Startup");
    alone.onAppear();
    alone.enterSufferingMode();
    alone.leaveSufferingMode();
    EXPECT_FALSE(alone.sufferingMode());
}

TEST_F(ContentViewTest, TheSensorAndTheCreakComeFirstThenTheEffectsThenTheParticles) {
    std::vector<std::pair<std::size_t, std::size_t>> nodesAndDraws;
    const auto note = [&] {
        nodesAndDraws.emplace_back(machine.audio.nodeCount(), machine.random.bounds().size());
        return std::make_shared<FakeEffect>();
    };
    const FakeEffects effects{.keyboard = note, .fan = note, .bsod = note, .freeze = note};
    const ContentView made(machine.platform(), startup, effects.list());
    EXPECT_THAT(nodesAndDraws, ElementsAre(std::pair(1U, 0U), std::pair(1U, 0U), std::pair(1U, 0U),
                                           std::pair(1U, 0U)));
    // Two halves of an identity and six values for each of twelve.
    EXPECT_EQ(machine.random.bounds().size(), 96U);
}

// Screens.

TEST_F(ContentViewTest, AFirstLaunchShowsTheHardwareCheckAndEveryLaterOneTheWarning) {
    EXPECT_EQ(makeView().screen(), Screen::HardwareCheck);
    view->confirmHardwareCheck();
    EXPECT_EQ(view->screen(), Screen::Warning);
    EXPECT_TRUE(machine.userDefaults.boolForKey("hardwareChecked"));
    EXPECT_EQ(makeView().screen(), Screen::Warning);
}

TEST_F(ContentViewTest, SufferingModeIsNotPersisted) {
    makeReturningView().enterSufferingMode();
    EXPECT_EQ(view->screen(), Screen::ControlPanel);
    EXPECT_EQ(makeReturningView().screen(), Screen::Warning);
}

TEST_F(ContentViewTest, TheThreeButtonsChangeTheScreenWithASpring) {
    const Animation spring{
        .curve = Animation::Curve::Spring, .response = 0.4, .dampingFraction = 0.825};
    makeView().confirmHardwareCheck();
    EXPECT_EQ(view->screenAnimation(), spring);
    view->enterSufferingMode();
    EXPECT_EQ(view->screenAnimation(), spring);
    view->leaveSufferingMode();
    EXPECT_EQ(view->screenAnimation(), spring);
}

TEST_F(ContentViewTest, TheAnimationIsSetBeforeTheScreenChanges) {
    makeView();
    std::vector<Animation::Curve> curves;
    const auto changed =
        view->screen().observe([&] { curves.push_back(view->screenAnimation().curve); });
    view->confirmHardwareCheck();
    view->enterSufferingMode();
    view->onDisappear();
    machine.defaultCenter.post("autoStartSimulation");
    using Curve = Animation::Curve;
    EXPECT_THAT(curves, ElementsAre(Curve::Spring, Curve::Spring, Curve::None, Curve::None));
}

TEST_F(ContentViewTest, TheSensorHasStartedBeforeThePanelIsShown) {
    addLid(100);
    makeReturningView();
    std::vector<std::string> order;
    const auto suffering = view->sufferingMode().observe([&] { order.emplace_back("suffering"); });
    const auto screen = view->screen().observe([&] { order.emplace_back("screen"); });
    const auto running = view->sensor().isRunning().observe([&] { order.emplace_back("sensor"); });
    view->enterSufferingMode();
    EXPECT_THAT(order, ElementsAre("suffering", "sensor", "screen"));
    view->onDisappear();
    order.clear();
    machine.defaultCenter.post("autoStartSimulation");
    EXPECT_THAT(order, ElementsAre("suffering", "sensor", "screen"));
}

TEST_F(ContentViewTest, EnteringStartsTheSensorAndNoEffect) {
    addLid(100);
    makeReturningView().enterSufferingMode();
    EXPECT_TRUE(view->sensor().isRunning());
    EXPECT_THAT(calls, IsEmpty());
    EXPECT_THAT(switches(), ElementsAre(false, false, false, false, false, true));
}

// Appearing.

TEST_F(ContentViewTest, AppearingLoadsTheCreakAndDoesNotProbeBeforeTheHardwareCheck) {
    makeView().onAppear();
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ Φορτώθηκε: creaking.mp3 (2.0s)"));
    EXPECT_THAT(machine.hid.calls(), IsEmpty());
    EXPECT_FALSE(view->sensor().sensorFound());
}

TEST_F(ContentViewTest, AppearingFindsTheSensorOfAReturningUserAfterLoadingTheCreak) {
    addLid(100);
    makeReturningView();
    EXPECT_THAT(machine.console.lines,
                ElementsAre("✅ Φορτώθηκε: creaking.mp3 (2.0s)",
                            "✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=100°"));
    EXPECT_FALSE(view->sensor().isRunning());
}

TEST_F(ContentViewTest, AppearingStartsTheAnimations) {
    makeReturningView();
    using Curve = Animation::Curve;
    EXPECT_EQ(view->textScale().get(),
              (AnimatedValue{
                  .value = 1.0,
                  .animation = {.curve = Curve::Spring, .response = 0.6, .dampingFraction = 0.6}}));
    EXPECT_EQ(view->emojiRotation().get(),
              (AnimatedValue{
                  .value = 360,
                  .animation = {.curve = Curve::Linear, .duration = 20, .repeatsForever = true}}));
    EXPECT_EQ(view->glowAmount().get(), (AnimatedValue{.value = 1.0,
                                                       .animation = {.curve = Curve::EaseInOut,
                                                                     .duration = 1.5,
                                                                     .repeatsForever = true,
                                                                     .autoreverses = true}}));
}

TEST_F(ContentViewTest, AppearingLoadsAnimatesStartsTheParticlesAndProbesInThatOrder) {
    addLid(100);
    machine.userDefaults.setBool("hardwareChecked", true);
    makeView();
    std::vector<std::string> order;
    const auto note = [&](const AnyObservable& what, std::string name) {
        return what.observe([&order, this, name = std::move(name)] {
            order.push_back(name + (machine.runLoop.pendingCount() > 0 ? ", drifting" : ""));
        });
    };
    const auto loaded = note(view->audioManager().isLoaded(), "loaded");
    const auto scale = note(view->textScale(), "scale");
    const auto rotation = note(view->emojiRotation(), "rotation");
    const auto glow = note(view->glowAmount(), "glow");
    const auto found = note(view->sensor().sensorFound(), "found");
    view->onAppear();
    EXPECT_THAT(order, ElementsAre("loaded", "scale", "rotation", "glow", "found, drifting"));
}

TEST_F(ContentViewTest, TheParticlesMoveTwentyTimesASecondOnEveryScreen) {
    makeView();
    int steps = 0;
    const auto moved = view->floatingEmojisMoved().observe([&] { ++steps; });
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 0);
    const double before = view->floatingEmojis()[0].x;
    view->onAppear();
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 20);
    EXPECT_NE(view->floatingEmojis()[0].x, before);
    view->onDisappear();
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 40) << "the view never stops them";
}

TEST_F(ContentViewTest, EveryParticleHasMovedByATwentiethOfItsSpeedsBeforeTheNotification) {
    makeView();
    const auto before = view->floatingEmojis();
    ASSERT_EQ(before.size(), 12U);
    int told = 0;
    const auto moved = view->floatingEmojisMoved().observe([&] {
        ++told;
        for (std::size_t i = 0; i < before.size(); ++i) {
            const FloatingEmoji& now = view->floatingEmojis().at(i);
            EXPECT_EQ(now.id, before[i].id);
            // One that was near the top has re-entered at the bottom.
            if (before[i].y - before[i].speed / 20 >= -80) {
                EXPECT_DOUBLE_EQ(now.y, before[i].y - before[i].speed / 20);
                EXPECT_DOUBLE_EQ(now.x, before[i].x + before[i].drift / 20);
            } else {
                EXPECT_EQ(now.y, 700);
            }
        }
    });
    view->onAppear();
    machine.runLoop.advance(0.05);
    EXPECT_EQ(told, 1);
}

TEST_F(ContentViewTest, ASecondAppearanceAddsASecondParticleTimer) {
    makeView().onAppear();
    view->onAppear();
    int steps = 0;
    const auto moved = view->floatingEmojisMoved().observe([&] { ++steps; });
    machine.runLoop.advance(1);
    EXPECT_EQ(steps, 40);
}

} // namespace
} // namespace quorvane
