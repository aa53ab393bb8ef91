#include "platform/linux/keyboard/KeyboardAccessPrompt.h"

#include <QCoreApplication>
#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <utility>

namespace quorvane {

namespace {

namespace fs = std::filesystem;

constexpr auto helperName = "quorvane-keyboard-access";

fs::path findHelper() {
    const fs::path folder(QCoreApplication::applicationDirPath().toStdString());
    std::error_code error;
    for (const fs::path& place : {folder, folder.parent_path() / QUORVANE_LIBEXEC})
        if (fs::exists(place / helperName, error))
            return place / helperName;
    return {};
}

/// Starts a program that is deaf and mute, with no signal held back; its process, or -1.
pid_t spawn(const std::string& program, const std::string& option, const std::string& argument) {
    posix_spawn_file_actions_t files{};
    posix_spawn_file_actions_init(&files);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes{};
    posix_spawnattr_init(&attributes);
    sigset_t none{};
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    // The interface takes what it does not change without saying so.
    const std::array arguments{const_cast<char*>(program.c_str()),
                               const_cast<char*>(option.c_str()),
                               const_cast<char*>(argument.c_str()), static_cast<char*>(nullptr)};
    pid_t child = -1;
    if (posix_spawnp(&child, program.c_str(), &files, &attributes, arguments.data(), environ) != 0)
        child = -1;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return child;
}

/// Readable once the process has ended; -1 if there is no such. The C library has the call too, but
/// not for C++ in every version.
int descriptorOf(pid_t process) {
    return static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

} // namespace

KeyboardAccessPrompt::KeyboardAccessPrompt(fs::path helper) : m_helper(std::move(helper)) {}

// The child is root's by now, or soon will be, and is left to the person.
KeyboardAccessPrompt::~KeyboardAccessPrompt() {
    m_ended.reset();
    if (m_childDescriptor >= 0)
        close(m_childDescriptor);
}

void KeyboardAccessPrompt::show() {
    if (m_child >= 0 && waitpid(m_child, nullptr, WNOHANG) == 0)
        return;
    const fs::path helper = m_helper.empty() ? findHelper() : m_helper;
    if (helper.empty())
        return;
    // It refuses to work for a process whose parent is gone, so it is a child of ours. Without the
    // option it would ask on the terminal where there is no agent to ask on the screen.
    m_child = spawn("pkexec", "--disable-internal-agent", helper.string());
    m_childDescriptor = m_child >= 0 ? descriptorOf(m_child) : -1;
    if (m_childDescriptor < 0)
        return;
    m_ended = std::make_unique<QSocketNotifier>(m_childDescriptor, QSocketNotifier::Read);
    QObject::connect(m_ended.get(), &QSocketNotifier::activated, m_ended.get(), [this] { reap(); });
}

void KeyboardAccessPrompt::reap() {
    m_ended->setEnabled(false);
    m_ended.release()->deleteLater();
    close(m_childDescriptor);
    m_childDescriptor = -1;
    waitpid(m_child, nullptr, WNOHANG);
    m_child = -1;
}

} // namespace quorvane
