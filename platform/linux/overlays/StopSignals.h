#pragma once

#include "base/NonCopyable.h"

namespace quorvane {

/// While it lives, the signals with which a terminal stops a process (Ctrl-Z) first shut down an X
/// connection, so that the windows of that connection do not stay up over a process that cannot
/// remove them. It does not need the main thread's event loop, which may hang. SIGSTOP cannot be
/// caught. Main thread only, one at a time.
class StopSignals : NonCopyable {
public:
    explicit StopSignals(int socket);
    ~StopSignals();
};

} // namespace quorvane
