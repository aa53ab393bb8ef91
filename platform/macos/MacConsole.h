#pragma once

#include "platform/System.h"

namespace quorvane {

/// Writes lines to a descriptor, unbuffered. A reader that has gone is no error, provided that the
/// process ignores SIGPIPE.
class MacConsole final : public Console {
public:
    /// Standard output, unless told otherwise. The descriptor is not owned.
    explicit MacConsole(int descriptor = 1) : m_descriptor(descriptor) {}

    void print(std::string_view line) override;

private:
    int m_descriptor;
};

} // namespace quorvane
