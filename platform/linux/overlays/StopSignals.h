#pragma once

#include "base/NonCopyable.h"

namespace quorvane {

/// While it exists, the signals by which a terminal stops a process (Ctrl-Z) first shut down an X
/// connection: a stopped process could not remove the connection's windows. Works without the event
/// loop, which may hang. SIGSTOP cannot be caught. Main thread only, one at a time.
class StopSignals : NonCopyable {
public:
    /// `socket`: of the connection; it has to stay open for as long as this object lives.
    explicit StopSignals(int socket);
    ~StopSignals();
};

} // namespace quorvane
