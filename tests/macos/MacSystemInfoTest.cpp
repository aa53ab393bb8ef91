#include "platform/macos/MacSystemInfo.h"
#include "tests/macos/FakeMachine.h"

namespace quorvane {

namespace {

class MacSystemInfoTest : public testing::Test {
protected:
    FakeMachine m_machine;
    MacSystemInfo m_info;
};

TEST_F(MacSystemInfoTest, TheModelIsReadFromTheSystem) {
    EXPECT_EQ(m_info.modelName(), "");
    fakes::machine().model = "MacBookPro18,3";
    EXPECT_EQ(m_info.modelName(), "MacBookPro18,3");
}

} // namespace

} // namespace quorvane
