#include "platform/linux/keyboard/PipedChild.h"

#include <QCoreApplication>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <utility>

namespace quorvane {

namespace {

/// The two ends of a pipe.
struct Ends {
    FileDescriptor ours;
    FileDescriptor theirs;
};

/// A socket and not a pipe, to which one could not write without the risk of a SIGPIPE.
Ends makeInput() {
    std::array<int, 2> ends{-1, -1};
    static_cast<void>(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()));
    return {.ours = FileDescriptor(ends[0]), .theirs = FileDescriptor(ends[1])};
}

Ends makeOutput() {
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) == 0)
        static_cast<void>(fcntl(ends[0], F_SETFL, O_NONBLOCK));
    return {.ours = FileDescriptor(ends[0]), .theirs = FileDescriptor(ends[1])};
}

/// The process, with no signal held back or ignored; -1 on failure, with the error in errno.
pid_t spawn(const std::vector<std::string>& command, int input, int output) {
    posix_spawn_file_actions_t files{};
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawnattr_t attributes{};
    posix_spawnattr_init(&attributes);
    sigset_t chosen{};
    sigemptyset(&chosen);
    posix_spawnattr_setsigmask(&attributes, &chosen);
    sigaddset(&chosen, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &chosen);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                              POSIX_SPAWN_SETPGROUP);
    // The interface takes what it does not change without saying so.
    std::vector<char*> words;
    std::transform(command.begin(), command.end(), std::back_inserter(words),
                   [](const std::string& word) { return const_cast<char*>(word.c_str()); });
    words.push_back(nullptr);
    pid_t child = -1;
    errno = posix_spawnp(&child, words.front(), &files, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return errno == 0 ? child : -1;
}

/// The C library has the call too, but not for C++ in every version.
FileDescriptor endOf(pid_t process) {
    return FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
}

/// For a notifier whose handler runs.
void deleteLater(std::unique_ptr<QSocketNotifier>& notifier) {
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
}

/// Reaps a process from the event loop after its PipedChild has been destroyed.
void reapLater(pid_t process, FileDescriptor end) {
    if (!QCoreApplication::instance())
        return;
    auto* ended =
        new QSocketNotifier(end.get(), QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(ended, &QSocketNotifier::activated, ended,
                     [ended, process, open = std::make_shared<FileDescriptor>(std::move(end))] {
                         ended->setEnabled(false);
                         waitpid(process, nullptr, WNOHANG);
                         ended->deleteLater();
                     });
}

} // namespace

std::unique_ptr<PipedChild> PipedChild::start(const std::vector<std::string>& command,
                                              Handlers handlers) {
    Ends input = makeInput();
    Ends output = makeOutput();
    if (!input.theirs || !output.theirs)
        return nullptr;
    const pid_t process = spawn(command, input.theirs.get(), output.theirs.get());
    if (process < 0)
        return nullptr;
    FileDescriptor end = endOf(process);
    if (!end)
        return nullptr;
    std::unique_ptr<PipedChild> child(new PipedChild(process, std::move(end), std::move(handlers)));
    child->connectPipes(std::move(input.ours), std::move(output.ours));
    return child;
}

PipedChild::PipedChild(pid_t process, FileDescriptor end, Handlers handlers)
    : m_process(process), m_handlers(std::move(handlers)), m_end(std::move(end)),
      m_ended(new QSocketNotifier(m_end.get(), QSocketNotifier::Read)) {
    QObject::connect(m_ended.get(), &QSocketNotifier::activated, m_ended.get(), [this] { reap(); });
}

void PipedChild::connectPipes(FileDescriptor input, FileDescriptor output) {
    m_input = std::move(input);
    m_output = std::move(output);
    m_writable = std::make_unique<QSocketNotifier>(m_input.get(), QSocketNotifier::Write);
    m_writable->setEnabled(false);
    QObject::connect(m_writable.get(), &QSocketNotifier::activated, m_writable.get(), [this] {
        m_writable->setEnabled(false);
        m_handlers.writable();
    });
    m_readable = std::make_unique<QSocketNotifier>(m_output.get(), QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, m_readable.get(),
                     [this] { readOutput(); });
}

PipedChild::~PipedChild() {
    m_ended.reset();
    if (m_process > 0)
        reapLater(m_process, std::move(m_end));
}

void PipedChild::closePipes() {
    m_writable.reset();
    deleteLater(m_readable);
    m_input = {};
    m_output = {};
}

void PipedChild::readOutput() {
    std::array<char, 64> bytes{};
    const ssize_t size = read(m_output.get(), bytes.data(), bytes.size());
    if (size > 0)
        m_handlers.output({bytes.data(), static_cast<std::size_t>(size)});
    else if (size == 0)
        closePipes();
}

bool PipedChild::write(char byte) {
    if (!m_input)
        return false;
    const bool isTaken = send(m_input.get(), &byte, 1, MSG_NOSIGNAL | MSG_DONTWAIT) == 1;
    m_writable->setEnabled(!isTaken && errno == EAGAIN);
    return isTaken;
}

void PipedChild::terminate() const {
    kill(-m_process, SIGTERM);
}

void PipedChild::reap() {
    deleteLater(m_ended);
    int status = 0;
    waitpid(m_process, &status, WNOHANG);
    m_process = -1;
    // The handler may destroy this, and itself.
    const auto ended = std::move(m_handlers.ended);
    ended(status);
}

} // namespace quorvane
