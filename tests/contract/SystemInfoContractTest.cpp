#include <gtest/gtest.h>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxSystemInfo.h"
#include "platform/macos/MacSystemInfo.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/macos/FakeMachine.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class SystemInfoContractBackend : NonCopyable {
public:
    virtual ~SystemInfoContractBackend() = default;

    virtual SystemInfo& info() = 0;
    virtual void setModel(const std::string& model) = 0;
};

class SimulatedBackend final : public SystemInfoContractBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { m_info.model = model; }

private:
    SimulatedSystemInfo m_info;
};

class LinuxBackend final : public SystemInfoContractBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override {
        m_root.write("sys/class/dmi/id/product_name", model + "\n");
    }

private:
    TemporaryFolder m_root;
    LinuxSystemInfo m_info{m_root.path()};
};

class MacBackend final : public SystemInfoContractBackend {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { fakes::machine().model = model; }

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

template <typename Backend>
std::unique_ptr<SystemInfoContractBackend> make() {
    return std::make_unique<Backend>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, SystemInfoContract, testing::Values(&make<SimulatedBackend>));
INSTANTIATE_TEST_SUITE_P(Linux, SystemInfoContract, testing::Values(&make<LinuxBackend>));
INSTANTIATE_TEST_SUITE_P(MacFake, SystemInfoContract, testing::Values(&make<MacBackend>));

} // namespace

} // namespace quorvane
