#pragma once

#include <memory>
#include <vector>

#include "platform/EventTap.h"
#include "tests/contract/Contract.h"

namespace quorvane {

/// An implementation of event taps, and its keyboard.
class EventTapBackend : public ContractBackend {
public:
    virtual EventTapService& service() = 0;

    /// Always the same key, which is no modifier.
    virtual void pressKey() = 0;
    virtual void releaseKey() = 0;
    /// A repeat of that key while it is held.
    virtual void repeatKey() = 0;
    virtual void pressShift() = 0;
    virtual void releaseShift() = 0;

    /// Returns when all events so far have been delivered.
    virtual void settle() {}
};

/// What a tap's callback was given.
struct HeardEvent {
    TapEventType type;
    bool isRepeat;

    bool operator==(const HeardEvent&) const = default;
};

/// What every implementation promises: it tells of the presses of keys.
class EventTapContract : public Contract<EventTapBackend> {
protected:
    static constexpr std::uint64_t keyDowns = tapEventMask(TapEventType::KeyDown);
    static constexpr std::uint64_t everything =
        keyDowns | tapEventMask(TapEventType::KeyUp) | tapEventMask(TapEventType::FlagsChanged);

    EventTapContract();

    /// A disabled tap without a source.
    std::shared_ptr<EventTap> makeTap(std::uint64_t events = keyDowns);
    /// Makes an enabled tap with its source on the run loop.
    void startToListen(std::uint64_t events = keyDowns);
    void typeKey();
    /// What has been heard since the last call.
    std::vector<HeardEvent> heard();

    std::shared_ptr<EventTap> m_tap;
    std::shared_ptr<TapSource> m_source;
};

/// What those promise that tell of repeats, releases and modifiers too.
class EventKindsContract : public EventTapContract {};

} // namespace quorvane
