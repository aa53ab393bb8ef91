#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <linux/hidraw.h>
#include <linux/ioctl.h>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/hid/HidrawDevice.h"
#include "platform/linux/hid/LinuxHID.h"
#include "tests/support/FakeIoctl.h"
#include "tests/support/FileRights.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr HIDIdentity lid{.vendorID = 0x05AC, .productID = 0x8104};

/// A device whose node is a plain file, with a fake ioctl.
class HidrawDeviceTest : public testing::Test {
protected:
    using Report = std::vector<std::uint8_t>;

    std::optional<int> ioctlResult(int descriptor, unsigned long request, void* argument) {
        m_access = fcntl(descriptor, F_GETFL) & O_ACCMODE;
        if (request == HIDIOCGRAWINFO) {
            *static_cast<hidraw_devinfo*>(argument) = m_info;
            return 0;
        }
        if (_IOC_TYPE(request) != 'H' || _IOC_NR(request) != 7)
            return std::nullopt;
        auto* bytes = static_cast<std::uint8_t*>(argument);
        m_asked.push_back(bytes[0]);
        m_room = _IOC_SIZE(request);
        if (!m_errors.empty()) {
            errno = m_errors.back();
            m_errors.pop_back();
            bytes[0] = 0xFF;
            return -1;
        }
        std::memcpy(bytes, m_report.data(), std::min<std::size_t>(m_room, m_report.size()));
        return static_cast<int>(m_report.size());
    }

    /// The result of reading feature report 1 into `m_bytes`.
    HIDResult read(std::size_t length = 8) {
        m_length = length;
        return m_device.getReport(HIDReportType::Feature, 1, m_bytes, m_length);
    }

    FakeIoctl m_kernel{[this](int descriptor, unsigned long request, void* argument) {
        return ioctlResult(descriptor, request, argument);
    }};
    // Signed in the kernel's structure.
    hidraw_devinfo m_info{.bustype = 0, .vendor = 0x05AC, .product = static_cast<short>(0x8104)};
    Report m_report{1, 112, 0};
    // Errors of the next readings, the last one first.
    std::vector<int> m_errors;
    std::vector<int> m_asked;
    std::size_t m_room = 0;
    int m_access = -1;

    TemporaryFolder m_folder;
    std::filesystem::path m_node = m_folder.write("hidraw0", "");
    HidrawDevice m_device{m_node, lid};
    std::array<std::uint8_t, 8> m_bytes{};
    std::size_t m_length = 0;
};

TEST_F(HidrawDeviceTest, ANodeThatIsNotThereDoesNotOpen) {
    EXPECT_EQ(HidrawDevice("/nonexistent/hidraw0", lid).open(), ENOENT);
}

TEST_F(HidrawDeviceTest, ADeviceThatDidNotOpenCannotBeRead) {
    EXPECT_EQ(read(), ENODEV);
    EXPECT_THAT(m_asked, IsEmpty());
}

TEST_F(HidrawDeviceTest, ANodeThatNowBelongsToAnotherDeviceDoesNotOpen) {
    const auto before = openDescriptors();
    m_info.product = static_cast<short>(0x8105);
    EXPECT_EQ(m_device.open(), ENODEV);
    m_info.product = static_cast<short>(0x8104);
    m_info.vendor = 0x046D;
    EXPECT_EQ(m_device.open(), ENODEV);
    EXPECT_EQ(openDescriptors(), before);
    m_info.vendor = 0x05AC;
    EXPECT_EQ(m_device.open(), hidSuccess);
}

TEST_F(HidrawDeviceTest, ANodeThatIsNoLongerADeviceDoesNotOpen) {
    const FakeIoctl kernel([](int, unsigned long, void*) { return std::nullopt; });
    EXPECT_EQ(m_device.open(), ENODEV);
}

TEST_F(HidrawDeviceTest, ItIsOpenedOnceAndClosedWithTheObject) {
    const auto before = openDescriptors();
    {
        HidrawDevice device(m_node, lid);
        EXPECT_EQ(device.open(), hidSuccess);
        EXPECT_EQ(device.open(), hidSuccess);
        EXPECT_EQ(openDescriptors().size(), before.size() + 1);
        EXPECT_EQ(m_access, O_RDWR);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(HidrawDeviceTest, AReadOnlyNodeIsOpenedForReading) {
    makeReadOnly(m_node);
    const RightsOfAnotherUser rights(m_folder.path());
    ASSERT_EQ(m_device.open(), hidSuccess);
    EXPECT_EQ(m_access, O_RDONLY);
    EXPECT_EQ(read(), hidSuccess);
}

TEST_F(HidrawDeviceTest, ANodeThatMayNotBeReadDoesNotOpen) {
    std::filesystem::permissions(m_node, std::filesystem::perms::none);
    const RightsOfAnotherUser rights(m_folder.path());
    EXPECT_EQ(m_device.open(), EACCES);
}

TEST_F(HidrawDeviceTest, AReportIsPassedOnFromTheKernel) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    m_report = {1, 0x67, 0x01};
    ASSERT_EQ(read(), hidSuccess);
    EXPECT_EQ(m_length, 3U);
    EXPECT_THAT(m_bytes, ElementsAre(1, 0x67, 0x01, 0, 0, 0, 0, 0));
    EXPECT_THAT(m_asked, ElementsAre(1));
}

TEST_F(HidrawDeviceTest, NoMoreIsReadThanTheBufferHolds) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    ASSERT_EQ(read(2), hidSuccess);
    EXPECT_EQ(m_room, 2U);
    EXPECT_EQ(m_length, 2U);
    ASSERT_EQ(read(100), hidSuccess);
    EXPECT_EQ(m_room, 8U);
    EXPECT_EQ(read(0), EINVAL);
}

