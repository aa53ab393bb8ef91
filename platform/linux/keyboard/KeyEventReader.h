#pragma once

#include <functional>

#include "base/NonCopyable.h"
#include "platform/EventTap.h"

namespace quorvane {

/// The source of a tap's key events. Closes what it opened when destroyed. Main thread only.
class KeyEventReader : NonCopyable {
public:
    /// Called with each key event; must not destroy the reader.
    using Sink = std::function<void(const TapEvent&)>;

    virtual ~KeyEventReader() = default;

    /// Whether the Qt event loop passes events to the sink as they happen; off at first. Earlier
    /// events are dropped. May be repeated.
    virtual void setReading(bool reading) = 0;
};

} // namespace quorvane
