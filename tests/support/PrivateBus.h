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
    /// `services`: a folder of .service files, which the bus may start; empty: none.
    explicit PrivateBus(const std::filesystem::path& services = {});
    ~PrivateBus() = default;

    [[nodiscard]] std::string address() const;

    /// Ends the bus while it is used.
    void stop() { m_daemon.end(); }

private:
    std::filesystem::path writeConfiguration(const std::filesystem::path& services);

    TemporaryFolder m_folder;
    ChildProcess m_daemon;
};

} // namespace quorvane
