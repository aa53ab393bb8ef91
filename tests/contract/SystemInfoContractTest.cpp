#include <gtest/gtest.h>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxSystemInfo.h"
#include "platform/macos/MacSystemInfo.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/macos/FakeMachine.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class SystemInfoContractBackend : NonCopyable {
public:
    virtual ~SystemInfoContractBackend() = default;

    virtual SystemInfo& info() = 0;
    virtual void setModel(const std::string& model) = 0;
    virtual void setTrusted(bool trusted) = 0;
};

class SimulatedBackend final : public SystemInfoContractBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { m_info.model = model; }

    void setTrusted(bool trusted) override { m_info.trusted = trusted; }

private:
    SimulatedSystemInfo m_info;
};

class LinuxBackend final : public SystemInfoContractBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override {
        m_root.write("sys/class/dmi/id/product_name", model + "\n");
    }

    void setTrusted(bool trusted) override {
        const auto node = m_root.write("event0", "");
        if (!trusted)
            std::filesystem::remove(node);
    }

private:
    TemporaryFolder m_root;
    EnvironmentVariable m_session{"WAYLAND_DISPLAY", "wayland-0"};
    LinuxSystemInfo m_info{m_root.path(), [this] { return std::vector{m_root.path() / "event0"}; }};
};

class MacBackend final : public SystemInfoContractBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { fakes::machine().model = model; }

    void setTrusted(bool trusted) override { fakes::machine().trusted = trusted; }

private:
    FakeMachine m_machine;
    MacSystemInfo m_info;
};

using SystemInfoBackendMaker = std::unique_ptr<SystemInfoContractBackend> (*)();

class SystemInfoContract : public testing::TestWithParam<SystemInfoBackendMaker> {
protected:
    std::unique_ptr<SystemInfoContractBackend> m_backend = GetParam()();
};

TEST_P(SystemInfoContract, AModelThatIsNotKnownIsEmpty) {
    EXPECT_EQ(m_backend->info().modelName(), "");
}

TEST_P(SystemInfoContract, TheModelIsTheMakersName) {
    m_backend->setModel("MacBookPro18,3");
    EXPECT_EQ(m_backend->info().modelName(), "MacBookPro18,3");
}

TEST_P(SystemInfoContract, TrustIsWhatItIsWhenItIsAskedFor) {
    m_backend->setTrusted(false);
    EXPECT_FALSE(m_backend->info().isProcessTrusted());
    m_backend->setTrusted(true);
    EXPECT_TRUE(m_backend->info().isProcessTrusted());
    m_backend->setTrusted(false);
    EXPECT_FALSE(m_backend->info().isProcessTrusted());
}

template <typename Backend>
std::unique_ptr<SystemInfoContractBackend> make() {
    return std::make_unique<Backend>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, SystemInfoContract, testing::Values(&make<SimulatedBackend>));
INSTANTIATE_TEST_SUITE_P(Linux, SystemInfoContract, testing::Values(&make<LinuxBackend>));
INSTANTIATE_TEST_SUITE_P(MacStandIn, SystemInfoContract, testing::Values(&make<MacBackend>));

} // namespace

} // namespace quorvane
