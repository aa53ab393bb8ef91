#include "tests/app/ContentViewFixture.h"

namespace quorvane {
namespace {

using testing::ElementsAreArray;

using ContentViewRowsTest = ContentViewFixture;

const std::vector<ToggleRowText> rowTexts{
    {.icon = "door.left.hand.open",
     .label = "Build quality",
     .infoTitle = "Build Quality",
     .info = "Premium hinge quality simulation. Experience the authentic build quality of a real "
             "Windows laptop.\n\n"
             "Try moving your laptop lid to feel the difference."},
    {.icon = "keyboard",
     .label = "Keyboard",
     .infoTitle = "Tactile Feedback",
     .info = "Genuine keyboard feedback. Feel the premium tactile response of original Windows "
             "hardware.\n\n"
             "Just start typing anything."},
    {.icon = "fan",
     .label = "Thermals",
     .infoTitle = "Thermal Performance",
     .info = "Original Windows fan acoustics. Authentic thermal management at its finest.\n\n"
             "Enable and enjoy. Trackpad vibration included."},
    {.icon = "exclamationmark.triangle",
     .label = "Stability",
     .infoTitle = "System Stability",
     .info =
         "Experience the legendary Windows stability. Random crashes included at no extra cost.\n\n"
         "Sit back and wait. It will happen."},
    {.icon = "snowflake",
     .label = "Performance",
     .infoTitle = "Multitasking Performance",
     .info = "Advanced multitasking optimization. Your Mac will occasionally take a moment to "
             "think.\n\n"
             "Just keep using your Mac normally. Freezes will come to you."},
    {.icon = "power",
     .label = "Startup",
     .infoTitle = "Boot Experience",
     .info = "The iconic startup experience. Relive the classic moment of booting a real Windows "
             "machine.\n\n"
             "Close the lid and open it again to hear it."},
};

TEST_F(ContentViewRowsTest, TheRowsStandInTheirOrderWithTheirWords) {
    makeView();
    std::vector<ToggleRowText> texts;
    for (const ToggleRow& each : view->toggleRows())
        texts.push_back(each.text);
    EXPECT_THAT(texts, ElementsAreArray(rowTexts));
}

TEST_F(ContentViewRowsTest, AnInfoButtonFillsThePopupAndDismissalLeavesItsTexts) {
    makeReturningView();
    for (const ToggleRowText& row : rowTexts) {
        view->presentInfo(row);
        EXPECT_TRUE(view->showInfo());
        view->dismissInfo();
        EXPECT_FALSE(view->showInfo());
        EXPECT_EQ(view->activeInfoLabel().get(), row.infoTitle);
        EXPECT_EQ(view->activeInfoText().get(), row.info);
    }
}

TEST_F(ContentViewRowsTest, ThePopupHasItsTextsBeforeItIsShown) {
    makeReturningView();
    std::string label;
    std::string text;
    const auto shown = view->showInfo().observe([&] {
        label = view->activeInfoLabel();
        text = view->activeInfoText();
    });
    view->presentInfo(rowTexts[2]);
    EXPECT_EQ(label, "Thermal Performance");
    EXPECT_EQ(text, "Original Windows fan acoustics. Authentic thermal management at its finest."
                    "\n\nEnable and enjoy. Trackpad vibration included.");
}

TEST_F(ContentViewRowsTest, ThePopupAndTheSwitchesKnowNothingOfEachOther) {
    makeReturningView().enterSufferingMode();
    view->presentInfo(rowTexts[0]);
    view->leaveSufferingMode();
    EXPECT_TRUE(view->showInfo());
    EXPECT_FALSE(view->audioEnabled());
}

} // namespace
} // namespace quorvane
