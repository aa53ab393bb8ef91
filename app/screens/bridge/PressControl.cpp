#include "app/screens/bridge/PressControl.h"

#include <QAccessible>
#include <QQuickItem>
#include <QWindow>

namespace quorvane {

namespace {

bool canBePressed(QAccessibleInterface& control) {
    // Qt Quick's accessible state does not say that an item is disabled.
    const auto* item = qobject_cast<const QQuickItem*>(control.object());
    return item && item->isEnabled() && control.actionInterface() && !control.state().invisible &&
           control.actionInterface()->actionNames().contains(
               QAccessibleActionInterface::pressAction());
}

QAccessibleInterface* find(QAccessibleInterface* from, const QString& name) {
    if (!from || !from->isValid())
        return nullptr;
    if (from->text(QAccessible::Name) == name && canBePressed(*from))
        return from;
    for (int i = 0; i < from->childCount(); ++i) {
        if (auto* found = find(from->child(i), name))
            return found;
    }
    return nullptr;
}

} // namespace

bool pressControl(QWindow& window, std::string_view name) {
    QAccessibleInterface* control =
        find(QAccessible::queryAccessibleInterface(&window), QString::fromUtf8(name));
    if (!control)
        return false;
    control->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

} // namespace quorvane
