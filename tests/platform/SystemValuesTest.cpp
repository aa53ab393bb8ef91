#include <gtest/gtest.h>

#include "platform/Application.h"
#include "platform/EventTap.h"
#include "platform/HID.h"
#include "platform/Haptics.h"
#include "platform/NotificationCenter.h"
#include "platform/Screens.h"

namespace quorvane {
namespace {

// These are passed to macOS as numbers and strings, so the compiler would not notice a wrong one.

TEST(SystemValues, OfDevicesAndKeys) {
    EXPECT_EQ(static_cast<int>(HIDReportType::Feature), 2);
    EXPECT_EQ(hidSuccess, 0);
    EXPECT_EQ(static_cast<std::uint32_t>(TapEventType::KeyDown), 10U);
    EXPECT_EQ(static_cast<std::uint32_t>(TapEventType::KeyUp), 11U);
    EXPECT_EQ(static_cast<std::uint32_t>(TapEventType::FlagsChanged), 12U);
    EXPECT_EQ(static_cast<std::uint32_t>(TapEventType::DisabledByTimeout), 0xFFFFFFFEU);
    EXPECT_EQ(static_cast<std::uint32_t>(TapEventType::DisabledByUserInput), 0xFFFFFFFFU);
    EXPECT_EQ(tapEventMask(TapEventType::KeyDown), 0x400U);
    EXPECT_EQ(static_cast<std::uint32_t>(TapLocation::Session), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(TapPlacement::HeadInsert), 0U);
    EXPECT_EQ(static_cast<std::uint32_t>(TapOptions::ListenOnly), 1U);
}

TEST(SystemValues, OfPulsesAndPanels) {
    EXPECT_EQ(static_cast<int>(HapticPattern::Generic), 0);
    EXPECT_EQ(static_cast<int>(HapticPattern::Alignment), 1);
    EXPECT_EQ(static_cast<int>(HapticPattern::LevelChange), 2);
    EXPECT_EQ(static_cast<int>(HapticPerformanceTime::Now), 1);
    EXPECT_EQ(PanelStyle::nonactivatingPanel, 128U);
    EXPECT_EQ(PanelBacking::buffered, 2U);
    EXPECT_EQ(PanelCollectionBehavior::canJoinAllSpaces, 1U);
    EXPECT_EQ(PanelCollectionBehavior::fullScreenAuxiliary, 256U);
    EXPECT_EQ(PanelLevel::screenSaver, 1000);
}

TEST(SystemValues, OfNotificationsAndLoginItems) {
    EXPECT_EQ(WorkspaceNotification::screensDidSleep, "NSWorkspaceScreensDidSleepNotification");
    EXPECT_EQ(WorkspaceNotification::screensDidWake, "NSWorkspaceScreensDidWakeNotification");
    EXPECT_EQ(WorkspaceNotification::didWake, "NSWorkspaceDidWakeNotification");
    EXPECT_EQ(static_cast<int>(LoginItemStatus::Enabled), 1);
}

} // namespace
} // namespace quorvane
