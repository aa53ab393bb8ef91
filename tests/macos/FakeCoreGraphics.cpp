#include <ApplicationServices/ApplicationServices.h>

#include <algorithm>

#include "tests/macos/FakeObjects.h"

namespace quorvane::fakes {

namespace {

struct Event final : Object {
    [[nodiscard]] std::string type() const override { return "CGEvent"; }

    std::int64_t autorepeat = 0;
};

// All that exist, whether valid or not.
std::vector<MachPort*> ports;
int delivered = 0;

bool hears(const MachPort& port, std::uint32_t eventType) {
    // Events about the tap itself ignore its mask.
    const bool notice = eventType >= kCGEventTapDisabledByTimeout;
    if (!port.valid || !port.enabled)
        return false;
    if (!notice && (port.eventsOfInterest >> eventType & 1U) == 0)
        return false;
    const auto& sources = currentRunLoop().sources;
    return std::any_of(sources.begin(), sources.end(), [&](const auto& entry) {
        return entry.first->port == &port && entry.second == "\"kCFRunLoopCommonModes\"";
    });
}

} // namespace

MachPort::MachPort() {
    ports.push_back(this);
}

MachPort::~MachPort() {
    std::erase(ports, this);
}

bool deliver(std::uint32_t eventType, std::int64_t autorepeat) {
    bool unchanged = true;
    for (MachPort* port : std::vector(ports)) {
        if (std::count(ports.begin(), ports.end(), port) == 0 || !hears(*port, eventType))
            continue;
        auto* event = new Event;
        event->autorepeat = autorepeat;
        const auto ref = reference<CGEventRef>(event);
        const auto callback = reinterpret_cast<CGEventTapCallBack>(port->callback);
        ++delivered;
        unchanged =
            callback(nullptr, static_cast<CGEventType>(eventType), ref, port->userInfo) == ref &&
            event->retains == 1 && unchanged;
        CFRelease(ref);
    }
    return unchanged;
}

int deliveries() {
    return delivered;
}

int openTaps() {
    return static_cast<int>(std::count_if(ports.begin(), ports.end(),
                                          [](const MachPort* port) { return port->valid; }));
}

void resetTaps() {
    delivered = 0;
}

} // namespace quorvane::fakes

using namespace quorvane::fakes;

extern "C" {

CFMachPortRef CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place,
                               CGEventTapOptions options, CGEventMask eventsOfInterest,
                               CGEventTapCallBack callback, void* userInfo) {
    call("CGEventTapCreate(" + std::to_string(tap) + ", " + std::to_string(place) + ", " +
         std::to_string(options) + ", " + std::to_string(eventsOfInterest) + ", " +
         (callback ? "callback" : "null") + ", " + (userInfo ? "context" : "null") + ")");
    if (!machine().tapsCanBeMade)
        return nullptr;
    auto* port = new MachPort;
    port->eventsOfInterest = eventsOfInterest;
    port->callback = reinterpret_cast<void*>(callback);
    port->userInfo = userInfo;
    return reference<CFMachPortRef>(port);
}

void CGEventTapEnable(CFMachPortRef tap, bool enable) {
    call(std::string("CGEventTapEnable(") + (enable ? "true" : "false") + ")");
    if (auto* known = checked<MachPort>(tap, "CGEventTapEnable"))
        known->enabled = enable;
}

std::int64_t CGEventGetIntegerValueField(CGEventRef event, CGEventField field) {
    const auto* known = checked<Event>(event, "CGEventGetIntegerValueField");
    if (field != kCGKeyboardEventAutorepeat)
        mistake("CGEventGetIntegerValueField", "a field other than the repeat");
    return known ? known->autorepeat : 0;
}

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef, CFMachPortRef port,
                                                 CFIndex order) {
    call("CFMachPortCreateRunLoopSource(" + std::to_string(order) + ")");
    auto* known = checked<MachPort>(port, "CFMachPortCreateRunLoopSource");
    if (!known || !known->valid || !machine().tapSourcesCanBeMade)
        return nullptr;
    auto* source = new RunLoopSource;
    CFRetain(port);
    source->port = known;
    return reference<CFRunLoopSourceRef>(source);
}

void CFMachPortInvalidate(CFMachPortRef port) {
    call("CFMachPortInvalidate");
    if (auto* known = checked<MachPort>(port, "CFMachPortInvalidate")) {
        known->valid = false;
        dropSources(*known);
    }
}

} // extern "C"
