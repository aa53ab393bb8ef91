#pragma once

#include <filesystem>
#include <string>

#include "base/NonCopyable.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

/// A system bus of the test's own, on which every client may do everything.
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
    ChildProcess m_daemon;
};

} // namespace quorvane
