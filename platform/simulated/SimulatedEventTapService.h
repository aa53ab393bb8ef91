#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/EventTap.h"
#include "platform/simulated/Faults.h"

namespace quorvane {

/// Taps whose events a test sends, and a record of the calls.
class SimulatedEventTapService final : public EventTapService {
public:
    explicit SimulatedEventTapService(std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_faults(std::move(faults)) {}

    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                                      TapOptions options,
                                                      std::uint64_t eventsOfInterest,
                                                      TapCallback callback) override;

    /// Sends an event to every tap that is enabled, on a run loop and interested in it. False if a
    /// callback did not return its argument.
    bool send(const TapEvent& event);

    bool pressKey() { return send({.type = TapEventType::KeyDown}); }

    /// In order: "create location 1 placement 0 options 1 events 0x400", "source 0", "add",
    /// "enable yes", "enable no", "remove", "close".
    [[nodiscard]] const std::vector<std::string>& calls() const { return *m_calls; }

    void forgetCalls() { m_calls->clear(); }

    /// Number of taps that exist.
    [[nodiscard]] std::size_t openCount() const;

private:
    class Tap;
    class Source;

    std::shared_ptr<Faults> m_faults;
    std::shared_ptr<std::vector<std::string>> m_calls =
        std::make_shared<std::vector<std::string>>();
    std::vector<std::weak_ptr<Tap>> m_taps;
};

/// A permission that a test sets.
class SimulatedAccessibility final : public Accessibility {
public:
    explicit SimulatedAccessibility(std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_faults(std::move(faults)) {}

    [[nodiscard]] bool isProcessTrusted() const override {
        return trusted && !m_faults->fails(Fault::Trust);
    }

    bool isProcessTrustedWithOptions(bool prompt) override {
        if (prompt && !trusted) {
            ++prompts;
            m_obstacle = "Accessibility permission needed — enable in System Settings";
        }
        return trusted;
    }

    void withdrawPrompt() override {
        ++withdrawals;
        m_obstacle = std::string();
    }

    [[nodiscard]] std::string obstacle() const override { return trusted ? "" : m_obstacle.get(); }

    [[nodiscard]] Subscription observeObstacle(std::function<void()> observer) override {
        return m_obstacle.observe(std::move(observer));
    }

    /// As by the answer to a prompt.
    void setObstacle(std::string obstacle) { m_obstacle = std::move(obstacle); }

    bool trusted = false;
    /// Number of prompts shown, and of calls that take them away.
    int prompts = 0;
    int withdrawals = 0;

private:
    std::shared_ptr<Faults> m_faults;
    Observable<std::string> m_obstacle;
};

} // namespace quorvane
