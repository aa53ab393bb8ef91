#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/NonCopyable.h"
#include "platform/linux/common/BusConnection.h"
#include "platform/linux/common/BusMessage.h"

namespace quorvane {

/// Whether the screens sleep, by the state of the lid, of the displays and of the machine. Each
/// update returns the new state if it has changed.
class ScreenSleepState {
public:
    /// True: the screens now sleep; false: they are awake; none: no change.
    using Change = std::optional<bool>;

    /// The first state of the lid is not a change.
    Change setLidClosed(bool closed) { return set(m_lidClosed, closed); }

    /// The first state of the displays is not a change.
    Change setDisplaysOff(bool off) { return set(m_displaysOff, off); }

    /// Counts as open, and its next state is a first one.
    Change forgetLid() {
        m_lidClosed.reset();
        return update();
    }

    Change setPreparingForSleep(bool preparing) {
        m_preparing = preparing;
        return update();
    }

private:
    Change set(std::optional<bool>& part, bool asleep) {
        const bool isFirst = !part.has_value();
        part = asleep;
        const Change change = update();
        return isFirst ? std::nullopt : change;
    }

    Change update() {
        const bool asleep =
            m_preparing || m_lidClosed.value_or(false) || m_displaysOff.value_or(false);
        if (asleep == m_asleep)
            return std::nullopt;
        m_asleep = asleep;
        return asleep;
    }

    std::optional<bool> m_lidClosed;
    std::optional<bool> m_displaysOff;
    bool m_preparing = false;
    bool m_asleep = false;
};

class DisplayPower;

/// Listens on the system bus to logind for the machine's sleep and, after `listenToScreens`, to
/// UPower for the lid and on the session bus to `DisplayPower`. Buses and services that come late
/// or again are listened to, too: the lid and the displays are read again, and a sleep whose end
/// may have been missed counts as over. Main thread; never blocks on a bus. Without a bus or a
/// service nothing is reported.
class SleepSignals : NonCopyable {
public:
    /// Callbacks; each may call `stop`.
    struct Reports {
        /// The machine woke up. Called before `screens`.
        std::function<void()> didWake;
        /// True: the screens go to sleep; false: they wake.
        std::function<void(bool asleep)> screens;
    };

    /// The addresses name the buses; empty: the system bus, the session bus.
    SleepSignals(std::string address, std::string sessionAddress, Reports reports);
    ~SleepSignals();

    /// Connects, with a fresh state, unless already started.
    void start();
    /// From now on until `stop` the lid and the displays count too. UPower is not called before,
    /// because a call makes the bus start it.
    void listenToScreens();
    /// Closes the connections; nothing is reported any more.
    void stop();

private:
    void listenToMachine();
    void listenToLid();
    void readLid();
    void takeLid(const BusProperties& properties);
    void prepareForSleep(bool preparing);
    void report(ScreenSleepState::Change change);

    const std::string m_address;
    const std::string m_sessionAddress;
    const Reports m_reports;

    // State between `start` and `stop`.
    std::unique_ptr<BusConnection> m_bus;
    // Null until the screens are listened to.
    std::unique_ptr<DisplayPower> m_displays;
    ScreenSleepState m_state;
    bool m_lidIsPresent = true;
};

} // namespace quorvane
