#pragma once

#include <optional>

namespace quorvane {

/// Whether the screens sleep, made up of what the lid and the sleep of the whole machine say. Each
/// update gives the new state if it is another one, and nothing otherwise.
class ScreenSleepState {
public:
    /// True: the screens now sleep; false: they are awake; none: no change.
    using Change = std::optional<bool>;

    /// The first word about the lid is where things start from, not a change.
    Change setLidClosed(bool closed) {
        const bool isFirst = !m_lidClosed.has_value();
        m_lidClosed = closed;
        const Change change = update();
        return isFirst ? std::nullopt : change;
    }

    Change setPreparingForSleep(bool preparing) {
        m_preparing = preparing;
        return update();
    }

private:
    Change update() {
        const bool asleep = m_preparing || m_lidClosed.value_or(false);
        if (asleep == m_asleep)
            return std::nullopt;
        m_asleep = asleep;
        return asleep;
    }

    std::optional<bool> m_lidClosed;
    bool m_preparing = false;
    bool m_asleep = false;
};

} // namespace quorvane
