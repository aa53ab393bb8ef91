#include "platform/macos/MacSystemInfo.h"
#include "tests/macos/FakeMachine.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacSystemInfoTest : public testing::Test {
protected:
    FakeMachine m_machine;
    MacSystemInfo m_info;
};

TEST_F(MacSystemInfoTest, TheModelIsTheOneThatTheSystemNames) {
    EXPECT_EQ(m_info.modelName(), "");
    fakes::machine().model = "MacBookPro18,3";
    EXPECT_EQ(m_info.modelName(), "MacBookPro18,3");
}

TEST_F(MacSystemInfoTest, ThePlainQuestionOfTrustAsksNobody) {
    EXPECT_FALSE(m_info.isProcessTrusted());
    fakes::machine().trusted = true;
    EXPECT_TRUE(m_info.isProcessTrusted());
    EXPECT_THAT(fakes::machine().calls, IsEmpty());
}

TEST_F(MacSystemInfoTest, ThePersonIsAskedForTrustOnlyWithThePrompt) {
    EXPECT_FALSE(m_info.isProcessTrustedWithOptions(false));
    EXPECT_EQ(fakes::machine().prompts, 0);
    EXPECT_FALSE(m_info.isProcessTrustedWithOptions(true));
    EXPECT_EQ(fakes::machine().prompts, 1);
    EXPECT_THAT(
        fakes::machine().calls,
        ElementsAre(R"(AXIsProcessTrustedWithOptions({"AXTrustedCheckOptionPrompt": false}))",
                    R"(AXIsProcessTrustedWithOptions({"AXTrustedCheckOptionPrompt": true}))"));
}

} // namespace

} // namespace quorvane
