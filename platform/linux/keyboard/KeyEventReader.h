#pragma once

#include <functional>

#include "base/NonCopyable.h"
#include "platform/EventTap.h"

namespace quorvane {

/// Where a tap's key events come from. What it has opened is closed with it. Main thread only.
class KeyEventReader : NonCopyable {
public:
    /// Must not let go of the reader.
    using Sink = std::function<void(const TapEvent&)>;

    virtual ~KeyEventReader() = default;

    /// Whether events are given to the sink, as they happen, by the Qt event loop; not at first.
    /// What happened before is not made up for. May be repeated.
    virtual void setReading(bool reading) = 0;
};

} // namespace quorvane
