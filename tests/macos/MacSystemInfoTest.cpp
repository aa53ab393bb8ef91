#include "platform/macos/MacSystemInfo.h"
#include "tests/macos/StandInTest.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacSystemInfoTest : public testing::Test {
protected:
    StandInMachine m_machine;
    MacSystemInfo m_info;
};

TEST_F(MacSystemInfoTest, TheModelIsTheOneThatTheSystemNames) {
    EXPECT_EQ(m_info.modelName(), "");
    standin::machine().model = "MacBookPro18,3";
    EXPECT_EQ(m_info.modelName(), "MacBookPro18,3");
}

TEST_F(MacSystemInfoTest, ThePlainQuestionOfTrustAsksNobody) {
    EXPECT_FALSE(m_info.isProcessTrusted());
    standin::machine().trusted = true;
    EXPECT_TRUE(m_info.isProcessTrusted());
    EXPECT_THAT(standin::machine().calls, IsEmpty());
}

TEST_F(MacSystemInfoTest, ThePersonIsAskedForTrustOnlyWithThePrompt) {
    EXPECT_FALSE(m_info.isProcessTrustedWithOptions(false));
    EXPECT_EQ(standin::machine().prompts, 0);
    EXPECT_FALSE(m_info.isProcessTrustedWithOptions(true));
    EXPECT_EQ(standin::machine().prompts, 1);
    EXPECT_THAT(
        standin::machine().calls,
        ElementsAre(R"(AXIsProcessTrustedWithOptions({"AXTrustedCheckOptionPrompt": false}))",
                    R"(AXIsProcessTrustedWithOptions({"AXTrustedCheckOptionPrompt": true}))"));
}

} // namespace

} // namespace quorvane
