#include "platform/linux/keyboard/reader/Keyboards.h"

#include <utility>

namespace quorvane {

void Keyboards::listenAt(const std::set<std::string>& seats) {
    m_isListening = !seats.empty();
    if (!m_isListening) {
        m_open.clear();
        return;
    }
    const auto nodes = m_list.read();
    std::map<std::string, std::unique_ptr<Keyboard>> before;
    before.swap(m_open);
    for (const KeyboardNode& node : nodes) {
        if (!seats.contains(node.seat))
            continue;
        // A device that is plugged in again may have its old path.
        auto& keyboard = m_open[node.path] = std::move(before[node.path]);
        if (keyboard && !keyboard->isGone())
            continue;
        keyboard = Keyboard::open(node.path);
        if (keyboard)
            m_opened(node);
        else
            m_open.erase(node.path);
    }
}

std::size_t Keyboards::read() {
    std::size_t presses = 0;
    std::erase_if(m_open, [&presses](const auto& entry) {
        const auto some = entry.second->read();
        presses += some.value_or(0);
        return !some;
    });
    return presses;
}

void Keyboards::appendTo(std::vector<pollfd>& polled) const {
    for (const auto& [path, keyboard] : m_open)
        polled.push_back({.fd = keyboard->descriptor(), .events = POLLIN, .revents = 0});
}

} // namespace quorvane
