#include <gmock/gmock.h>
#include <optional>

#include "platform/linux/hid/HidrawDevice.h"
#include "platform/linux/hid/LinuxHID.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(HidrawScanTest, AHIDIDHoldsBusVendorAndProduct) {
    constexpr HIDIdentity lid{.vendorID = 0x05AC, .productID = 0x8104};
    EXPECT_EQ(parseHIDID("0003:000005AC:00008104"), lid);
    EXPECT_EQ(parseHIDID("0018:000005ac:00008104"), lid);
}

TEST(HidrawScanTest, WhatIsNoHIDIDIsRefused) {
    for (const char* text : {"", ":", "::", "0003", "0003:000005AC", "0003:000005AC:",
                             "0003::00008104", "0003:000005AC:0000810G", "0003:-5AC:8104",
                             "0003:000005AC:00008104:1", "0003: 5AC:8104", "0003:1000005AC:8104"})
        EXPECT_EQ(parseHIDID(text), std::nullopt) << text;
}

HidrawNode node(int number, int vendorID, int productID) {
    return {.node = "/dev/hidraw" + std::to_string(number),
            .number = number,
            .identity = {.vendorID = vendorID, .productID = productID}};
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
    EXPECT_THAT(numbers(matchingNodes(nodes, {.vendorID = 0x05AC, .productID = {}})),
                ElementsAre(1, 2, 10));
}

TEST(HidrawScanTest, ASearchForAProductKeepsThatVendorsProductOnly) {
    EXPECT_THAT(numbers(matchingNodes(nodes, {.vendorID = 0x05AC, .productID = 0x8104})),
                ElementsAre(1, 10));
    EXPECT_THAT(matchingNodes(nodes, {.vendorID = 0x05AC, .productID = 0x8102}), IsEmpty());
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
