#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/EventTap.h"

namespace quorvane {

/// Taps whose events a test sends, and a record of the calls.
class SimulatedEventTapService final : public EventTapService {
public:
    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                                      TapOptions options,
                                                      std::uint64_t eventsOfInterest,
                                                      TapCallback callback) override;

    /// Faults: no tap, or no source of a tap, can be made.
    bool refusesTap = false;
    bool refusesSource = false;

    /// Sends an event to every tap that is enabled, on a run loop and interested in it. False if a
    /// callback did not return its argument.
    bool send(const TapEvent& event);

    bool pressKey() { return send({.type = TapEventType::KeyDown}); }

    /// In order: "create location 1 placement 0 options 1 events 0x400", "source 0", "add",
    /// "enable yes", "enable no", "remove", "close".
    [[nodiscard]] const std::vector<std::string>& calls() const { return *m_calls; }

    /// Number of taps that exist.
    [[nodiscard]] std::size_t openCount() const;

private:
    class Tap;
    class Source;

    std::shared_ptr<std::vector<std::string>> m_calls =
        std::make_shared<std::vector<std::string>>();
    std::vector<std::weak_ptr<Tap>> m_taps;
};

/// A permission that a test sets.
class SimulatedAccessibility final : public Accessibility {
public:
    [[nodiscard]] bool isProcessTrusted() const override { return trusted; }

    bool isProcessTrustedWithOptions(bool prompt) override {
        prompts += prompt && !trusted ? 1 : 0;
        return trusted;
    }

    bool trusted = false;
    /// Number of prompts shown.
    int prompts = 0;
};

} // namespace quorvane
