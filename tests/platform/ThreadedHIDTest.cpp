// The devices of a service that blocks, behind one that does not.

#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <vector>

#include "platform/ThreadedHID.h"
#include "tests/support/FakeHIDDevice.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

/// A service with one device, and the last call to its manager.
class FakeHID final : public HIDService {
public:
    class Manager final : public HIDManager {
    public:
        explicit Manager(FakeHID& hid) : m_hid(hid) {}

        void setDeviceMatching(const HIDMatching& wanted) override { m_hid.matching = wanted; }

        void scheduleWithRunLoop() override { m_hid.lastCall = "schedule"; }

        HIDResult open() override {
            m_hid.lastCall = "open";
            return m_hid.result;
        }

        std::optional<std::vector<std::shared_ptr<HIDDevice>>> copyDevices() override {
            if (m_hid.hasNoSet)
                return std::nullopt;
            return {{std::make_shared<FakeHIDDevice>(m_hid.hardware)}};
        }

        HIDResult close() override {
            m_hid.lastCall = "close";
            return m_hid.result;
        }

    private:
        FakeHID& m_hid;
    };

    std::shared_ptr<HIDManager> createManager() override {
        return std::make_shared<Manager>(*this);
    }

    const std::shared_ptr<FakeHIDHardware> hardware = std::make_shared<FakeHIDHardware>();
    HIDMatching matching;
    std::string lastCall;
    HIDResult result = hidSuccess;
    bool hasNoSet = false;
};

class ThreadedHIDTest : public testing::Test {
protected:
    FakeHID m_hid;
    ThreadedHID m_threaded{m_hid};
    const std::shared_ptr<HIDManager> m_manager = m_threaded.createManager();
};

TEST_F(ThreadedHIDTest, ADeviceThatHangsIsReadOnAnotherThread) {
    const auto devices = m_manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    const auto& device = devices->front();
    ASSERT_EQ(device->open(), hidSuccess);
    EXPECT_EQ(readAngle(*device), 112);
    m_hid.hardware->setStuck(true);
    EXPECT_TRUE(waitUntil([&] { return readAngle(*device) == -ETIMEDOUT; }));
    m_hid.hardware->setStuck(false);
    EXPECT_TRUE(waitUntil([&] { return readAngle(*device) == 112; }));
}

TEST_F(ThreadedHIDTest, ADevicesPropertiesAreItsOwn) {
    EXPECT_EQ(m_manager->copyDevices().value().front()->integerProperty("ProductID"), 0x8104);
}

TEST_F(ThreadedHIDTest, TheManagersCallsArePassedOn) {
    const HIDMatching matching{.vendorID = 1, .productID = 2};
    m_manager->setDeviceMatching(matching);
    EXPECT_EQ(m_hid.matching, matching);
    m_manager->scheduleWithRunLoop();
    EXPECT_EQ(m_hid.lastCall, "schedule");
    m_hid.result = EACCES;
    EXPECT_EQ(m_manager->open(), EACCES);
    EXPECT_EQ(m_hid.lastCall, "open");
    EXPECT_EQ(m_manager->close(), EACCES);
    EXPECT_EQ(m_hid.lastCall, "close");
    m_hid.hasNoSet = true;
    EXPECT_EQ(m_manager->copyDevices(), std::nullopt);
}

} // namespace

} // namespace quorvane
