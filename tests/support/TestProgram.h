#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// A program that is ended with this object, and with the test if that dies first.
class TestProgram : NonCopyable {
public:
    explicit TestProgram(const std::vector<std::string>& command);

    ~TestProgram() { end(); }

    /// The next line that it writes; waits for it. Empty at its end.
    [[nodiscard]] std::string line() const;
    /// At once, with nothing that it could do about it.
    void end();

private:
    pid_t m_pid = -1;
    int m_output = -1;
};

} // namespace quorvane
