#include "platform/linux/haptics/EvdevForceFeedback.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/linux/common/Udev.h"
#include "platform/linux/haptics/HapticEffects.h"
#include "platform/linux/haptics/HapticScan.h"

namespace quorvane {

namespace {

class EvdevPort final : public ForceFeedbackPort {
public:
    explicit EvdevPort(int descriptor) : m_descriptor(descriptor) {}

    ~EvdevPort() override { ::close(m_descriptor); }

    std::optional<int> upload(const ff_effect& effect) override {
        ff_effect uploaded = effect;
        if (ioctl(m_descriptor, EVIOCSFF, &uploaded) < 0)
            return std::nullopt;
        return uploaded.id;
    }

    void erase(int effect) override { ioctl(m_descriptor, EVIOCRMFF, effect); }

    bool play(int effect) override {
        input_event event{};
        event.type = EV_FF;
        event.code = static_cast<std::uint16_t>(effect);
        event.value = 1;
        return write(m_descriptor, &event, sizeof event) >= 0 || errno == EAGAIN || errno == EINTR;
    }

private:
    const int m_descriptor;
};

/// Node numbers are given out again, so a name found earlier may by now lead elsewhere.
bool isStill(int descriptor, HapticKind kind) {
    std::array<unsigned long, FF_MAX / (sizeof(long) * CHAR_BIT) + 1> bits{};
    if (ioctl(descriptor, EVIOCGBIT(EV_FF, sizeof bits), bits.data()) < 0)
        return false;
    return hapticKind(bits) == kind;
}

} // namespace

std::vector<HapticNode> EvdevForceFeedback::list() {
    const UdevContext context(udev_new());
    return context ? listHapticNodes(*context) : std::vector<HapticNode>();
}

std::unique_ptr<ForceFeedbackPort> EvdevForceFeedback::open(const HapticNode& node) {
    // Only to write: what is done on the device is nobody's business here.
    const int descriptor = ::open(node.node.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    auto port = std::make_unique<EvdevPort>(descriptor);
    return isStill(descriptor, node.kind) ? std::move(port) : nullptr;
}

} // namespace quorvane
