#pragma once

#include "platform/System.h"

namespace quorvane {

/// Writes lines to a descriptor, unbuffered. A closed pipe is ignored: no error, no SIGPIPE, unless
/// its reader closes it during the write, for which `main` ignores the signal. Lines are dropped
/// while a non-blocking pipe stays full.
class LinuxConsole final : public Console {
public:
    /// Standard output, unless told otherwise. The descriptor is not owned; if it is closed when
    /// the console is made, nothing is ever written: the number may become another file's.
    explicit LinuxConsole(int descriptor = 1);

    void print(std::string_view line) override;

private:
    int m_descriptor;
};

} // namespace quorvane
