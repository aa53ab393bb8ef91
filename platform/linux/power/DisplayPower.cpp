#include "platform/linux/power/DisplayPower.h"

#include <utility>

namespace quorvane {

namespace {

constexpr auto mutter = "org.gnome.Mutter.DisplayConfig";
constexpr auto path = "/org/gnome/Mutter/DisplayConfig";
constexpr auto properties = "org.freedesktop.DBus.Properties";
constexpr auto powerSaveMode = "PowerSaveMode";
constexpr auto changes =
    "type='signal',sender='org.gnome.Mutter.DisplayConfig',path='/org/gnome/Mutter/DisplayConfig',"
    "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
    "arg0='org.gnome.Mutter.DisplayConfig'";

} // namespace

// A Mutter that has ended does not report that the displays are on again.
DisplayPower::DisplayPower(std::string address, std::function<void(bool)> known)
    : m_known(std::move(known)), m_bus(
                                     BusConnection::Kind::Session, std::move(address),
                                     [this] { listen(); }, [this] { report(false); }) {}

void DisplayPower::listen() {
    m_bus.listen(changes, [this](sd_bus_message& message) {
        take(readPropertiesChanged(message)[powerSaveMode]);
    });
    m_bus.watch(mutter, [this](bool runs) {
        if (runs)
            read();
        else
            report(false);
    });
    read();
}

void DisplayPower::read() {
    m_bus.ask({.service = mutter,
               .path = path,
               .interface = properties,
               .method = "Get",
               .arguments = {mutter, powerSaveMode}},
              [this](sd_bus_message& answer) { take(readValue(answer)); });
}

/// 0: on; 1 to 3: standby, suspended, off; -1: unknown.
void DisplayPower::take(const BusValue& mode) {
    if (const auto* number = std::get_if<std::int32_t>(&mode))
        report(*number > 0);
}

void DisplayPower::report(bool off) {
    const auto known = m_known;
    known(off);
}

} // namespace quorvane
