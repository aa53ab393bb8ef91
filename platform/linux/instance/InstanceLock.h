#pragma once

#include <sys/types.h>

#include "base/NonCopyable.h"
#include "platform/linux/common/FileDescriptor.h"

namespace quorvane {

/// A lock on the file quorvane.lock in XDG_RUNTIME_DIR, which one process of this user can hold. It
/// ends with the process, however that ends; the file stays. A process is to make one such object
/// only: closing the file ends the lock, whichever descriptor it was taken with.
class InstanceLock : NonCopyable {
public:
    /// Takes the lock if it is free. Never waits.
    InstanceLock();

    /// Whether another process holds it; false too where there is no such folder.
    [[nodiscard]] bool isTaken() const { return m_isTaken; }

    /// The process that holds it; 0: none, or not one that can be seen from here.
    [[nodiscard]] static pid_t holder();

private:
    FileDescriptor m_file;
    bool m_isTaken = false;
};

} // namespace quorvane
