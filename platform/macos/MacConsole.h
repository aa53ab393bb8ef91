#pragma once

#include "platform/System.h"
#include "platform/posix/LineWriter.h"

namespace quorvane {

/// A LineWriter on a descriptor, standard output by default.
class MacConsole final : public Console {
public:
    explicit MacConsole(int descriptor = 1) : m_lines(descriptor) {}

    void print(std::string_view line) override { m_lines.print(line); }

private:
    LineWriter m_lines;
};

} // namespace quorvane
