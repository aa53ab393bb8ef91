#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/linux/common/FileDescriptor.h"

namespace quorvane {

/// A child process, in a process group of its own, whose standard input and output are pipes to
/// this process; its standard error is this process's. Nothing here waits. Main thread only, on
/// which the Qt event loop calls the handlers.
class PipedChild : NonCopyable {
public:
    struct Handlers {
        /// Called with what the child writes, at most 64 bytes at a time; must not destroy it.
        std::function<void(std::string_view bytes)> output;
        /// Its input, which was full at the last `write`, has room; must not destroy it.
        std::function<void()> writable;
        /// It has ended, with a status as `waitpid` gives; may destroy it.
        std::function<void(int status)> ended;
    };

    /// Starts `command`, whose first word is looked up in PATH if it has no slash. Null if that
    /// fails, with the error in errno.
    [[nodiscard]] static std::unique_ptr<PipedChild> start(const std::vector<std::string>& command,
                                                           Handlers handlers);

    /// Closes its input and output and leaves it to itself.
    ~PipedChild();

    /// False if it was not taken.
    bool write(char byte);
    /// Sends SIGTERM to its process group, if it may.
    void terminate() const;

private:
    PipedChild(pid_t process, FileDescriptor end, Handlers handlers);

    void connectPipes(FileDescriptor input, FileDescriptor output);
    void closePipes();
    void readOutput();
    void reap();

    pid_t m_process;
    Handlers m_handlers;
    FileDescriptor m_input;
    FileDescriptor m_output;
    /// Readable once the process has ended.
    FileDescriptor m_end;
    std::unique_ptr<QSocketNotifier> m_writable;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_ended;
};

} // namespace quorvane
