#include "platform/linux/instance/InstanceLock.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>

#include <QByteArray>

namespace quorvane {

namespace {

/// None where there is no runtime folder, or no right to it.
FileDescriptor openFile(int flags) {
    const std::filesystem::path folder = qgetenv("XDG_RUNTIME_DIR").toStdString();
    if (!folder.is_absolute())
        return {};
    return FileDescriptor(
        open((folder / "quorvane.lock").c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600));
}

/// Of the whole file.
struct flock exclusive() {
    struct flock lock {};

    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

} // namespace

InstanceLock::InstanceLock() : m_file(openFile(O_RDWR | O_CREAT)) {
    auto lock = exclusive();
    m_isTaken =
        m_file && fcntl(m_file.get(), F_SETLK, &lock) != 0 && (errno == EACCES || errno == EAGAIN);
}

pid_t InstanceLock::holder() {
    const FileDescriptor file = openFile(O_RDONLY);
    auto lock = exclusive();
    if (!file || fcntl(file.get(), F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK)
        return 0;
    return lock.l_pid;
}

} // namespace quorvane
