#include <array>
#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <numbers>
#include <string>
#include <vector>

#include "platform/linux/hid/IIOLidDevice.h"
#include "platform/linux/hid/LinuxHID.h"
#include "tests/support/FileRights.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// In place of an angle: the device does not open, or a reading fails.
constexpr int unopened = -2;
constexpr int failed = -1;

int readAngle(HIDDevice& device) {
    std::array<std::uint8_t, 8> report{};
    std::size_t length = report.size();
    if (device.getReport(HIDReportType::Feature, 1, report, length) != hidSuccess)
        return failed;
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(report[0], 1);
    return report[1] | report[2] << 8;
}

class IIOLidDeviceTest : public testing::Test {
protected:
    void write(const std::string& file, const std::string& text) const {
        m_sysfs.write("bus/iio/devices/" + file, text);
    }

    void remove(const std::string& file) const {
        std::filesystem::remove(m_sysfs.path() / "bus/iio/devices" / file);
    }

    void addChromeLid(const std::string& raw) const {
        write("iio:device0/name", "cros-ec-lid-angle\n");
        write("iio:device0/in_angl_raw", raw);
    }

    void setChromeLid(const std::string& raw) const { write("iio:device0/in_angl_raw", raw); }

    /// The kernel driver's files: three angles with labels, and a shared scale and offset.
    void addIntelHinge(const std::string& raw) const {
        write("iio:device0/name", "hinge\n");
        write("iio:device0/in_angl0_label", "hinge\n");
        write("iio:device0/in_angl0_raw", raw);
        write("iio:device0/in_angl1_label", "screen\n");
        write("iio:device0/in_angl1_raw", "11\n");
        write("iio:device0/in_angl2_label", "keyboard\n");
        write("iio:device0/in_angl2_raw", "22\n");
        write("iio:device0/in_angl_scale", "0.017453293\n");
        write("iio:device0/in_angl_offset", "0\n");
    }

    [[nodiscard]] std::vector<std::shared_ptr<HIDDevice>> lids() const {
        std::vector<std::shared_ptr<HIDDevice>> made;
        for (const FoundHIDDevice& found : findIIOLids(m_sysfs.path()))
            made.push_back(found.make());
        return made;
    }

    /// The first angle of each lid.
    [[nodiscard]] std::vector<int> angles() const {
        std::vector<int> result;
        for (const auto& lid : lids())
            result.push_back(lid->open() == hidSuccess ? readAngle(*lid) : unopened);
        return result;
    }

    /// Opens the only lid and reads it once for each raw value.
    [[nodiscard]] std::vector<int> readings(const std::vector<std::string>& raws) const {
        setChromeLid(raws.front());
        const auto lid = lids().at(0);
        EXPECT_EQ(lid->open(), hidSuccess);
        std::vector<int> result;
        for (const std::string& raw : raws) {
            setChromeLid(raw);
            result.push_back(readAngle(*lid));
        }
        return result;
    }

    TemporaryFolder m_sysfs;
};

TEST_F(IIOLidDeviceTest, WithoutIndustrialIOThereIsNoLid) {
    EXPECT_THAT(lids(), IsEmpty());
}

TEST_F(IIOLidDeviceTest, TheChromeLidGivesDegrees) {
    addChromeLid("113\n");
    EXPECT_THAT(angles(), ElementsAre(113));
}

TEST_F(IIOLidDeviceTest, TheChromeLidIsKnownByItsOlderNameToo) {
    write("iio:device0/name", "cros_ec_lid_angle\n");
    write("iio:device0/in_angl_raw", "47\n");
    EXPECT_THAT(angles(), ElementsAre(47));
}

TEST_F(IIOLidDeviceTest, TheChromeLidGivesDegreesEvenWithAScaleBesideIt) {
    addChromeLid("113\n");
    write("iio:device0/in_angl_scale", "1\n");
    EXPECT_THAT(angles(), ElementsAre(113));
}

TEST_F(IIOLidDeviceTest, FiveHundredFromTheChromeLidIsAFailedReading) {
    addChromeLid("90");
    EXPECT_THAT(readings({"90", "500", "91"}), ElementsAre(90, failed, 91));
}

