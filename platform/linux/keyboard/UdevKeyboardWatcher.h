#pragma once

#include <QSocketNotifier>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/common/Udev.h"
#include "platform/linux/keyboard/KeyboardWatcher.h"

namespace quorvane {

using UdevMonitor = std::unique_ptr<udev_monitor, UdevRelease<udev_monitor_unref>>;

/// What udev holds for a keyboard. Its news tell of devices; that somebody was given the right to
/// read one is seen on the node itself.
class UdevKeyboardWatcher final : public KeyboardWatcher {
public:
    /// Those that are there now.
    [[nodiscard]] static std::vector<std::filesystem::path> list();

    void follow(Visit present, Visit gone) override;

private:
    void startMonitor();
    void watchRights();
    void readNews();
    void readRights();
    void consider(const std::string& name);
    void visitAll();

    Visit m_present;
    Visit m_gone;
    UdevContext m_context;
    UdevMonitor m_monitor;
    std::unique_ptr<QSocketNotifier> m_news;
    FileDescriptor m_rightsDescriptor;
    bool m_watchesRights = false;
    std::unique_ptr<QSocketNotifier> m_rights;
};

} // namespace quorvane
