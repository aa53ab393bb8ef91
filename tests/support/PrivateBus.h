#pragma once

#include <QProcess>
#include <string>

#include "tests/support/TemporaryFolder.h"

namespace quorvane {

/// A system bus of the test's own, on which everybody may do everything.
class PrivateBus {
public:
    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    [[nodiscard]] std::string address() const;
    /// Ends the bus under whoever uses it.
    void stop();

private:
    TemporaryFolder m_folder;
    QProcess m_daemon;
};

} // namespace quorvane
