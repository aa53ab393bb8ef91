#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QVariant>

#include "base/Observable.h"

namespace quorvane {

/// Whether the person has asked the desktop for less motion. The desktop's settings portal tells,
/// now and later; where there is none, the settings file of GTK programs does. Main thread; never
/// waits for the bus.
class ReducedMotion final : public QObject {
    Q_OBJECT

public:
    explicit ReducedMotion(Observable<bool>& reducesMotion);
    ~ReducedMotion() override;

private Q_SLOTS:
    /// Takes the message whole: the first slot of a process that takes a QDBusVariant is not
    /// called.
    void settingChanged(const QDBusMessage& message);

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): these are no slots.
private:
    void askPortal();
    void takeAnimationsEnabled(const QVariant& enabled);

    Observable<bool>& m_reducesMotion;
};

} // namespace quorvane
