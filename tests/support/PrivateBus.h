#pragma once

#include <filesystem>
#include <string>

#include "base/NonCopyable.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestProgram.h"

namespace quorvane {

/// A system bus of the test's own, on which everybody may do everything.
class PrivateBus : NonCopyable {
public:
    PrivateBus();
    ~PrivateBus() = default;

    [[nodiscard]] std::string address() const;

    /// Ends the bus while it is used.
    void stop() { m_daemon.end(); }

private:
    std::filesystem::path writeConfiguration();

    TemporaryFolder m_folder;
    // Not a QProcess: its way to start a program turns the thread sanitizer off for this thread.
    TestProgram m_daemon;
};

} // namespace quorvane
