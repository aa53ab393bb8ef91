#pragma once

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "base/NonCopyable.h"

namespace quorvane {

/// A named pipe in place of a keyboard's event node. Closing it is unplugging the keyboard.
class KeyboardPipe : NonCopyable {
public:
    explicit KeyboardPipe(std::filesystem::path node) : m_node(std::move(node)) {
        if (mkfifo(m_node.c_str(), 0600) != 0)
            throw std::runtime_error("no named pipe");
        m_descriptor = open(m_node.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    }

    ~KeyboardPipe() { unplug(); }

    [[nodiscard]] const std::filesystem::path& node() const { return m_node; }

    void unplug() {
        if (m_descriptor >= 0)
            close(m_descriptor);
        m_descriptor = -1;
        std::filesystem::remove(m_node);
    }

    /// A key's event and the report that ends it.
    void send(int key, int value) const {
        sendEvent(EV_KEY, key, value);
        sendEvent(EV_SYN, SYN_REPORT, 0);
    }

    void sendEvent(int type, int code, int value) const {
        const input_event event = make(type, code, value);
        sendBytes({reinterpret_cast<const char*>(&event), sizeof event});
    }

    void sendBytes(std::string_view bytes) const {
        if (write(m_descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("the pipe does not take this");
    }

    /// Whether all that was sent has been read.
    [[nodiscard]] bool isEmpty() const {
        int size = 0;
        return ioctl(m_descriptor, FIONREAD, &size) == 0 && size == 0;
    }

    [[nodiscard]] static input_event make(int type, int code, int value) {
        input_event event{};
        event.type = static_cast<std::uint16_t>(type);
        event.code = static_cast<std::uint16_t>(code);
        event.value = value;
        return event;
    }

private:
    std::filesystem::path m_node;
    int m_descriptor = -1;
};

} // namespace quorvane
