#include <gtest/gtest.h>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxSystemInfo.h"
#include "platform/macos/MacSystemInfo.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/macos/StandInTest.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class SystemInfoContractSide : NonCopyable {
public:
    virtual ~SystemInfoContractSide() = default;

    virtual SystemInfo& info() = 0;
    virtual void setModel(const std::string& model) = 0;
    virtual void setTrusted(bool trusted) = 0;
};

class SimulatedSide final : public SystemInfoContractSide {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { m_info.model = model; }

    void setTrusted(bool trusted) override { m_info.trusted = trusted; }

private:
    SimulatedSystemInfo m_info;
};

class LinuxSide final : public SystemInfoContractSide {
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

class MacSide final : public SystemInfoContractSide {
public:
    SystemInfo& info() override { return m_info; }

    void setModel(const std::string& model) override { standin::machine().model = model; }

    void setTrusted(bool trusted) override { standin::machine().trusted = trusted; }

private:
    StandInMachine m_machine;
    MacSystemInfo m_info;
};

using SystemInfoSideMaker = std::unique_ptr<SystemInfoContractSide> (*)();

class SystemInfoContract : public testing::TestWithParam<SystemInfoSideMaker> {
protected:
    std::unique_ptr<SystemInfoContractSide> m_side = GetParam()();
};

TEST_P(SystemInfoContract, AModelThatIsNotKnownIsEmpty) {
    EXPECT_EQ(m_side->info().modelName(), "");
}

TEST_P(SystemInfoContract, TheModelIsTheMakersName) {
    m_side->setModel("MacBookPro18,3");
    EXPECT_EQ(m_side->info().modelName(), "MacBookPro18,3");
}

TEST_P(SystemInfoContract, TrustIsWhatItIsWhenItIsAskedFor) {
    m_side->setTrusted(false);
    EXPECT_FALSE(m_side->info().isProcessTrusted());
    m_side->setTrusted(true);
    EXPECT_TRUE(m_side->info().isProcessTrusted());
    m_side->setTrusted(false);
    EXPECT_FALSE(m_side->info().isProcessTrusted());
}

template <typename Side>
std::unique_ptr<SystemInfoContractSide> make() {
    return std::make_unique<Side>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, SystemInfoContract, testing::Values(&make<SimulatedSide>));
INSTANTIATE_TEST_SUITE_P(Linux, SystemInfoContract, testing::Values(&make<LinuxSide>));
INSTANTIATE_TEST_SUITE_P(MacStandIn, SystemInfoContract, testing::Values(&make<MacSide>));

} // namespace

} // namespace quorvane
