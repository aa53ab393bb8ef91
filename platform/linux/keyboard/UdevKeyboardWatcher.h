#pragma once

#include <QSocketNotifier>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/common/Udev.h"
#include "platform/linux/keyboard/KeyboardWatcher.h"

namespace quorvane {

using UdevMonitor = std::unique_ptr<udev_monitor, ReleasedBy<udev_monitor_unref>>;

/// The keyboards that udev lists. udev reports devices; permission changes come from inotify.
class UdevKeyboardWatcher final : public KeyboardWatcher {
public:
    /// The event nodes of those that exist now.
    [[nodiscard]] static std::vector<std::filesystem::path> list();

    void follow(Visit present, Visit gone) override;

private:
    void startMonitor();
    void watchPermissions();
    void readDeviceEvent();
    void readPermissionEvents();
    void reportKeyboard(const std::string& name);
    void visitAll();

    Visit m_present;
    Visit m_gone;
    UdevContext m_context;
    UdevMonitor m_monitor;
    std::unique_ptr<QSocketNotifier> m_deviceNotifier;
    FileDescriptor m_inotify;
    bool m_watchesPermissions = false;
    std::unique_ptr<QSocketNotifier> m_permissionNotifier;
};

} // namespace quorvane
