// The search for devices, and the managers on top of it, on a finder that can be held up.

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <mutex>
#include <sys/eventfd.h>
#include <vector>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/hid/HIDSearch.h"
#include "platform/linux/hid/LinuxHID.h"
#include "tests/support/FakeHIDDevice.h"
#include "tests/support/NoThreads.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::IsEmpty;
using testing::Lt;
using testing::SizeIs;

/// A bus with lids.
struct FakeBus {
    /// Stuck: the finder does not return.
    FakeHIDHardware gate;
    const FileDescriptor changed{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};

    void plugIn(const std::string& place, std::shared_ptr<FakeHIDHardware> hardware) {
        const std::lock_guard lock(m_mutex);
        m_found.push_back(
            {.name = "lid", .place = place, .make = FakeHIDDevice::maker(std::move(hardware))});
    }

    void unplug() {
        const std::lock_guard lock(m_mutex);
        m_found.clear();
    }

    std::vector<FoundHIDDevice> find() {
        gate.passWhenNotStuck();
        const std::lock_guard lock(m_mutex);
        return m_found;
    }

private:
    std::mutex m_mutex;
    std::vector<FoundHIDDevice> m_found;
};

class FakeFinder final : public HIDFinder {
public:
    explicit FakeFinder(std::shared_ptr<FakeBus> bus) : m_bus(std::move(bus)) {}

    [[nodiscard]] int descriptor() const override { return m_bus->changed.get(); }

    [[nodiscard]] std::vector<FoundHIDDevice> find() override {
        eventfd_t count = 0;
        eventfd_read(m_bus->changed.get(), &count);
        return m_bus->find();
    }

private:
    const std::shared_ptr<FakeBus> m_bus;
};

class HIDSearchTest : public testing::Test {
protected:
    HIDSearchTest() { m_bus->plugIn("1", m_lid); }

    ~HIDSearchTest() override {
        m_bus->gate.setStuck(false);
        m_lid->setStuck(false);
    }

    [[nodiscard]] std::unique_ptr<HIDFinder> finder() const {
        return std::make_unique<FakeFinder>(m_bus);
    }

    void announceChange() const { eventfd_write(m_bus->changed.get(), 1); }

    static std::vector<std::shared_ptr<HIDDevice>> devices(LinuxHID& hid,
                                                           std::optional<int> productID) {
        const auto manager = hid.createManager();
        manager->setDeviceMatching({.vendorID = 0x05AC, .productID = productID});
        EXPECT_EQ(manager->open(), hidSuccess);
        return manager->copyDevices().value();
    }

    template <typename Call>
    static std::chrono::nanoseconds time(const Call& call) {
        const auto begin = std::chrono::steady_clock::now();
        call();
        return std::chrono::steady_clock::now() - begin;
    }

    const std::shared_ptr<FakeBus> m_bus = std::make_shared<FakeBus>();
    const std::shared_ptr<FakeHIDHardware> m_lid = std::make_shared<FakeHIDHardware>();
};

TEST_F(HIDSearchTest, ADeviceIsReadFromTheStartOn) {
    const LinuxHID hid(finder());
    EXPECT_TRUE(waitUntil([&] { return m_lid->readings > 0; }));
}

TEST_F(HIDSearchTest, DevicesAreFoundByTheirVendorAndProduct) {
    LinuxHID hid(finder());
    EXPECT_THAT(devices(hid, {}), SizeIs(1));
    EXPECT_THAT(devices(hid, 0x8104), SizeIs(1));
    EXPECT_THAT(devices(hid, 0x8102), IsEmpty());
    m_lid->vendorID = 0x046D;
    EXPECT_THAT(devices(hid, {}), IsEmpty());
}

TEST_F(HIDSearchTest, EachSearchLooksAgain) {
    LinuxHID hid(finder());
    m_bus->unplug();
    EXPECT_THAT(devices(hid, {}), IsEmpty());
    m_bus->plugIn("2", m_lid);
    EXPECT_THAT(devices(hid, {}), SizeIs(1));
}

