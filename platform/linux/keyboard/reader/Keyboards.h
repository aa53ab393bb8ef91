#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <poll.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/linux/keyboard/reader/Keyboard.h"
#include "platform/linux/keyboard/reader/KeyboardList.h"

namespace quorvane {

/// The keyboards that are open. Those that cannot be read are left out.
class Keyboards : NonCopyable {
public:
    /// Called for each keyboard that was opened.
    using Opened = std::function<void(const KeyboardNode&)>;

    Keyboards(KeyboardList& list, Opened opened) : m_list(list), m_opened(std::move(opened)) {}

    /// Opens the keyboards that are plugged in at `seats` and closes all others.
    void listenAt(const std::set<std::string>& seats);

    /// Takes some of the events that have come, never waits: how many keys went down with them.
    [[nodiscard]] std::size_t read();

    /// Adds each to what is polled.
    void appendTo(std::vector<pollfd>& polled) const;

    /// Becomes readable when listenAt is due once more; -1 if it listens nowhere.
    [[nodiscard]] int changes() const { return m_isListening ? m_list.descriptor() : -1; }

private:
    KeyboardList& m_list;
    Opened m_opened;
    bool m_isListening = false;
    /// By the paths of their nodes.
    std::map<std::string, std::unique_ptr<Keyboard>> m_open;
};

} // namespace quorvane
