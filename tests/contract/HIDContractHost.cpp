#include "platform/linux/hid/LinuxHID.h"
#include "platform/simulated/SimulatedHID.h"
#include "platform/simulated/SimulatedRunLoop.h"
#include "tests/contract/HIDContract.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

class SimulatedBackend final : public HIDBackend {
public:
    SimulatedBackend() { m_device->setAngle(112U); }

    HIDService& service() override { return m_hid; }

    [[nodiscard]] std::optional<int> productID() const override { return 0x8104; }

    [[nodiscard]] std::optional<int> angle() const override { return 112; }

    void setAngle(int degrees) override { m_device->setAngle(static_cast<unsigned>(degrees)); }

    void unplug() override { m_device->unplug(); }

private:
    SimulatedRunLoop m_runLoop;
    SimulatedHID m_hid{m_runLoop};
    std::shared_ptr<SimulatedHIDDevice> m_device = m_hid.addDevice(0x8104);
};

/// Industrial I/O needs no hardware, only its files.
class IIOBackend final : public HIDBackend {
public:
    IIOBackend() {
        m_sysfs.write("bus/iio/devices/iio:device0/name", "cros-ec-lid-angle\n");
        setAngle(112);
    }

    HIDService& service() override { return m_hid; }

    // No real vendor, so that no real device is found as well.
    [[nodiscard]] int vendorID() const override { return 0xFFFF; }

    [[nodiscard]] std::optional<int> productID() const override { return std::nullopt; }

    [[nodiscard]] std::optional<int> angle() const override { return 112; }

    void setAngle(int degrees) override {
        m_sysfs.write("bus/iio/devices/iio:device0/in_angl_raw", std::to_string(degrees) + "\n");
    }

    void unplug() override {
        std::filesystem::remove_all(m_sysfs.path() / "bus/iio/devices/iio:device0");
    }

private:
    TemporaryFolder m_sysfs;
    LinuxHID m_hid{m_sysfs.path()};
};

/// On a sensor that the test can move and unplug.
class HIDMovedContract : public HIDContract {};

TEST_P(HIDMovedContract, ReportsFollowTheAngle) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    ASSERT_EQ(device->open(), hidSuccess);
    for (const int angle : {1, 90, 255, 256, 359}) {
        m_backend->setAngle(angle);
        EXPECT_TRUE(waitUntil([&] { return readReport(*device).angle() == angle; })) << angle;
    }
}

TEST_P(HIDMovedContract, ADeviceThatIsGoneFailsEveryLaterCall) {
    const auto opened = sensor();
    const auto unopened = sensor();
    ASSERT_TRUE(opened && unopened);
    ASSERT_EQ(opened->open(), hidSuccess);
    m_backend->unplug();
    EXPECT_TRUE(waitUntil([&] { return readReport(*opened).result != hidSuccess; }));
    EXPECT_NE(unopened->open(), hidSuccess);
    EXPECT_NE(readReport(*opened).result, hidSuccess);
    EXPECT_TRUE(devices({}, m_backend->vendorID()).empty());
}

INSTANTIATE_TEST_SUITE_P(Simulated, HIDContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(LinuxIIO, HIDContract, on<IIOBackend>());
INSTANTIATE_TEST_SUITE_P(Simulated, HIDMovedContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(LinuxIIO, HIDMovedContract, on<IIOBackend>());

} // namespace

} // namespace quorvane
