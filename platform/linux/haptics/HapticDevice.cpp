#include "platform/linux/haptics/HapticDevice.h"

#include <algorithm>
#include <utility>

#include "platform/linux/haptics/HapticEffects.h"
#include "platform/linux/haptics/HapticScan.h"

namespace quorvane {

std::unique_ptr<HapticDevice> HapticDevice::openBest(ForceFeedbackDevices& devices) {
    auto nodes = devices.list();
    sortBySuitability(nodes);
    for (const HapticNode& node : nodes) {
        auto port = devices.open(node);
        if (!port)
            continue;
        std::unique_ptr<HapticDevice> device(new HapticDevice(std::move(port)));
        if (device->upload(node.kind))
            return device;
    }
    return nullptr;
}

HapticDevice::~HapticDevice() {
    for (const auto& effect : m_effects) {
        if (effect)
            m_port->erase(*effect);
    }
}

bool HapticDevice::play(HapticPattern pattern) {
    std::optional<int> effect = m_effects.at(static_cast<std::size_t>(pattern));
    for (const auto& other : m_effects) {
        if (!effect)
            effect = other;
    }
    return effect && m_port->play(*effect);
}

/// Whether it took one at least; another one is then felt in place of what it has no room for.
bool HapticDevice::upload(HapticKind kind) {
    for (const auto pattern :
         {HapticPattern::Alignment, HapticPattern::LevelChange, HapticPattern::Generic})
        m_effects.at(static_cast<std::size_t>(pattern)) =
            m_port->upload(hapticEffect(kind, pattern));
    return std::any_of(m_effects.begin(), m_effects.end(),
                       [](const auto& effect) { return effect.has_value(); });
}

} // namespace quorvane
