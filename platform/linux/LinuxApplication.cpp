#include "platform/linux/LinuxApplication.h"

#include <QGuiApplication>

namespace quorvane {

LoginItemStatus LinuxApplication::loginItemStatus() const {
    return LoginItemStatus::NotRegistered;
}

bool LinuxApplication::isActive() const {
    return QGuiApplication::focusWindow() != nullptr;
}

} // namespace quorvane
