#include "platform/macos/MacAccessibility.h"
#include "tests/macos/FakeMachine.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacAccessibilityTest : public testing::Test {
protected:
    FakeMachine m_machine;
    MacAccessibility m_accessibility;
};

TEST_F(MacAccessibilityTest, CheckingTrustShowsNoPrompt) {
    EXPECT_FALSE(m_accessibility.isProcessTrusted());
    fakes::machine().trusted = true;
    EXPECT_TRUE(m_accessibility.isProcessTrusted());
    EXPECT_THAT(fakes::machine().calls, IsEmpty());
}

TEST_F(MacAccessibilityTest, TheUserIsAskedForTrustOnlyWithThePrompt) {
    EXPECT_FALSE(m_accessibility.isProcessTrustedWithOptions(false));
    EXPECT_EQ(fakes::machine().prompts, 0);
    EXPECT_FALSE(m_accessibility.isProcessTrustedWithOptions(true));
    EXPECT_EQ(fakes::machine().prompts, 1);
    EXPECT_THAT(
        fakes::machine().calls,
        ElementsAre(R"(AXIsProcessTrustedWithOptions({"AXTrustedCheckOptionPrompt": false}))",
                    R"(AXIsProcessTrustedWithOptions({"AXTrustedCheckOptionPrompt": true}))"));
}

TEST_F(MacAccessibilityTest, TheObstacleAfterThePromptNamesTheSettingsUntilTrustIsGiven) {
    m_accessibility.isProcessTrustedWithOptions(true);
    EXPECT_EQ(m_accessibility.obstacle(),
              "Accessibility permission needed — enable in System Settings");
    fakes::machine().trusted = true;
    EXPECT_EQ(m_accessibility.obstacle(), "");
}

} // namespace

} // namespace quorvane
