#include <gtest/gtest.h>

#include "platform/linux/system/LinuxSystemInfo.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class LinuxSystemInfoTest : public testing::Test {
protected:
    [[nodiscard]] std::string model() const { return LinuxSystemInfo(m_root.path()).modelName(); }

    TemporaryFolder m_root;
};

TEST_F(LinuxSystemInfoTest, TheModelIsTheProductNameOfTheFirmware) {
    m_root.write("sys/class/dmi/id/product_name", "  MacBookPro11,3 \n");
    m_root.write("proc/device-tree/model", "something else");
    EXPECT_EQ(model(), "MacBookPro11,3");
}

TEST_F(LinuxSystemInfoTest, WithoutAFirmwareNameTheModelComesFromTheDeviceTree) {
    m_root.write("proc/device-tree/model", std::string("Apple MacBook Air (M1, 2020)\0", 29));
    EXPECT_EQ(model(), "Apple MacBook Air (M1, 2020)");
    m_root.write("sys/class/dmi/id/product_name", "\n");
    EXPECT_EQ(model(), "Apple MacBook Air (M1, 2020)");
}

TEST_F(LinuxSystemInfoTest, AFolderInPlaceOfTheFileLeavesTheModelUnknown) {
    m_root.write("sys/class/dmi/id/product_name/inside", "");
    EXPECT_EQ(model(), "");
}

} // namespace

} // namespace quorvane
