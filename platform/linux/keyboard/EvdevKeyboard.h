#pragma once

#include <QSocketNotifier>
#include <array>
#include <bitset>
#include <cstddef>
#include <filesystem>
#include <linux/input.h>
#include <memory>
#include <optional>

#include "base/NonCopyable.h"
#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/keyboard/KeyEventReader.h"

namespace quorvane {

/// One keyboard's event node. Which keys are down is remembered while it is open, only to make up
/// for events that the kernel dropped. Main thread only.
class EvdevKeyboard : NonCopyable {
public:
    using Keys = std::bitset<KEY_CNT>;
    /// Queries the keys that are down from the device open as `descriptor`; none on failure.
    using KeyQuery = std::optional<Keys> (*)(int descriptor);

    /// Null if the node cannot be read.
    [[nodiscard]] static std::unique_ptr<EvdevKeyboard> open(const std::filesystem::path& node,
                                                             KeyEventReader::Sink sink,
                                                             KeyQuery query = &keysThatAreDown);

    /// False once the device has turned out to be gone.
    [[nodiscard]] bool isOpen() const { return static_cast<bool>(m_descriptor); }

    /// As KeyEventReader::setReading.
    void setReading(bool reading);

    /// By EVIOCGKEY.
    [[nodiscard]] static std::optional<Keys> keysThatAreDown(int descriptor);

private:
    EvdevKeyboard(FileDescriptor descriptor, KeyEventReader::Sink sink, KeyQuery query);

    void readEvents();
    bool readSome();
    void close();
    void handle(const input_event& event);
    void handleReport(const input_event& event);
    void handleKey(std::size_t key, int value);
    void catchUp();
    void deliver(const TapEvent& event) const;

    FileDescriptor m_descriptor;
    KeyEventReader::Sink m_sink;
    KeyQuery m_query;
    QSocketNotifier m_readable;
    Keys m_down;
    std::array<input_event, 64> m_events{};
    /// Bytes of an incomplete event at the start of `m_events`.
    std::size_t m_partial = 0;
    bool m_lostEvents = false;
    bool m_delivers = false;
};

} // namespace quorvane