TEST_F(HidrawDeviceTest, AReadingInterruptedByASignalIsRetried) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    m_errors = {EINTR, EINTR};
    EXPECT_EQ(read(), hidSuccess);
    EXPECT_THAT(m_asked, ElementsAre(1, 1, 1));
}

TEST_F(HidrawDeviceTest, AReadingAfterAFailedOneWorks) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    m_errors = {EPIPE};
    EXPECT_EQ(read(), EPIPE);
    EXPECT_EQ(m_length, 8U);
    EXPECT_EQ(read(), hidSuccess);
}

TEST_F(HidrawDeviceTest, ADeviceThatIsGoneIsClosedAndStaysGone) {
    const auto before = openDescriptors();
    ASSERT_EQ(m_device.open(), hidSuccess);
    m_errors = {ENODEV};
    EXPECT_EQ(read(), ENODEV);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(read(), ENODEV);
    EXPECT_EQ(m_device.open(), ENODEV);
}

TEST_F(HidrawDeviceTest, OnlyFeatureReportsCanBeRead) {
    ASSERT_EQ(m_device.open(), hidSuccess);
    m_length = m_bytes.size();
    for (const auto type : {HIDReportType::Input, HIDReportType::Output})
        EXPECT_EQ(m_device.getReport(type, 1, m_bytes, m_length), ENOTSUP);
    EXPECT_THAT(m_asked, IsEmpty());
}

TEST_F(HidrawDeviceTest, TheIdentityIsItsIntegerProperties) {
    EXPECT_EQ(m_device.integerProperty("VendorID"), 0x05AC);
    EXPECT_EQ(m_device.integerProperty("ProductID"), 0x8104);
    EXPECT_EQ(m_device.integerProperty("Product"), std::nullopt);
}

TEST(HidrawScanTest, AHIDIDHoldsBusVendorAndProduct) {
    EXPECT_EQ(parseHIDID("0003:000005AC:00008104"), lid);
    EXPECT_EQ(parseHIDID("0018:000005ac:00008104"), lid);
}

TEST(HidrawScanTest, AMalformedHIDIDIsRejected) {
    for (const char* text : {"", ":", "::", "0003", "0003:000005AC", "0003:000005AC:",
                             "0003::00008104", "0003:000005AC:0000810G", "0003:-5AC:8104",
                             "0003:000005AC:00008104:1", "0003: 5AC:8104", "0003:1000005AC:8104"})
        EXPECT_EQ(parseHIDID(text), std::nullopt) << text;
}

HidrawNode node(int number, int vendorID, int productID) {
    return {.node = "/dev/hidraw" + std::to_string(number),
            .number = number,
            .identity = {.vendorID = vendorID, .productID = productID},
            .name = {},
            .place = {}};
}

std::vector<int> numbers(const std::vector<HidrawNode>& nodes) {
    std::vector<int> result;
    for (const HidrawNode& each : nodes)
        result.push_back(each.number);
    return result;
}

const std::vector nodes{node(10, 0x05AC, 0x8104), node(2, 0x05AC, 0x8262), node(0, 0x046D, 0x8104),
                        node(1, 0x05AC, 0x8104)};

TEST(HidrawScanTest, ASearchForAVendorKeepsAllItsNodesInNaturalOrder) {
    EXPECT_THAT(numbers(nodesOfVendor(nodes, 0x05AC)), ElementsAre(1, 2, 10));
    EXPECT_THAT(nodesOfVendor(nodes, 0x05AD), IsEmpty());
}

TEST(LinuxHIDTest, AManagerThatIsNotOpenHasNoDevices) {
    LinuxHID hid;
    const auto manager = hid.createManager();
    manager->setDeviceMatching({.vendorID = 0x05AC, .productID = {}});
    EXPECT_EQ(manager->copyDevices(), std::nullopt);
    ASSERT_EQ(manager->open(), hidSuccess);
    EXPECT_TRUE(manager->copyDevices());
    ASSERT_EQ(manager->close(), hidSuccess);
    EXPECT_EQ(manager->copyDevices(), std::nullopt);
}

} // namespace

} // namespace quorvane
