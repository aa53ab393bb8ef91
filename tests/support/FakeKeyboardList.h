#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <stdexcept>

#include "platform/linux/keyboard/reader/KeyboardList.h"

namespace quorvane {

/// Something that becomes readable when a test says so.
class ReadySignal : NonCopyable {
public:
    ReadySignal() {
        if (m_descriptor < 0)
            throw std::runtime_error("no eventfd");
    }

    ~ReadySignal() { close(m_descriptor); }

    [[nodiscard]] int descriptor() const { return m_descriptor; }

    void raise() const { eventfd_write(m_descriptor, 1); }

    void clear() const {
        eventfd_t count = 0;
        eventfd_read(m_descriptor, &count);
    }

private:
    int m_descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
};

/// Keyboards that a test plugs in and unplugs. Any thread.
class FakeKeyboardList final : public KeyboardList {
public:
    /// Also reports one that is plugged in already, as when it changes.
    void plugIn(const std::filesystem::path& node, const std::string& seat = "seat0") {
        const std::lock_guard lock(m_mutex);
        m_nodes[node] = {.path = node, .seat = seat, .name = "fake " + node.filename().string()};
        m_changed.raise();
    }

    void unplug(const std::filesystem::path& node) {
        const std::lock_guard lock(m_mutex);
        m_nodes.erase(node);
        m_changed.raise();
    }

    [[nodiscard]] int descriptor() const override { return m_changed.descriptor(); }

    [[nodiscard]] std::vector<KeyboardNode> read() override {
        const std::lock_guard lock(m_mutex);
        m_changed.clear();
        std::vector<KeyboardNode> nodes;
        for (const auto& [path, node] : m_nodes)
            nodes.push_back(node);
        return nodes;
    }

private:
    std::mutex m_mutex;
    std::map<std::string, KeyboardNode> m_nodes;
    ReadySignal m_changed;
};

} // namespace quorvane
