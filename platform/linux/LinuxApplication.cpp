#include "platform/linux/LinuxApplication.h"

#include <QGuiApplication>

#include "platform/linux/AutostartEntries.h"

namespace quorvane {

LoginItemStatus LinuxApplication::loginItemStatus() const {
    return startsAtLogin(AutostartEnvironment::current()) ? LoginItemStatus::Enabled
                                                          : LoginItemStatus::NotRegistered;
}

bool LinuxApplication::isActive() const {
    return QGuiApplication::focusWindow() != nullptr;
}

} // namespace quorvane
