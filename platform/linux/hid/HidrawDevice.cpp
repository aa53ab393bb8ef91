#include "platform/linux/hid/HidrawDevice.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/hidraw.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace quorvane {

namespace {

// An ioctl's size field has 14 bits.
constexpr std::size_t longestReport = (1U << 14U) - 1;

int openNode(const std::filesystem::path& node, int access) {
    int descriptor = -1;
    do {
        descriptor = ::open(node.c_str(), access | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

bool isRefusal(int error) {
    return error == EACCES || error == EPERM || error == EROFS;
}

/// Node numbers are given out again, so a name found earlier may by now lead elsewhere.
bool isStill(int descriptor, HIDIdentity identity) {
    hidraw_devinfo info{};
    if (ioctl(descriptor, HIDIOCGRAWINFO, &info) < 0)
        return false;
    // The kernel has the numbers as signed 16-bit ones.
    return static_cast<std::uint16_t>(info.vendor) == identity.vendorID &&
           static_cast<std::uint16_t>(info.product) == identity.productID;
}

} // namespace

HidrawDevice::HidrawDevice(std::filesystem::path node, HIDIdentity identity)
    : m_node(std::move(node)), m_identity(identity) {}

HidrawDevice::~HidrawDevice() {
    close();
}

HIDResult HidrawDevice::open() {
    if (m_gone)
        return ENODEV;
    if (m_descriptor >= 0)
        return hidSuccess;
    int descriptor = openNode(m_node, O_RDWR);
    if (descriptor < 0 && isRefusal(errno))
        descriptor = openNode(m_node, O_RDONLY);
    if (descriptor < 0)
        return errno;
    if (!isStill(descriptor, m_identity)) {
        ::close(descriptor);
        return ENODEV;
    }
    m_descriptor = descriptor;
    return hidSuccess;
}

HIDResult HidrawDevice::getReport(HIDReportType type, std::uint8_t reportID,
                                  std::span<std::uint8_t> buffer, std::size_t& length) {
    if (type != HIDReportType::Feature)
        return ENOTSUP;
    if (m_descriptor < 0)
        return ENODEV;
    const std::size_t room = std::min({length, buffer.size(), longestReport});
    if (room == 0)
        return EINVAL;
    int received = -1;
    do {
        buffer.front() = reportID;
        received = ioctl(m_descriptor, HIDIOCGFEATURE(room), buffer.data());
    } while (received < 0 && errno == EINTR);
    if (received < 0) {
        const int error = errno;
        if (error == ENODEV) {
            m_gone = true;
            close();
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

void HidrawDevice::close() {
    if (m_descriptor >= 0)
        ::close(std::exchange(m_descriptor, -1));
}

} // namespace quorvane
