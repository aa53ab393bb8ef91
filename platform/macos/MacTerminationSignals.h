#pragma once

#include <functional>
#include <memory>

#include "base/NonCopyable.h"

namespace quorvane {

/// Turns SIGINT and SIGTERM into calls from the main queue. To be made before anything that needs
/// an orderly exit. They are lost before `listen` and after `ignore`.
class MacTerminationSignals : NonCopyable {
public:
    MacTerminationSignals();
    ~MacTerminationSignals();

    /// Calls `handler` for every such signal from now on.
    void listen(std::function<void()> handler);
    /// Calls the handler no more.
    void ignore();

private:
    struct Sources;

    std::unique_ptr<Sources> m_sources;
};

} // namespace quorvane
