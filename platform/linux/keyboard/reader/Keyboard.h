#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "base/NonCopyable.h"
#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/keyboard/reader/KeyEvents.h"

namespace quorvane {

/// One keyboard's event node, which is open as long as this lives.
class Keyboard : NonCopyable {
public:
    /// Queries the keys that are down from the device open as `descriptor`; none on failure.
    using Query = std::optional<KeySet> (*)(int descriptor);

    /// Null if the node cannot be read.
    [[nodiscard]] static std::unique_ptr<Keyboard> open(const std::string& node,
                                                        Query query = &keysThatAreDown);

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }

    /// Takes some of the events that have come, never waits: how many keys went down with them.
    /// None if the device is gone.
    [[nodiscard]] std::optional<std::size_t> read();

    /// Whether the device has gone since it was opened.
    [[nodiscard]] bool isGone() const;

    /// By EVIOCGKEY.
    [[nodiscard]] static std::optional<KeySet> keysThatAreDown(int descriptor);

private:
    Keyboard(FileDescriptor descriptor, Query query);

    FileDescriptor m_descriptor;
    KeyEvents m_events;
};

} // namespace quorvane
