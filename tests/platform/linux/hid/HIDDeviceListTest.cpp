// Which devices are the same ones after they were plugged in again.

#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/hid/HIDDeviceList.h"
#include "tests/support/FakeHIDDevice.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FoundHIDDevice device(const std::string& name, const std::string& place, int angle) {
    const auto hardware = std::make_shared<FakeHIDHardware>();
    hardware->angle = angle;
    return {.name = name, .place = place, .make = FakeHIDDevice::maker(hardware)};
}

std::vector<int> angles(const HIDDeviceList& list) {
    std::vector<int> result;
    for (const auto& each : list.present())
        result.push_back(each->open() == hidSuccess ? readAngle(*each) : -1);
    return result;
}

class HIDDeviceListTest : public testing::Test {
protected:
    HIDDeviceList m_list;
};

TEST_F(HIDDeviceListTest, DevicesComeInTheOrderInWhichTheyWereFound) {
    m_list.update({device("lid", "1", 101), device("keyboard", "2", 102)});
    EXPECT_THAT(angles(m_list), ElementsAre(101, 102));
    m_list.update({device("mouse", "3", 103), device("lid", "1", 0)});
    EXPECT_THAT(angles(m_list), ElementsAre(103, 101));
}

TEST_F(HIDDeviceListTest, ADeviceThatStaysIsTheSameAndIsNotOpenedAgain) {
    m_list.update({device("lid", "1", 101)});
    const auto before = m_list.present();
    m_list.update({device("lid", "1", 102)});
    EXPECT_EQ(m_list.present(), before);
    EXPECT_THAT(angles(m_list), ElementsAre(101));
}

TEST_F(HIDDeviceListTest, ADeviceThatComesAgainInAnotherPlaceIsTheSameAndIsReadThere) {
    m_list.update({device("lid", "1", 101)});
    const auto before = m_list.present();
    m_list.update({});
    EXPECT_THAT(m_list.present(), IsEmpty());
    m_list.update({});
    m_list.update({device("lid", "2", 102)});
    EXPECT_EQ(m_list.present(), before);
    EXPECT_THAT(angles(m_list), ElementsAre(102));
}

TEST_F(HIDDeviceListTest, ADeviceThatChangesItsPlaceBetweenTwoSearchesIsTheSame) {
    m_list.update({device("lid", "1", 101)});
    const auto before = m_list.present();
    m_list.update({device("lid", "2", 102)});
    EXPECT_EQ(m_list.present(), before);
    EXPECT_THAT(angles(m_list), ElementsAre(102));
}

TEST_F(HIDDeviceListTest, AnotherDeviceInTheSamePlaceIsAnother) {
    m_list.update({device("lid", "1", 101)});
    const auto before = m_list.present();
    m_list.update({device("keyboard", "1", 102)});
    EXPECT_NE(m_list.present(), before);
    EXPECT_THAT(angles(m_list), ElementsAre(102));
}

TEST_F(HIDDeviceListTest, TwoOfTheSameNameAreTwoDevices) {
    m_list.update({device("lid", "1", 101), device("lid", "2", 102)});
    EXPECT_THAT(angles(m_list), ElementsAre(101, 102));
    const auto before = m_list.present();
    m_list.update({device("lid", "2", 0)});
    EXPECT_THAT(m_list.present(), ElementsAre(before[1]));
    m_list.update({device("lid", "2", 0), device("lid", "3", 103)});
    EXPECT_THAT(m_list.present(), ElementsAre(before[1], before[0]));
}

TEST_F(HIDDeviceListTest, ADeviceThatNobodyKeptIsForgotten) {
    m_list.update({device("lid", "1", 101)});
    const std::weak_ptr<HIDDevice> forgotten = m_list.present().front();
    m_list.update({});
    EXPECT_TRUE(forgotten.expired());
}

} // namespace

} // namespace quorvane