TEST_F(IIOLidDeviceTest, OnlyTheHingeChannelOfTheIntelHingeIsALid) {
    addIntelHinge("112\n");
    EXPECT_THAT(angles(), ElementsAre(112));
}

TEST_F(IIOLidDeviceTest, RadiansAreRoundedToWholeDegrees) {
    addIntelHinge("1955\n");
    write("iio:device0/in_angl_scale", "0.001\n");
    // 1.955 rad is 112.013 degrees, 1.945 rad is 111.440 and 1.947 rad is 111.555.
    EXPECT_THAT(angles(), ElementsAre(112));
    write("iio:device0/in_angl0_raw", "1945\n");
    EXPECT_THAT(angles(), ElementsAre(111));
    write("iio:device0/in_angl0_raw", "1947\n");
    EXPECT_THAT(angles(), ElementsAre(112));
}

TEST_F(IIOLidDeviceTest, TheOffsetIsAddedBeforeScaling) {
    addIntelHinge("100\n");
    write("iio:device0/in_angl_offset", "-10\n");
    EXPECT_THAT(angles(), ElementsAre(90));
}

TEST_F(IIOLidDeviceTest, AChannelsOwnScaleAndOffsetCountBeforeSharedOnes) {
    addIntelHinge("60\n");
    write("iio:device0/in_angl0_scale", "0.034906585\n");
    write("iio:device0/in_angl0_offset", "5\n");
    EXPECT_THAT(angles(), ElementsAre(130));
}

TEST_F(IIOLidDeviceTest, AHingeWithoutAnOffsetStartsAtZero) {
    addIntelHinge("112\n");
    remove("iio:device0/in_angl_offset");
    EXPECT_THAT(angles(), ElementsAre(112));
}

TEST_F(IIOLidDeviceTest, AHingeWithoutAScaleDoesNotOpen) {
    addIntelHinge("112\n");
    remove("iio:device0/in_angl_scale");
    EXPECT_THAT(angles(), ElementsAre(unopened));
}

TEST_F(IIOLidDeviceTest, AHingeWhoseScaleIsNoNumberDoesNotOpen) {
    for (const char* scale : {"", "nan\n", "inf\n", "0.0174 rad\n", "scale\n"}) {
        addIntelHinge("112\n");
        write("iio:device0/in_angl_scale", scale);
        EXPECT_THAT(angles(), ElementsAre(unopened)) << scale;
    }
}

TEST_F(IIOLidDeviceTest, AnyDeviceNamedAfterTheLidCounts) {
    write("iio:device0/name", "acme-lid-sensor\n");
    write("iio:device0/in_angl_raw", "75\n");
    EXPECT_THAT(angles(), ElementsAre(75));
    write("iio:device0/in_angl_scale", "0.034906585\n");
    EXPECT_THAT(angles(), ElementsAre(150));
}

TEST_F(IIOLidDeviceTest, AnyChannelLabelledAfterTheLidCounts) {
    write("iio:device0/name", "acme\n");
    write("iio:device0/in_angl0_label", "table\n");
    write("iio:device0/in_angl0_raw", "10\n");
    write("iio:device0/in_angl1_label", "Lid Angle\n");
    write("iio:device0/in_angl1_raw", "20\n");
    EXPECT_THAT(angles(), ElementsAre(20));
}

TEST_F(IIOLidDeviceTest, OtherAnglesAndOtherChannelsAreNoLids) {
    write("iio:device0/name", "slider\n");
    write("iio:device0/in_angl_raw", "10\n");
    write("iio:device1/name", "lid-accel\n");
    write("iio:device1/in_accel_x_raw", "20\n");
    write("iio:device2/in_angl_raw", "30\n");
    write("trigger0/name", "lid\n");
    write("trigger0/in_angl_raw", "40\n");
    EXPECT_THAT(angles(), IsEmpty());
}

TEST_F(IIOLidDeviceTest, LidsComeInTheNaturalOrderOfTheirNumbers) {
    for (const char* device : {"10", "2", "0"}) {
        write("iio:device" + std::string(device) + "/name", "lid\n");
        write("iio:device" + std::string(device) + "/in_angl_raw", "1" + std::string(device));
    }
    write("iio:device2/in_angl10_raw", "52\n");
    write("iio:device2/in_angl9_raw", "51\n");
    EXPECT_THAT(angles(), ElementsAre(10, 12, 51, 52, 110));
}

