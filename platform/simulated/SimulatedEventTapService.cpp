#include "platform/simulated/SimulatedEventTapService.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace quorvane {

namespace {

using Calls = std::shared_ptr<std::vector<std::string>>;

} // namespace

class SimulatedEventTapService::Source final : public TapSource {
public:
    explicit Source(Calls calls) : m_calls(std::move(calls)) {}

    void addToRunLoop() override {
        m_calls->emplace_back("add");
        m_added = true;
    }

    void removeFromRunLoop() override {
        m_calls->emplace_back("remove");
        m_added = false;
    }

    [[nodiscard]] bool isAdded() const { return m_added; }

private:
    Calls m_calls;
    bool m_added = false;
};

class SimulatedEventTapService::Tap final : public EventTap {
public:
    Tap(Calls calls, std::shared_ptr<Faults> faults, std::uint64_t events, TapCallback callback)
        : m_calls(std::move(calls)), m_faults(std::move(faults)), m_events(events),
          m_callback(callback) {}

    ~Tap() override { m_calls->emplace_back("close"); }

    [[nodiscard]] std::shared_ptr<TapSource> createRunLoopSource(int order) override {
        if (m_faults->fails(Fault::TapSource))
            return nullptr;
        m_calls->push_back("source " + std::to_string(order));
        auto source = std::make_shared<Source>(m_calls);
        m_source = source;
        return source;
    }

    void enable(bool enabled) override {
        m_calls->emplace_back(enabled ? "enable yes" : "enable no");
        m_enabled = enabled;
    }

    /// Events about the tap itself are delivered regardless of its mask.
    [[nodiscard]] bool accepts(TapEventType type) const {
        const auto source = m_source.lock();
        const bool isAboutTap =
            type == TapEventType::DisabledByTimeout || type == TapEventType::DisabledByUserInput;
        return m_enabled && source && source->isAdded() &&
               (isAboutTap || (m_events & tapEventMask(type)) != 0);
    }

    [[nodiscard]] bool send(const TapEvent& event) const { return &m_callback(event) == &event; }

private:
    Calls m_calls;
    std::shared_ptr<Faults> m_faults;
    std::uint64_t m_events;
    TapCallback m_callback;
    std::weak_ptr<Source> m_source;
    bool m_enabled = false;
};

std::shared_ptr<EventTap> SimulatedEventTapService::createTap(TapLocation location,
                                                              TapPlacement placement,
                                                              TapOptions options,
                                                              std::uint64_t eventsOfInterest,
                                                              TapCallback callback) {
    if (m_faults->fails(Fault::Tap))
        return nullptr;
    std::ostringstream call;
    call << "create location " << static_cast<unsigned>(location) << " placement "
         << static_cast<unsigned>(placement) << " options " << static_cast<unsigned>(options)
         << " events 0x" << std::hex << eventsOfInterest;
    m_calls->push_back(call.str());
    auto tap = std::make_shared<Tap>(m_calls, m_faults, eventsOfInterest, callback);
    std::erase_if(m_taps, [](const auto& weak) { return weak.expired(); });
    m_taps.push_back(tap);
    return tap;
}

bool SimulatedEventTapService::send(const TapEvent& event) {
    bool unchanged = true;
    for (const auto& weak : std::vector(m_taps))
        if (const auto tap = weak.lock(); tap && tap->accepts(event.type))
            unchanged = tap->send(event) && unchanged;
    return unchanged;
}

std::size_t SimulatedEventTapService::openCount() const {
    return static_cast<std::size_t>(std::count_if(m_taps.begin(), m_taps.end(),
                                                  [](const auto& tap) { return !tap.expired(); }));
}

} // namespace quorvane
