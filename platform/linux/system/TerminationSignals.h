#pragma once

#include <functional>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/common/FileDescriptor.h"

class QSocketNotifier;

namespace quorvane {

/// Turns the wish of a shell or a session that the program ends (SIGINT, SIGTERM) into a call from
/// the event loop. Make it before any other thread exists and before anything that has to be left
/// in order. Signals that come before `listen`, and those that come on the way out, wait.
class TerminationSignals : NonCopyable {
public:
    /// Ends the program with a message if the kernel gives no descriptor.
    TerminationSignals();
    ~TerminationSignals();

    /// From now on `handler` hears of every such signal. Needs a QCoreApplication.
    void listen(std::function<void()> handler);
    /// The handler hears of nothing any more.
    void ignore();

private:
    FileDescriptor m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace quorvane
