#include "platform/linux/hid/HidrawDevice.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <linux/hidraw.h>
#include <sys/ioctl.h>
#include <utility>

#include "platform/linux/common/Udev.h"

namespace quorvane {

namespace {

std::optional<int> parseHexadecimal(std::string_view text) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, 16);
    if (text.empty() || error != std::errc() || stop != end || value < 0)
        return std::nullopt;
    return value;
}

std::string property(udev_device& device, const char* key) {
    const char* value = udev_device_get_property_value(&device, key);
    return value ? value : "";
}

std::optional<HidrawNode> readNode(udev_device& device) {
    const char* node = udev_device_get_devnode(&device);
    const char* number = udev_device_get_sysnum(&device);
    // Owned by `device`: not to be released.
    udev_device* parent = udev_device_get_parent_with_subsystem_devtype(&device, "hid", nullptr);
    const char* id = parent ? udev_device_get_property_value(parent, "HID_ID") : nullptr;
    const auto identity = id ? parseHIDID(id) : std::nullopt;
    if (!node || !number || !identity)
        return std::nullopt;
    return HidrawNode{.node = node,
                      .number = static_cast<int>(std::strtol(number, nullptr, 10)),
                      .identity = *identity,
                      .name = std::string(id) + " " + property(*parent, "HID_PHYS") + " " +
                              property(*parent, "HID_UNIQ"),
                      .place = udev_device_get_syspath(&device)};
}

// An ioctl's size field has 14 bits.
constexpr std::size_t longestReport = (1U << 14U) - 1;

bool isRefusal(int error) {
    return error == EACCES || error == EPERM || error == EROFS;
}

/// Node numbers are reused, so the node may belong to another device by now.
bool isStill(int descriptor, HIDIdentity identity) {
    hidraw_devinfo info{};
    if (ioctl(descriptor, HIDIOCGRAWINFO, &info) < 0)
        return false;
    // The struct has them as signed 16-bit numbers.
    return static_cast<std::uint16_t>(info.vendor) == identity.vendorID &&
           static_cast<std::uint16_t>(info.product) == identity.productID;
}

} // namespace

std::optional<HIDIdentity> parseHIDID(std::string_view text) {
    const auto first = text.find(':');
    const auto second = text.find(':', first == std::string_view::npos ? first : first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    const auto vendor = parseHexadecimal(text.substr(first + 1, second - first - 1));
    const auto product = parseHexadecimal(text.substr(second + 1));
    if (!vendor || !product)
        return std::nullopt;
    return HIDIdentity{.vendorID = *vendor, .productID = *product};
}

std::vector<HidrawNode> listHidrawNodes(udev& context) {
    return readUdevDevices(context, "hidraw", "*", readNode);
}

std::vector<HidrawNode> nodesOfVendor(std::vector<HidrawNode> nodes, int vendorID) {
    std::erase_if(
        nodes, [vendorID](const HidrawNode& node) { return node.identity.vendorID != vendorID; });
    std::sort(nodes.begin(), nodes.end(),
              [](const auto& left, const auto& right) { return left.number < right.number; });
    return nodes;
}

HidrawDevice::HidrawDevice(std::filesystem::path node, HIDIdentity identity)
    : m_node(std::move(node)), m_identity(identity) {}

HIDResult HidrawDevice::open() {
    if (m_gone)
        return ENODEV;
    if (m_descriptor)
        return hidSuccess;
    auto descriptor = FileDescriptor::open(m_node, O_RDWR);
    if (!descriptor && isRefusal(errno))
        descriptor = FileDescriptor::open(m_node, O_RDONLY);
    if (!descriptor)
        return errno;
    if (!isStill(descriptor.get(), m_identity))
        return ENODEV;
    m_descriptor = std::move(descriptor);
    return hidSuccess;
}

HIDResult HidrawDevice::getReport(HIDReportType type, std::uint8_t reportID,
                                  std::span<std::uint8_t> buffer, std::size_t& length) {
    if (type != HIDReportType::Feature)
        return ENOTSUP;
    if (!m_descriptor)
        return ENODEV;
    const std::size_t room = std::min({length, buffer.size(), longestReport});
    if (room == 0)
        return EINVAL;
    int received = -1;
    do {
        buffer.front() = reportID;
        received = ioctl(m_descriptor.get(), HIDIOCGFEATURE(room), buffer.data());
    } while (received < 0 && errno == EINTR);
    if (received < 0) {
        const int error = errno;
        if (error == ENODEV) {
            m_gone = true;
            m_descriptor = {};
        }
        return error;
    }
    length = std::min(static_cast<std::size_t>(received), room);
    return hidSuccess;
}

std::optional<int> HidrawDevice::integerProperty(std::string_view key) const {
    if (key == "VendorID")
        return m_identity.vendorID;
    if (key == "ProductID")
        return m_identity.productID;
    return std::nullopt;
}

} // namespace quorvane
