#pragma once

#include <csignal>
#include <filesystem>
#include <optional>
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
    void stop() { m_daemon->end(); }

    /// Starts another one at the same address.
    void restart();

    /// Lets it hang, still connected, until `thaw`.
    void freeze() const { m_daemon->send(SIGSTOP); }

    void thaw() const { m_daemon->send(SIGCONT); }

private:
    std::filesystem::path writeConfiguration(const std::filesystem::path& services);

    TemporaryFolder m_folder;
    std::filesystem::path m_configuration;
    std::optional<ChildProcess> m_daemon;
};

} // namespace quorvane
