#pragma once

#include <functional>
#include <memory>

#include "base/NonCopyable.h"

namespace quorvane {

/// Turns the wish of a shell or a session that the program ends (SIGINT, SIGTERM) into a call from
/// the main queue. Make it before anything that has to be left in order. Signals that come before
/// `listen` are lost; those that come on the way out change nothing.
class MacTerminationSignals : NonCopyable {
public:
    MacTerminationSignals();
    ~MacTerminationSignals();

    /// From now on `handler` hears of every such signal.
    void listen(std::function<void()> handler);
    /// The handler hears of nothing any more.
    void ignore();

private:
    struct Sources;

    std::unique_ptr<Sources> m_sources;
};

} // namespace quorvane
