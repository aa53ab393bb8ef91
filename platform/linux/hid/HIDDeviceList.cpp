#include "platform/linux/hid/HIDDeviceList.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorvane {

void HIDDeviceList::update(const std::vector<FoundHIDDevice>& found) {
    for (Known& known : m_known) {
        const bool present = std::any_of(found.begin(), found.end(), [&known](const auto& each) {
            return each.name == known.name && each.place == known.place;
        });
        if (!present)
            known.place.clear();
    }
    std::vector<Known> updated;
    updated.reserve(found.size());
    for (const FoundHIDDevice& each : found)
        updated.push_back(take(each));
    // Nobody could notice that the others come again.
    std::copy_if(m_known.begin(), m_known.end(), std::back_inserter(updated),
                 [](const Known& known) { return known.device.use_count() > 1; });
    m_known = std::move(updated);
}

/// The device in that place, else one of that name that was unplugged, else a new one.
HIDDeviceList::Known HIDDeviceList::take(const FoundHIDDevice& found) {
    const auto at = [&](const std::string& place) {
        return std::find_if(m_known.begin(), m_known.end(), [&](const Known& known) {
            return known.name == found.name && known.place == place;
        });
    };
    auto position = at(found.place);
    if (position == m_known.end()) {
        position = at("");
        if (position == m_known.end())
            return {.name = found.name,
                    .place = found.place,
                    .device = std::make_shared<ThreadedHIDDevice>(found.make)};
        position->device->replace(found.make);
        position->place = found.place;
    }
    Known taken = std::move(*position);
    m_known.erase(position);
    return taken;
}

std::vector<std::shared_ptr<ThreadedHIDDevice>> HIDDeviceList::present() const {
    std::vector<std::shared_ptr<ThreadedHIDDevice>> devices;
    for (const Known& known : m_known)
        if (!known.place.empty())
            devices.push_back(known.device);
    return devices;
}

} // namespace quorvane
