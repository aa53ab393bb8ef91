#pragma once

#include <functional>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/common/FileDescriptor.h"

class QSocketNotifier;

namespace quorvane {

/// Turns SIGINT and SIGTERM into calls from the event loop. To be made before any other thread
/// exists, so that all threads block them, and before anything that needs an orderly exit. They
/// stay pending before `listen` and after `ignore`.
class TerminationSignals : NonCopyable {
public:
    /// Ends the program with an error if the kernel gives no descriptor.
    TerminationSignals();
    ~TerminationSignals();

    /// Calls `handler` for every such signal from now on. Needs a QCoreApplication.
    void listen(std::function<void()> handler);
    /// Calls the handler no more.
    void ignore();

private:
    FileDescriptor m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace quorvane
