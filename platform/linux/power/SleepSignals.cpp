#include "platform/linux/power/SleepSignals.h"

#include <utility>

#include "platform/linux/power/DisplayPower.h"

namespace quorvane {

namespace {

constexpr auto logind = "org.freedesktop.login1";
constexpr auto sleepSignals =
    "type='signal',sender='org.freedesktop.login1',path='/org/freedesktop/login1',"
    "interface='org.freedesktop.login1.Manager',member='PrepareForSleep'";
constexpr auto upower = "org.freedesktop.UPower";
constexpr auto upowerPath = "/org/freedesktop/UPower";
constexpr auto properties = "org.freedesktop.DBus.Properties";
constexpr auto lidSignals =
    "type='signal',sender='org.freedesktop.UPower',path='/org/freedesktop/UPower',"
    "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
    "arg0='org.freedesktop.UPower'";
constexpr auto lidIsPresent = "LidIsPresent";
constexpr auto lidIsClosed = "LidIsClosed";

} // namespace

SleepSignals::SleepSignals(std::string address, std::string sessionAddress, Reports reports)
    : m_address(std::move(address)), m_sessionAddress(std::move(sessionAddress)),
      m_reports(std::move(reports)) {}

SleepSignals::~SleepSignals() = default;

void SleepSignals::start() {
    if (!m_bus)
        m_bus = std::make_unique<BusConnection>(
            BusConnection::Kind::System, m_address, [this] { listenToMachine(); },
            [this] { report(m_state.setPreparingForSleep(false)); });
}

void SleepSignals::listenToScreens() {
    if (m_displays)
        return;
    m_displays = std::make_unique<DisplayPower>(
        m_sessionAddress, [this](bool off) { report(m_state.setDisplaysOff(off)); });
    listenToLid();
}

void SleepSignals::stop() {
    m_bus.reset();
    m_displays.reset();
    m_state = {};
    m_lidIsPresent = true;
}

void SleepSignals::listenToMachine() {
    m_bus->listen(sleepSignals, [this](sd_bus_message& message) {
        int preparing = 0;
        if (sd_bus_message_read(&message, "b", &preparing) > 0)
            prepareForSleep(preparing != 0);
    });
    // A logind that has stopped or restarted does not report the end of the sleep that it
    // announced.
    m_bus->watch(logind, [this](bool) { report(m_state.setPreparingForSleep(false)); });
    if (m_displays)
        listenToLid();
}

void SleepSignals::listenToLid() {
    m_bus->listen(lidSignals, [this](sd_bus_message& message) {
        const BusProperties changed = readPropertiesChanged(message);
        const auto closed = changed.find(lidIsClosed);
        if (closed != changed.end() && !std::holds_alternative<bool>(closed->second))
            readLid();
        takeLid(changed);
    });
    m_bus->watch(upower, [this](bool runs) {
        if (runs)
            readLid();
    });
    readLid();
}

void SleepSignals::readLid() {
    m_bus->ask({.service = upower,
                .path = upowerPath,
                .interface = properties,
                .method = "GetAll",
                .arguments = {upower},
                .startsService = true},
               [this](sd_bus_message& answer) {
                   if (sd_bus_message_is_method_error(&answer, nullptr) > 0)
                       report(m_state.forgetLid());
                   else
                       takeLid(readProperties(answer));
               });
}

void SleepSignals::prepareForSleep(bool preparing) {
    if (!preparing)
        m_reports.didWake();
    // If didWake has called `stop`, the state is a fresh one, and this is no change.
    report(m_state.setPreparingForSleep(preparing));
}

/// LidIsClosed means nothing where there is no lid.
void SleepSignals::takeLid(const BusProperties& properties) {
    const auto value = [&properties](const char* name) {
        const auto found = properties.find(name);
        const auto* known = found == properties.end() ? nullptr : std::get_if<bool>(&found->second);
        return known ? std::optional(*known) : std::nullopt;
    };
    m_lidIsPresent = value(lidIsPresent).value_or(m_lidIsPresent);
    const auto closed = value(lidIsClosed);
    if (m_lidIsPresent && closed)
        report(m_state.setLidClosed(*closed));
}

void SleepSignals::report(ScreenSleepState::Change change) {
    if (change)
        m_reports.screens(*change);
}

} // namespace quorvane
