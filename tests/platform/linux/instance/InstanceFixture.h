#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/linux/instance/SingleInstance.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Environment.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

/// A session bus and a runtime folder of the test's own. Other instances are child processes, as a
/// process has one lock only.
class InstanceTest : public testing::Test {
protected:
    using Kind = SingleInstance::Kind;

    /// Lets SingleInstance and stopRunning find another bus.
    void useBus(const std::optional<std::string>& address) {
        m_address.emplace("DBUS_SESSION_BUS_ADDRESS", address);
    }

    /// A process that is the first instance, and answers no call, until it is ended. `prepare` is
    /// run in it before.
    static std::unique_ptr<ChildProcess> startFirst(void (*prepare)() = [] {}) {
        auto first = std::make_unique<ChildProcess>([prepare] {
            prepare();
            const SingleInstance instance(Kind::Single);
            while (!instance.isSecond())
                pause();
            return 1;
        });
        EXPECT_TRUE(waitUntil([&] { return InstanceLock::holder() == first->pid(); }));
        return first;
    }

    TemporaryFolder m_runtime;
    PrivateBus m_bus;
    EnvironmentVariable m_folder{"XDG_RUNTIME_DIR", m_runtime.path().string()};
    std::optional<EnvironmentVariable> m_address{std::in_place, "DBUS_SESSION_BUS_ADDRESS",
                                                 m_bus.address()};
};

} // namespace quorvane
