#pragma once

#include "platform/System.h"

namespace quorvane {

/// Writes lines to a descriptor, unbuffered. A closed pipe is ignored: no error, no SIGPIPE, unless
/// its reader closes it during the write, for which `main` ignores the signal. Lines are dropped
/// while a non-blocking pipe stays full.
class LinuxConsole final : public Console {
public:
    /// Standard output by default. The descriptor is not owned. If it is closed already, nothing is
    /// ever written, since another file may get its number.
    explicit LinuxConsole(int descriptor = 1);

    void print(std::string_view line) override;

private:
    int m_descriptor;
};

} // namespace quorvane
