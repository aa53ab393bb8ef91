#include <array>
#include <span>

#include "platform/macos/MacHID.h"
#include "tests/macos/FakeMachine.h"

namespace quorvane {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class MacHIDTest : public testing::Test {
protected:
    std::shared_ptr<fakes::Device> plugIn(int productID, int angle = 112) {
        auto device = std::make_shared<fakes::Device>();
        device->integers = {{"VendorID", 1452}, {"ProductID", productID}};
        device->texts = {{"Product", "a sensor"}};
        device->report = {1, static_cast<std::uint8_t>(angle & 0xFF),
                          static_cast<std::uint8_t>(angle >> 8)};
        fakes::machine().devices.push_back(device);
        return device;
    }

    FakeMachine m_machine;
    std::vector<std::string>& m_calls = fakes::machine().calls;
    MacHID m_hid;
};

TEST_F(MacHIDTest, ASearchForAProductMakesEachCallWithItsValues) {
    plugIn(0x8104);
    const auto manager = m_hid.createManager();
    manager->setDeviceMatching({.vendorID = 1452, .productID = 0x8104});
    manager->scheduleWithRunLoop();
    manager->open();
    const auto devices = manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    devices->front()->open();
    std::array<std::uint8_t, 8> buffer{};
    std::size_t length = buffer.size();
    devices->front()->getReport(HIDReportType::Feature, 1, buffer, length);
    manager->close();
    EXPECT_THAT(
        m_calls,
        ElementsAre("IOHIDManagerCreate(0)",
                    R"(IOHIDManagerSetDeviceMatching({"VendorID": 1452, "ProductID": 33028}))",
                    R"(IOHIDManagerScheduleWithRunLoop(CFRunLoop, "kCFRunLoopDefaultMode"))",
                    "IOHIDManagerOpen(0)", "IOHIDManagerCopyDevices", "IOHIDDeviceOpen(0)",
                    "IOHIDDeviceGetReport(2, 1, 8)", "IOHIDManagerClose(0)"));
}

TEST_F(MacHIDTest, ASearchForTheVendorAloneNamesNoProduct) {
    m_hid.createManager()->setDeviceMatching({.vendorID = 1452, .productID = {}});
    EXPECT_THAT(m_calls, Contains(R"(IOHIDManagerSetDeviceMatching({"VendorID": 1452}))"));
}

TEST_F(MacHIDTest, ADestroyedManagerIsReleasedAndNotClosed) {
    auto manager = m_hid.createManager();
    manager->open();
    manager.reset();
    EXPECT_THAT(fakes::leftOver(), IsEmpty());
    EXPECT_THAT(m_calls, testing::Not(Contains("IOHIDManagerClose(0)")));
}

TEST_F(MacHIDTest, WithoutASetOfDevicesThereAreNone) {
    fakes::machine().noDeviceSet = true;
    EXPECT_EQ(m_hid.createManager()->copyDevices(), std::nullopt);
}

TEST_F(MacHIDTest, AManagerThatCannotBeOpenedReportsIt) {
    fakes::machine().managerOpenResult = -1;
    EXPECT_EQ(m_hid.createManager()->open(), -1);
}

TEST_F(MacHIDTest, APropertyThatIsATextIsNoInteger) {
    plugIn(0x8104);
    const auto manager = m_hid.createManager();
    const auto devices = manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    EXPECT_EQ(devices->front()->integerProperty("Product"), std::nullopt);
    EXPECT_EQ(devices->front()->integerProperty("ProductID"), 0x8104);
}

TEST_F(MacHIDTest, ADeviceThatIsOpenIsNotOpenedAgain) {
    plugIn(0x8104);
    const auto manager = m_hid.createManager();
    const auto devices = manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    EXPECT_EQ(devices->front()->open(), 0);
    EXPECT_EQ(devices->front()->open(), 0);
    EXPECT_THAT(m_calls, Contains("IOHIDDeviceOpen(0)").Times(1));
}

TEST_F(MacHIDTest, ADeviceThatCouldNotBeOpenedIsNotReadUntilItCan) {
    const auto device = plugIn(0x8104);
    device->openResult = -1;
    const auto manager = m_hid.createManager();
    const auto devices = manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    EXPECT_EQ(devices->front()->open(), -1);
    std::array<std::uint8_t, 8> buffer{};
    std::size_t length = buffer.size();
    EXPECT_NE(devices->front()->getReport(HIDReportType::Feature, 1, buffer, length), 0);
    device->openResult = 0;
    EXPECT_EQ(devices->front()->open(), 0);
    EXPECT_EQ(devices->front()->getReport(HIDReportType::Feature, 1, buffer, length), 0);
}

TEST_F(MacHIDTest, AReadReturnsItsLengthAndAFailedOneChangesNothing) {
    const auto device = plugIn(0x8104);
    const auto manager = m_hid.createManager();
    const auto devices = manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    devices->front()->open();
    std::array<std::uint8_t, 8> buffer{};
    std::size_t length = buffer.size();
    device->readResult = -1;
    EXPECT_EQ(devices->front()->getReport(HIDReportType::Feature, 1, buffer, length), -1);
    EXPECT_EQ(length, 8U);
    device->readResult = 0;
    EXPECT_EQ(devices->front()->getReport(HIDReportType::Feature, 1, buffer, length), 0);
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(buffer[1], 112);
}

TEST_F(MacHIDTest, NoMoreIsReadThanTheBufferHolds) {
    plugIn(0x8104);
    const auto manager = m_hid.createManager();
    const auto devices = manager->copyDevices();
    ASSERT_TRUE(devices && devices->size() == 1);
    devices->front()->open();
    std::array<std::uint8_t, 8> buffer{};
    std::size_t length = 100;
    EXPECT_EQ(
        devices->front()->getReport(HIDReportType::Feature, 1, std::span(buffer).first(2), length),
        0);
    EXPECT_EQ(length, 2U);
    EXPECT_THAT(m_calls, Contains("IOHIDDeviceGetReport(2, 1, 2)"));
}

TEST_F(MacHIDTest, EachHandleHoldsItsDeviceOnce) {
    plugIn(0x8104);
    plugIn(0x8102);
    auto manager = m_hid.createManager();
    auto devices = manager->copyDevices();
    EXPECT_THAT(fakes::leftOver(), ElementsAre("IOHIDDevice", "IOHIDDevice", "IOHIDManager"));
    devices->pop_back();
    manager.reset();
    EXPECT_THAT(fakes::leftOver(), ElementsAre("IOHIDDevice"));
}

} // namespace

} // namespace quorvane