TEST_F(HIDSearchTest, ADeviceThatComesAgainGoesOnGivingReportsWhenThatIsAnnounced) {
    LinuxHID hid(finder());
    const auto lid = devices(hid, 0x8104).at(0);
    ASSERT_EQ(lid->open(), hidSuccess);
    ASSERT_EQ(readAngle(*lid), 112);
    m_lid->readResult = ENODEV;
    m_bus->unplug();
    announceChange();
    ASSERT_TRUE(waitUntil([&] { return readAngle(*lid) == -ENODEV; }));
    const auto again = std::make_shared<FakeHIDHardware>();
    again->angle = 90;
    m_bus->plugIn("2", again);
    announceChange();
    EXPECT_TRUE(waitUntil([&] { return readAngle(*lid) == 90; }, 500ms));
}

TEST_F(HIDSearchTest, WithoutAThreadAManagerDoesNotOpen) {
    const NoThreads memoryIsShort;
    LinuxHID hid(finder());
    EXPECT_EQ(hid.createManager()->open(), EAGAIN);
}

TEST_F(HIDSearchTest, SeveralDevicesThatHangAreWaitedForTogether) {
    m_lid->setStuck(true);
    m_bus->plugIn("2", m_lid);
    m_bus->plugIn("3", m_lid);
    LinuxHID hid(finder());
    EXPECT_THAT(time([&] {
                    const auto lids = devices(hid, {});
                    EXPECT_THAT(lids, SizeIs(3));
                    for (const auto& lid : lids)
                        EXPECT_EQ(lid->open(), ETIMEDOUT);
                }),
                testing::AllOf(testing::Ge(200ms), Lt(450ms)));
}

TEST_F(HIDSearchTest, ASearchThatHangsIsWaitedForAQuarterOfASecondOnceAndFindsWhatWasThere) {
    LinuxHID hid(finder());
    ASSERT_THAT(devices(hid, {}), SizeIs(1));
    m_bus->gate.setStuck(true);
    EXPECT_THAT(time([&] { EXPECT_THAT(devices(hid, {}), SizeIs(1)); }),
                testing::AllOf(testing::Ge(200ms), Lt(400ms)));
    EXPECT_THAT(time([&] { EXPECT_THAT(devices(hid, {}), SizeIs(1)); }), Lt(50ms));
    m_bus->unplug();
    m_bus->gate.setStuck(false);
    EXPECT_TRUE(waitUntil([&] { return devices(hid, {}).empty(); }));
}

TEST_F(HIDSearchTest, TheEndDoesNotWaitForASearchThatHangs) {
    auto hid = std::make_unique<LinuxHID>(finder());
    ASSERT_THAT(devices(*hid, {}), SizeIs(1));
    m_bus->gate.setStuck(true);
    announceChange();
    EXPECT_THAT(time([&] { hid.reset(); }), Lt(50ms));
    m_bus->gate.setStuck(false);
    // The thread lets go of the bus.
    EXPECT_TRUE(waitUntil([&] { return m_bus.use_count() == 1; }));
}

TEST(UdevHIDFinderTest, AnIIOLidThatComesAgainWithAnotherNumberIsReadThere) {
    const TemporaryFolder sysfs;
    const auto devices = sysfs.path() / "bus/iio/devices";
    sysfs.write("bus/iio/devices/iio:device0/name", "cros-ec-lid-angle\n");
    sysfs.write("bus/iio/devices/iio:device0/in_angl_raw", "112\n");
    const auto search = HIDSearch::start(makeUdevHIDFinder(sysfs.path()));
    const auto found = search->devices();
    ASSERT_THAT(found, SizeIs(1));
    ASSERT_EQ(found[0]->open(), hidSuccess);
    EXPECT_EQ(readAngle(*found[0]), 112);
    std::filesystem::rename(devices / "iio:device0", devices / "iio:device1");
    sysfs.write("bus/iio/devices/iio:device1/in_angl_raw", "90\n");
    EXPECT_EQ(search->devices(), found);
    EXPECT_TRUE(waitUntil([&] { return readAngle(*found[0]) == 90; }, 500ms));
    search->stop();
}

} // namespace

} // namespace quorvane
