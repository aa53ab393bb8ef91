#include "platform/linux/desktop/GraphicsCard.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace quorvane {
namespace {

class GraphicsCardTest : public testing::Test {
protected:
    void addDevice(const char* name) const { m_devices.write(name, ""); }

    TemporaryFolder m_devices;
};

TEST_F(GraphicsCardTest, IsAbsentWithoutDevices) {
    EXPECT_FALSE(hasGraphicsCard(m_devices.path()));
}

TEST_F(GraphicsCardTest, IsAbsentWithoutARenderNode) {
    addDevice("dri/card0");
    EXPECT_FALSE(hasGraphicsCard(m_devices.path()));
}

TEST_F(GraphicsCardTest, IsPresentWithARenderNode) {
    addDevice("dri/card0");
    addDevice("dri/renderD128");
    EXPECT_TRUE(hasGraphicsCard(m_devices.path()));
}

TEST_F(GraphicsCardTest, IsPresentWithTheNvidiaDevice) {
    addDevice("nvidiactl");
    EXPECT_TRUE(hasGraphicsCard(m_devices.path()));
}

} // namespace
} // namespace quorvane
