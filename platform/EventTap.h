#pragma once

#include <cstdint>
#include <memory>

#include "base/NonCopyable.h"

namespace quorvane {

/// What happened on the keyboard, or to the tap itself.
enum class TapEventType : std::uint32_t {
    KeyDown = 10,
    KeyUp = 11,
    /// A modifier key alone: Shift, Control, Alt, Meta, Caps Lock, Fn and their like.
    FlagsChanged = 12,
    DisabledByTimeout = 0xFFFFFFFE,
    DisabledByUserInput = 0xFFFFFFFF,
};

/// All that is known of an event on this side of the seam. Which key it was is nobody's business
/// here: no platform passes it on, keeps it or writes it anywhere.
struct TapEvent {
    TapEventType type = TapEventType::KeyDown;
    /// Not zero for what a held key repeats.
    std::int64_t keyboardAutorepeat = 0;
};

/// Called on the run loop that the tap's source is on; gives back the event that it was given. It
/// carries no context, and must return at once.
using TapCallback = const TapEvent& (*)(const TapEvent& event);

enum class TapLocation : std::uint32_t {
    /// The event stream of the person who is logged in.
    Session = 1,
};

enum class TapPlacement : std::uint32_t {
    /// Ahead of the taps that are there.
    HeadInsert = 0,
};

enum class TapOptions : std::uint32_t {
    /// Hears events without holding them up or changing them.
    ListenOnly = 1,
};

/// The bit of an event type in a tap's events of interest.
[[nodiscard]] constexpr std::uint64_t tapEventMask(TapEventType type) {
    return std::uint64_t{1} << static_cast<std::uint32_t>(type);
}

/// What brings a tap's events to a run loop. Main thread only.
class TapSource : NonCopyable {
public:
    virtual ~TapSource() = default;

    /// Puts it on the current thread's run loop, in its common modes. May be repeated.
    virtual void addToRunLoop() = 0;
    /// Takes it off again. May be repeated.
    virtual void removeFromRunLoop() = 0;
};

/// Hears the key events of the whole session. Everything that it has opened is closed with the last
/// reference to it and its source. Main thread only.
class EventTap : NonCopyable {
public:
    virtual ~EventTap() = default;

    /// The tap's source, on no run loop yet, with its place among sources that are ready at once
    /// (0: none in particular); null if it cannot be made.
    [[nodiscard]] virtual std::shared_ptr<TapSource> createRunLoopSource(int order) = 0;
    /// A tap that is not enabled delivers nothing. Made disabled.
    virtual void enable(bool enabled) = 0;
};

/// Where taps come from. Opens nothing by itself.
class EventTapService : NonCopyable {
public:
    virtual ~EventTapService() = default;

    /// A tap for the event types in the mask `eventsOfInterest`; null if it cannot be made, mostly
    /// for want of the person's permission.
    [[nodiscard]] virtual std::shared_ptr<EventTap>
    createTap(TapLocation location, TapPlacement placement, TapOptions options,
              std::uint64_t eventsOfInterest, TapCallback callback) = 0;
};

/// The person's permission to listen to keys. Main thread only.
class Accessibility : NonCopyable {
public:
    virtual ~Accessibility() = default;

    /// Whether key presses anywhere on the machine may be listened to. Asks nobody.
    [[nodiscard]] virtual bool isProcessTrusted() const = 0;
    /// As `isProcessTrusted`; if the answer is no and `prompt` is set, the system also asks the
    /// person, who may take their time: it is not waited for.
    virtual bool isProcessTrustedWithOptions(bool prompt) = 0;
};

} // namespace quorvane