TEST_F(IIOLidDeviceTest, GarbageIsAFailedReading) {
    addChromeLid("90");
    EXPECT_THAT(readings({"90", "", "ninety", "90 degrees", "0x5A", "nan", "inf", "-1", "65536",
                          "1e300", "91"}),
                ElementsAre(90, failed, failed, failed, failed, failed, failed, failed, failed,
                            failed, 91));
}

TEST_F(IIOLidDeviceTest, AProductOfZeroAndInfinityIsAFailedReading) {
    addIntelHinge("0\n");
    // In degrees it is infinite.
    write("iio:device0/in_angl_scale", "1e308\n");
    EXPECT_THAT(angles(), ElementsAre(failed));
}

TEST_F(IIOLidDeviceTest, TheLargestAngleOfTheReportIsGiven) {
    addChromeLid("65535");
    EXPECT_THAT(angles(), ElementsAre(65535));
}

TEST_F(IIOLidDeviceTest, AFileThatVanishesIsAFailedReading) {
    addChromeLid("90");
    const auto lid = lids().at(0);
    ASSERT_EQ(lid->open(), hidSuccess);
    EXPECT_EQ(readAngle(*lid), 90);
    remove("iio:device0/in_angl_raw");
    EXPECT_EQ(readAngle(*lid), failed);
    std::array<std::uint8_t, 8> report{};
    std::size_t length = report.size();
    EXPECT_EQ(lid->getReport(HIDReportType::Feature, 1, report, length), ENODEV);
}

TEST_F(IIOLidDeviceTest, ALoneZeroBetweenReadingsIsAFailedReading) {
    addChromeLid("90");
    EXPECT_THAT(readings({"90", "0", "91", "0", "92"}), ElementsAre(90, failed, 91, failed, 92));
}

TEST_F(IIOLidDeviceTest, ARepeatedZeroIsAccepted) {
    addChromeLid("5");
    EXPECT_THAT(readings({"5", "0", "0", "0", "4", "0"}), ElementsAre(5, failed, 0, 0, 4, failed));
}

TEST_F(IIOLidDeviceTest, AZeroAsFirstReadingIsAccepted) {
    addChromeLid("0");
    EXPECT_THAT(readings({"0", "5"}), ElementsAre(0, 5));
}

TEST_F(IIOLidDeviceTest, ALidThatMayOnlyBeReadIsRead) {
    addIntelHinge("112\n");
    const auto device = m_sysfs.path() / "bus/iio/devices/iio:device0";
    for (const auto& attribute : std::filesystem::directory_iterator(device))
        makeReadOnly(attribute.path());
    const RightsOfAnotherUser rights(m_sysfs.path());
    EXPECT_THAT(angles(), ElementsAre(112));
}

TEST_F(IIOLidDeviceTest, ALidThatMayNotBeReadDoesNotOpen) {
    addChromeLid("112\n");
    std::filesystem::permissions(m_sysfs.path() / "bus/iio/devices/iio:device0/in_angl_raw",
                                 std::filesystem::perms::none);
    const RightsOfAnotherUser rights(m_sysfs.path());
    EXPECT_THAT(angles(), ElementsAre(unopened));
}

TEST_F(IIOLidDeviceTest, ALidHasNoProductAndNoVendor) {
    addChromeLid("90");
    EXPECT_EQ(lids().at(0)->integerProperty("ProductID"), std::nullopt);
    EXPECT_EQ(lids().at(0)->integerProperty("VendorID"), std::nullopt);
}

TEST_F(IIOLidDeviceTest, LidsAreFoundBySearchesForAVendorButNotForAProduct) {
    addChromeLid("90");
    LinuxHID hid(m_sysfs.path());
    const auto manager = hid.createManager();
    manager->scheduleWithRunLoop();
    ASSERT_EQ(manager->open(), hidSuccess);
    manager->setDeviceMatching({.vendorID = 0xFFFF, .productID = {}});
    EXPECT_EQ(manager->copyDevices().value().size(), 1U);
    manager->setDeviceMatching({.vendorID = 0xFFFF, .productID = 0x8104});
    EXPECT_THAT(manager->copyDevices().value(), IsEmpty());
}

} // namespace

} // namespace quorvane
