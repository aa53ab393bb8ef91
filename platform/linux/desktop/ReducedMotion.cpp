#include "platform/linux/desktop/ReducedMotion.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QSettings>

#include "platform/linux/common/XDGFolders.h"

namespace quorvane {

namespace {

constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.Settings";
constexpr auto settingsGroup = "org.gnome.desktop.interface";
constexpr auto animationsKey = "enable-animations";

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

// The portal nests the value in several variants.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

ReducedMotion::ReducedMotion(Observable<bool>& reducesMotion) : m_reducesMotion(reducesMotion) {
    m_reducesMotion = filesReduceMotion();
    askPortal();
}

ReducedMotion::~ReducedMotion() = default;

void ReducedMotion::askPortal() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(service, path, interface, "SettingChanged", this,
                SLOT(settingChanged(QDBusMessage)));
    auto question = QDBusMessage::createMethodCall(service, path, interface, "Read");
    question << QString::fromLatin1(settingsGroup) << QString::fromLatin1(animationsKey);
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid())
            takeAnimationsEnabled(QVariant::fromValue(reply.value()));
        answer->deleteLater();
    });
}

void ReducedMotion::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() == 3 && arguments[0] == QLatin1String(settingsGroup) &&
        arguments[1] == QLatin1String(animationsKey))
        takeAnimationsEnabled(arguments[2]);
}

void ReducedMotion::takeAnimationsEnabled(const QVariant& enabled) {
    const QVariant value = unwrapped(enabled);
    if (value.typeId() == QMetaType::Bool)
        m_reducesMotion = !value.toBool();
}

} // namespace quorvane
