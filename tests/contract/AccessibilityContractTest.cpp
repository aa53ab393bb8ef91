#include "platform/linux/keyboard/LinuxAccessibility.h"
#include "platform/macos/MacAccessibility.h"
#include "platform/simulated/SimulatedEventTapService.h"
#include "tests/contract/Contract.h"
#include "tests/macos/FakeMachine.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class AccessibilityBackend : public ContractBackend {
public:
    virtual Accessibility& accessibility() = 0;
    virtual void setTrusted(bool trusted) = 0;
};

class SimulatedBackend final : public AccessibilityBackend {
public:
    Accessibility& accessibility() override { return m_accessibility; }

    void setTrusted(bool trusted) override { m_accessibility.trusted = trusted; }

private:
    SimulatedAccessibility m_accessibility;
};

class LinuxBackend final : public AccessibilityBackend {
public:
    Accessibility& accessibility() override { return m_accessibility; }

    void setTrusted(bool trusted) override {
        const auto node = m_root.write("event0", "");
        if (!trusted)
            std::filesystem::remove(node);
    }

private:
    TemporaryFolder m_root;
    EnvironmentVariable m_session{"WAYLAND_DISPLAY", "wayland-0"};
    KeyReaderProcess m_reader{
        [] { return KeyReaderPlaces{.own = "/some/reader", .installed = {}}; },
        [this] { return std::vector{m_root.path() / "event0"}; }};
    LinuxAccessibility m_accessibility{m_reader};
};

class MacBackend final : public AccessibilityBackend {
public:
    Accessibility& accessibility() override { return m_accessibility; }

    void setTrusted(bool trusted) override { fakes::machine().trusted = trusted; }

private:
    FakeMachine m_machine;
    MacAccessibility m_accessibility;
};

using AccessibilityContract = Contract<AccessibilityBackend>;

TEST_P(AccessibilityContract, TrustIsReadAtEachCall) {
    m_backend->setTrusted(false);
    EXPECT_FALSE(m_backend->accessibility().isProcessTrusted());
    m_backend->setTrusted(true);
    EXPECT_TRUE(m_backend->accessibility().isProcessTrusted());
    m_backend->setTrusted(false);
    EXPECT_FALSE(m_backend->accessibility().isProcessTrusted());
}

TEST_P(AccessibilityContract, OnlyWhoWasPromptedInVainHasAnObstacle) {
    Accessibility& accessibility = m_backend->accessibility();
    m_backend->setTrusted(false);
    EXPECT_FALSE(accessibility.isProcessTrustedWithOptions(false));
    EXPECT_EQ(accessibility.obstacle(), "");
    EXPECT_FALSE(accessibility.isProcessTrustedWithOptions(true));
    EXPECT_NE(accessibility.obstacle(), "");
    accessibility.withdrawPrompt();
    EXPECT_EQ(accessibility.obstacle(), "");
    m_backend->setTrusted(true);
    EXPECT_TRUE(accessibility.isProcessTrustedWithOptions(true));
    EXPECT_EQ(accessibility.obstacle(), "");
}

INSTANTIATE_TEST_SUITE_P(Simulated, AccessibilityContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, AccessibilityContract, on<LinuxBackend>());
INSTANTIATE_TEST_SUITE_P(MacFake, AccessibilityContract, on<MacBackend>());

} // namespace

} // namespace quorvane
