#include <algorithm>
#include <vector>

#include "tests/contract/HIDContract.h"

namespace quorvane {

HIDReading readReport(HIDDevice& device, std::size_t room, HIDReportType type,
                      std::uint8_t reportID) {
    HIDReading reading;
    reading.bytes.fill(0xEE);
    reading.length = room;
    reading.result = device.getReport(type, reportID, reading.bytes, reading.length);
    return reading;
}

std::shared_ptr<HIDManager> HIDContract::manager(std::optional<int> productID, int vendorID) {
    auto manager = m_backend->service().createManager();
    manager->setDeviceMatching({.vendorID = vendorID, .productID = productID});
    manager->scheduleWithRunLoop();
    EXPECT_EQ(manager->open(), hidSuccess);
    return manager;
}

std::vector<std::shared_ptr<HIDDevice>> HIDContract::devices(std::optional<int> productID,
                                                             int vendorID) {
    return manager(productID, vendorID)
        ->copyDevices()
        .value_or(std::vector<std::shared_ptr<HIDDevice>>{});
}

std::shared_ptr<HIDDevice> HIDContract::sensor() {
    for (const auto& device : devices({}, m_backend->vendorID())) {
        if (device->integerProperty("ProductID") == m_backend->productID())
            return device;
    }
    ADD_FAILURE() << "the sensor is not among the vendor's devices";
    return nullptr;
}

TEST_P(HIDContract, EachManagerIsNew) {
    EXPECT_NE(m_backend->service().createManager(), m_backend->service().createManager());
}

TEST_P(HIDContract, ASearchForTheVendorFindsTheSensorWhichOpensAndReportsItsAngle) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    ASSERT_EQ(device->open(), hidSuccess);
    const HIDReading reading = readReport(*device);
    ASSERT_EQ(reading.result, hidSuccess);
    ASSERT_GE(reading.length, 3U);
    ASSERT_LE(reading.length, reading.bytes.size());
    EXPECT_EQ(reading.bytes[0], 1);
    EXPECT_EQ(reading.angle(), m_backend->angle().value_or(reading.angle()));
    EXPECT_GE(reading.angle(), 1);
    EXPECT_LE(reading.angle(), 199);
}

TEST_P(HIDContract, ASearchForTheProductFindsTheSensorIfItHasOne) {
    const auto product = m_backend->productID();
    const auto found = devices(product.value_or(0x8104), m_backend->vendorID());
    EXPECT_EQ(!found.empty(), product.has_value());
    for (const auto& device : found)
        EXPECT_EQ(device->integerProperty("ProductID"), product);
}

TEST_P(HIDContract, ASearchForAnotherProductFindsNothing) {
    EXPECT_TRUE(devices(0x0001, m_backend->vendorID()).empty());
}

TEST_P(HIDContract, AnUnopenedDeviceCannotBeRead) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    EXPECT_NE(readReport(*device).result, hidSuccess);
}

TEST_P(HIDContract, OpeningTwiceIsHarmless) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    ASSERT_EQ(device->open(), hidSuccess);
    EXPECT_EQ(device->open(), hidSuccess);
    EXPECT_EQ(readReport(*device).result, hidSuccess);
}

TEST_P(HIDContract, TwoHandlesToOneDeviceBothWork) {
    const auto first = sensor();
    const auto second = sensor();
    ASSERT_TRUE(first && second);
    ASSERT_EQ(first->open(), hidSuccess);
    ASSERT_EQ(second->open(), hidSuccess);
    EXPECT_EQ(readReport(*first).result, hidSuccess);
    EXPECT_EQ(readReport(*second).result, hidSuccess);
}

TEST_P(HIDContract, ADeviceOutlivesItsManager) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    ASSERT_EQ(device->open(), hidSuccess);
    auto unrelated = manager({}, m_backend->vendorID());
    EXPECT_EQ(unrelated->close(), hidSuccess);
    unrelated.reset();
    EXPECT_EQ(readReport(*device).result, hidSuccess);
}

TEST_P(HIDContract, AReportIsCutToTheBuffersSize) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    ASSERT_EQ(device->open(), hidSuccess);
    const HIDReading reading = readReport(*device, 2);
    ASSERT_EQ(reading.result, hidSuccess);
    EXPECT_EQ(reading.length, 2U);
    EXPECT_EQ(reading.bytes[0], 1);
    EXPECT_TRUE(std::all_of(reading.bytes.begin() + 2, reading.bytes.end(),
                            [](std::uint8_t byte) { return byte == 0xEE; }));
}

TEST_P(HIDContract, AnOutputReportCannotBeRead) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    ASSERT_EQ(device->open(), hidSuccess);
    EXPECT_NE(readReport(*device, 8, HIDReportType::Output).result, hidSuccess);
}

TEST_P(HIDContract, AReportThatTheSensorDoesNotHaveFails) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    ASSERT_EQ(device->open(), hidSuccess);
    EXPECT_NE(readReport(*device, 8, HIDReportType::Feature, 77).result, hidSuccess);
    EXPECT_EQ(readReport(*device).result, hidSuccess);
}

TEST_P(HIDContract, AnUnknownPropertyIsNone) {
    const auto device = sensor();
    ASSERT_TRUE(device);
    EXPECT_EQ(device->integerProperty("NoSuchProperty"), std::nullopt);
}

} // namespace quorvane
