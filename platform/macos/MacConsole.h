#pragma once

#include "platform/System.h"

namespace quorvane {

/// Writes lines to a descriptor, unbuffered. A closed pipe is ignored, provided that the process
/// ignores SIGPIPE.
class MacConsole final : public Console {
public:
    /// Standard output by default. The descriptor is not owned.
    explicit MacConsole(int descriptor = 1) : m_descriptor(descriptor) {}

    void print(std::string_view line) override;

private:
    int m_descriptor;
};

} // namespace quorvane
