#pragma once

#include "platform/System.h"

namespace quorvane {

/// Writes lines to a descriptor, unbuffered. A reader that has gone neither fails nor, by SIGPIPE,
/// kills; lines for a reader that has stopped reading a non-blocking pipe are dropped.
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
