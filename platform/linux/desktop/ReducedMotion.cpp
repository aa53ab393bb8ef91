#include "platform/linux/desktop/ReducedMotion.h"

#include <QFile>
#include <QSettings>
#include <QVariant>

#include "platform/linux/common/BusMessage.h"
#include "platform/linux/common/XDGFolders.h"

namespace quorvane {

namespace {

constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.Settings";
constexpr auto settingsGroup = "org.gnome.desktop.interface";
constexpr auto animationsKey = "enable-animations";
constexpr auto changes =
    "type='signal',sender='org.freedesktop.portal.Desktop',path='/org/freedesktop/portal/desktop',"
    "interface='org.freedesktop.portal.Settings',member='SettingChanged',"
    "arg0='org.gnome.desktop.interface',arg1='enable-animations'";

bool filesReduceMotion() {
    const QString folder = QFile::decodeName(xdgConfigFolder().c_str());
    for (const char* file : {"/gtk-4.0/settings.ini", "/gtk-3.0/settings.ini"}) {
        const QSettings settings(folder + QString::fromLatin1(file), QSettings::IniFormat);
        const QVariant enabled = settings.value("Settings/gtk-enable-animations");
        if (enabled.isValid())
            return !enabled.toBool();
    }
    return false;
}

} // namespace

ReducedMotion::ReducedMotion(Observable<bool>& reducesMotion)
    : m_reducesMotion(reducesMotion),
      m_bus(
          BusConnection::Kind::Session, {}, [this] { listen(); }, [] {}) {
    m_reducesMotion = filesReduceMotion();
}

void ReducedMotion::listen() {
    m_bus.listen(changes, [this](sd_bus_message& message) {
        if (sd_bus_message_skip(&message, "ss") >= 0)
            takeAnimationsEnabled(message);
    });
    m_bus.watch(service, [this](bool runs) {
        if (runs)
            askPortal();
    });
    askPortal();
}

void ReducedMotion::askPortal() {
    m_bus.ask({.service = service,
               .path = path,
               .interface = interface,
               .method = "Read",
               .arguments = {settingsGroup, animationsKey},
               .startsService = true},
              [this](sd_bus_message& answer) { takeAnimationsEnabled(answer); });
}

void ReducedMotion::takeAnimationsEnabled(sd_bus_message& message) {
    const BusValue enabled = readValue(message);
    if (const auto* value = std::get_if<bool>(&enabled))
        m_reducesMotion = !*value;
}

} // namespace quorvane
