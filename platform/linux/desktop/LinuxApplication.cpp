#include "platform/linux/desktop/LinuxApplication.h"

#include <QGuiApplication>

#include "platform/linux/desktop/AutostartEntries.h"

namespace quorvane {

LoginItemStatus LinuxApplication::loginItemStatus() const {
    return startsAtLogin(AutostartEnvironment::current()) ? LoginItemStatus::Enabled
                                                          : LoginItemStatus::NotRegistered;
}

bool LinuxApplication::isActive() const {
    return QGuiApplication::focusWindow() != nullptr;
}

} // namespace quorvane
