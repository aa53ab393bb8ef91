#include "platform/linux/system/LinuxSystemInfo.h"
#include "platform/macos/MacSystemInfo.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/contract/Contract.h"
#include "tests/macos/FakeMachine.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class SystemInfoBackend : public ContractBackend {
public:
    virtual SystemInfo& info() = 0;
    virtual void setModel(const std::string& model) = 0;
};

class SimulatedBackend final : public SystemInfoBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { m_info.model = model; }

private:
    SimulatedSystemInfo m_info;
};

class LinuxBackend final : public SystemInfoBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override {
        m_root.write("sys/class/dmi/id/product_name", model + "\n");
    }

private:
    TemporaryFolder m_root;
    LinuxSystemInfo m_info{m_root.path()};
};

class MacBackend final : public SystemInfoBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { fakes::machine().model = model; }

private:
    FakeMachine m_machine;
    MacSystemInfo m_info;
};

using SystemInfoContract = Contract<SystemInfoBackend>;

TEST_P(SystemInfoContract, AnUnknownModelIsEmpty) {
    EXPECT_EQ(m_backend->info().modelName(), "");
}

TEST_P(SystemInfoContract, TheModelIsThatOfTheMachine) {
    m_backend->setModel("MacBookPro18,3");
    EXPECT_EQ(m_backend->info().modelName(), "MacBookPro18,3");
}

INSTANTIATE_TEST_SUITE_P(Simulated, SystemInfoContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, SystemInfoContract, on<LinuxBackend>());
INSTANTIATE_TEST_SUITE_P(MacFake, SystemInfoContract, on<MacBackend>());

} // namespace

} // namespace quorvane
