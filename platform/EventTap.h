#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/NonCopyable.h"
#include "base/Observable.h"

namespace quorvane {

/// What happened on the keyboard, or to the tap itself.
enum class TapEventType : std::uint32_t {
    KeyDown = 10,
    KeyUp = 11,
    /// A modifier key alone, such as Shift, Control, Alt, Meta, Caps Lock or Fn.
    FlagsChanged = 12,
    DisabledByTimeout = 0xFFFFFFFE,
    DisabledByUserInput = 0xFFFFFFFF,
};

/// A keyboard event, without the key: for privacy, no platform passes on, stores or logs which key
/// it was.
struct TapEvent {
    TapEventType type = TapEventType::KeyDown;
    /// Not 0 for the automatic repeats of a held key.
    std::int64_t keyboardAutorepeat = 0;
};

/// Called on the run loop of the tap's source; must return fast, and return its argument.
using TapCallback = const TapEvent& (*)(const TapEvent& event);

enum class TapLocation : std::uint32_t {
    /// The events of the login session.
    Session = 1,
};

enum class TapPlacement : std::uint32_t {
    /// Before existing taps.
    HeadInsert = 0,
};

enum class TapOptions : std::uint32_t {
    /// Receives events without delaying or changing them.
    ListenOnly = 1,
};

/// The bit of `type` in a mask of events of interest.
[[nodiscard]] constexpr std::uint64_t tapEventMask(TapEventType type) {
    return std::uint64_t{1} << static_cast<std::uint32_t>(type);
}

/// Delivers a tap's events to a run loop. Main thread only.
class TapSource : NonCopyable {
public:
    virtual ~TapSource() = default;

    /// Adds it to the current thread's run loop, in the common modes. May be called again.
    virtual void addToRunLoop() = 0;
    /// Removes it. May be called again.
    virtual void removeFromRunLoop() = 0;
};

/// Receives the key events of the whole session. Closes what it has opened when the last reference
/// to it and to its source is dropped. Main thread only.
class EventTap : NonCopyable {
public:
    virtual ~EventTap() = default;

    /// The tap's source, not on a run loop yet; `order` is its priority among sources that are
    /// ready at the same time (0: default). Null if it cannot be made.
    [[nodiscard]] virtual std::shared_ptr<TapSource> createRunLoopSource(int order) = 0;
    /// A disabled tap delivers no events. Initially disabled.
    virtual void enable(bool enabled) = 0;
};

/// Creates taps. Opens nothing itself. Main thread only.
class EventTapService : NonCopyable {
public:
    virtual ~EventTapService() = default;

    /// A tap for the event types in the mask `eventsOfInterest`; null if it cannot be made, usually
    /// because the user has not given permission. Every platform delivers the presses of keys; not
    /// every one tells of repeats, releases and modifiers.
    [[nodiscard]] virtual std::shared_ptr<EventTap>
    createTap(TapLocation location, TapPlacement placement, TapOptions options,
              std::uint64_t eventsOfInterest, TapCallback callback) = 0;
};

/// The user's permission to listen to keys. Main thread only.
class Accessibility : NonCopyable {
public:
    virtual ~Accessibility() = default;

    /// Whether the program may listen to key presses in the whole session. Shows no prompt.
    [[nodiscard]] virtual bool isProcessTrusted() const = 0;
    /// As `isProcessTrusted`. If the result is false and `prompt` is set, the system also shows a
    /// prompt; the call does not wait for it.
    virtual bool isProcessTrustedWithOptions(bool prompt) = 0;

    /// Takes away a prompt that is still shown, where the system can, and forgets the obstacle: the
    /// keys are not wanted any more.
    virtual void withdrawPrompt() = 0;

    /// Why the keys that were asked for are not heard and what to do about it, in a few words for
    /// the user. Empty before the first prompt, and while nothing is known to be in the way.
    [[nodiscard]] virtual std::string obstacle() const = 0;
    /// Calls `observer` after each change of `obstacle` that the system tells of, as by the answer
    /// to a prompt, until the subscription is dropped.
    [[nodiscard]] virtual Subscription observeObstacle(std::function<void()> observer) = 0;
};

} // namespace quorvane
