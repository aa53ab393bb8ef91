#include "effects/crash/OverlayRecipe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "effects/crash/FreezeView.h"
#include "platform/simulated/SimulatedScreens.h"

namespace quorvane {
namespace {

using testing::ElementsAre;

/// A screen that gets smaller after the first call of `frame`.
class ShrinkingScreen final : public Screen {
public:
    [[nodiscard]] Rect frame() const override {
        return {.x = 0, .y = 0, .width = m_calls++ == 0 ? 1440.0 : 1024.0, .height = 600};
    }

private:
    mutable int m_calls = 0;
};

TEST(OverlayRecipe, SetsUpThePanelStepByStepAndBringsItToTheFront) {
    SimulatedScreens screens;
    static_cast<void>(showOverlay(screens, *screens.mainScreen(),
                                  {.opaque = true,
                                   .background = {.red = 0.25, .green = 0.5, .blue = 1},
                                   .ignoresMouseEvents = true},
                                  std::make_shared<FreezeView>()));
    ASSERT_EQ(screens.panels().size(), 1U);
    EXPECT_THAT(screens.panels()[0]->calls,
                ElementsAre("create 0,0 1440x900 style 128 backing 2 defer no", "level 1000",
                            "opaque yes", "background 0.25,0.5,1,1", "behavior 257",
                            "ignores mouse yes", "content view", "frame 0,0 1440x900 display yes",
                            "front"));
}

TEST(OverlayRecipe, CoversTheScreenInItsSizeAtTheTimeOfShowing) {
    SimulatedScreens screens;
    const ShrinkingScreen screen;
    static_cast<void>(showOverlay(screens, screen, {}, std::make_shared<FreezeView>()));
    ASSERT_EQ(screens.panels().size(), 1U);
    const auto& calls = screens.panels()[0]->calls;
    EXPECT_EQ(calls.front(), "create 0,0 1440x600 style 128 backing 2 defer no");
    EXPECT_THAT(calls, testing::Contains("frame 0,0 1024x600 display yes"));
}

TEST(OverlayRecipe, ReturnsTheShownPanelWithItsView) {
    SimulatedScreens screens;
    const auto view = std::make_shared<FreezeView>();
    const auto panel = showOverlay(screens, *screens.mainScreen(), {}, view);
    ASSERT_EQ(screens.shownPanels().size(), 1U);
    EXPECT_EQ(screens.shownPanels()[0]->view, view);
    panel->orderOut();
    EXPECT_TRUE(screens.shownPanels().empty());
}

} // namespace
} // namespace quorvane
