#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QVariant>

#include "base/Observable.h"

namespace quorvane {

/// Whether the user has asked the desktop for less motion: as the settings portal says, now and
/// with each change, or, without a portal, GTK's settings file. Main thread; never blocks on the
/// bus.
class ReducedMotion final : public QObject {
    Q_OBJECT

public:
    explicit ReducedMotion(Observable<bool>& reducesMotion);
    ~ReducedMotion() override;

private Q_SLOTS:
    /// Takes the message: Qt does not call the first slot in a process that takes a QDBusVariant.
    void settingChanged(const QDBusMessage& message);

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): these are no slots.
private:
    void askPortal();
    void takeAnimationsEnabled(const QVariant& enabled);

    Observable<bool>& m_reducesMotion;
};

} // namespace quorvane
