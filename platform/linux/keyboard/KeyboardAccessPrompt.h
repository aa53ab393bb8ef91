#pragma once

#include <QSocketNotifier>
#include <filesystem>
#include <memory>
#include <sys/types.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// Asks the person at this seat, through polkit, to let them read the keyboards until the machine
/// is started anew. Main thread only.
class KeyboardAccessPrompt : NonCopyable {
public:
    /// `helper` is the program that is run with root's rights if they agree; the default is the
    /// build's own beside this executable, else the installed one.
    explicit KeyboardAccessPrompt(std::filesystem::path helper = {});
    ~KeyboardAccessPrompt();

    /// Returns at once. Nothing happens while the last one is still being answered, nor where there
    /// is no polkit; neither is said anywhere.
    void show();

private:
    void reap();

    std::filesystem::path m_helper;
    pid_t m_child = -1;
    int m_childDescriptor = -1;
    std::unique_ptr<QSocketNotifier> m_ended;
};

} // namespace quorvane
