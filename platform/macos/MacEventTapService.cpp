#include "platform/macos/MacEventTapService.h"

#include <ApplicationServices/ApplicationServices.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "platform/macos/CFRef.h"

namespace quorvane {

namespace {

static_assert(static_cast<unsigned>(TapEventType::KeyDown) == kCGEventKeyDown);
static_assert(static_cast<unsigned>(TapEventType::KeyUp) == kCGEventKeyUp);
static_assert(static_cast<unsigned>(TapEventType::FlagsChanged) == kCGEventFlagsChanged);
static_assert(static_cast<unsigned>(TapEventType::DisabledByTimeout) ==
              kCGEventTapDisabledByTimeout);
static_assert(static_cast<unsigned>(TapEventType::DisabledByUserInput) ==
              kCGEventTapDisabledByUserInput);
static_assert(static_cast<unsigned>(TapLocation::Session) == kCGSessionEventTap);
static_assert(static_cast<unsigned>(TapPlacement::HeadInsert) == kCGHeadInsertEventTap);
static_assert(static_cast<unsigned>(TapOptions::ListenOnly) == kCGEventTapOptionListenOnly);

// A callback of its own for each tap, since the tap's callback carries no context.
constexpr std::size_t mostTaps = 4;
std::array<TapCallback, mostTaps> callbacks{};

// Reads nothing of the event but its type and whether it repeats.
template <std::size_t place>
CGEventRef onEvent(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event,
                   void* /*userInfo*/) {
    if (const TapCallback callback = std::get<place>(callbacks))
        static_cast<void>(callback({.type = static_cast<TapEventType>(type),
                                    .keyboardAutorepeat = CGEventGetIntegerValueField(
                                        event, kCGKeyboardEventAutorepeat)}));
    return event;
}

template <std::size_t... place>
constexpr std::array<CGEventTapCallBack, mostTaps>
functionsFor(std::index_sequence<place...> /*places*/) {
    return {&onEvent<place>...};
}

constexpr auto functions = functionsFor(std::make_index_sequence<mostTaps>());

/// The tap's Mach port, shared by the tap and its source.
class Port {
public:
    Port(CFMachPortRef port, TapCallback& place)
        : m_port(CFRef<CFMachPortRef>::owned(port)), m_place(place) {}

    ~Port() {
        CFMachPortInvalidate(m_port.get());
        m_place = nullptr;
    }

    [[nodiscard]] CFMachPortRef get() const { return m_port.get(); }

private:
    CFRef<CFMachPortRef> m_port;
    TapCallback& m_place;
};

class MacTapSource final : public TapSource {
public:
    MacTapSource(std::shared_ptr<Port> port, CFRef<CFRunLoopSourceRef> source)
        : m_port(std::move(port)), m_source(std::move(source)) {}

    ~MacTapSource() override { remove(); }

    void addToRunLoop() override {
        CFRunLoopAddSource(CFRunLoopGetCurrent(), m_source.get(), kCFRunLoopCommonModes);
    }

    void removeFromRunLoop() override { remove(); }

private:
    void remove() {
        CFRunLoopRemoveSource(CFRunLoopGetCurrent(), m_source.get(), kCFRunLoopCommonModes);
    }

    std::shared_ptr<Port> m_port;
    CFRef<CFRunLoopSourceRef> m_source;
};

class MacEventTap final : public EventTap {
public:
    explicit MacEventTap(std::shared_ptr<Port> port) : m_port(std::move(port)) {
        // Taps are created enabled.
        CGEventTapEnable(m_port->get(), false);
    }

    // Its source may outlive it.
    ~MacEventTap() override { CGEventTapEnable(m_port->get(), false); }

    [[nodiscard]] std::shared_ptr<TapSource> createRunLoopSource(int order) override {
        auto source = CFRef<CFRunLoopSourceRef>::owned(
            CFMachPortCreateRunLoopSource(kCFAllocatorDefault, m_port->get(), order));
        return source ? std::make_shared<MacTapSource>(m_port, std::move(source)) : nullptr;
    }

    void enable(bool enabled) override { CGEventTapEnable(m_port->get(), enabled); }

private:
    std::shared_ptr<Port> m_port;
};

} // namespace

std::shared_ptr<EventTap> MacEventTapService::createTap(TapLocation location,
                                                        TapPlacement placement, TapOptions options,
                                                        std::uint64_t eventsOfInterest,
                                                        TapCallback callback) {
    auto* const place = std::find(callbacks.begin(), callbacks.end(), nullptr);
    if (place == callbacks.end())
        return nullptr;
    const auto index = static_cast<std::size_t>(place - callbacks.begin());
    CFMachPortRef port = CGEventTapCreate(
        static_cast<CGEventTapLocation>(location), static_cast<CGEventTapPlacement>(placement),
        static_cast<CGEventTapOptions>(options), eventsOfInterest, functions.at(index),
        /*userInfo=*/nullptr);
    if (!port)
        return nullptr;
    *place = callback;
    return std::make_shared<MacEventTap>(std::make_shared<Port>(port, *place));
}

} // namespace quorvane
