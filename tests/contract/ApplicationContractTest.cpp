#include <QGuiApplication>
#include <QWindow>
#include <gtest/gtest.h>
#include <memory>

#include "platform/linux/desktop/LinuxApplication.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/contract/Contract.h"
#include "tests/support/Environment.h"
#include "tests/support/QtApplication.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

class ApplicationBackend : public ContractBackend {
public:
    virtual const Application& application() = 0;
    virtual void setStartsAtLogin(bool starts) = 0;
    virtual void bringToFront() = 0;
    virtual void leaveFront() = 0;
};

class SimulatedBackend final : public ApplicationBackend {
public:
    SimulatedBackend() { m_simulated.active = false; }

    const Application& application() override { return m_simulated; }

    void setStartsAtLogin(bool starts) override {
        m_simulated.loginItem = starts ? LoginItemStatus::Enabled : LoginItemStatus::NotRegistered;
    }

    void bringToFront() override { m_simulated.active = true; }

    void leaveFront() override { m_simulated.active = false; }

private:
    SimulatedApplication m_simulated;
};

class LinuxBackend final : public ApplicationBackend {
public:
    const Application& application() override { return m_linux; }

    void setStartsAtLogin(bool starts) override {
        m_config.write("autostart/org.quorvane.Quorvane.desktop",
                       std::string("[Desktop Entry]\nType=Application\nExec=quorvane\nHidden=") +
                           (starts ? "false\n" : "true\n"));
    }

    void bringToFront() override {
        m_window = std::make_unique<QWindow>();
        m_window->show();
        m_window->requestActivate();
        waitUntil([this] { return m_window->isActive(); });
    }

    void leaveFront() override { m_window.reset(); }

private:
    TemporaryFolder m_config;
    EnvironmentVariable m_home{"XDG_CONFIG_HOME", m_config.path().string()};
    EnvironmentVariable m_platform{"QT_QPA_PLATFORM", "offscreen"};
    ApplicationOf<QGuiApplication> m_application;
    std::unique_ptr<QWindow> m_window;
    LinuxApplication m_linux;
};

using ApplicationContract = Contract<ApplicationBackend>;

TEST_P(ApplicationContract, TheLoginItemIsReadAtEachCall) {
    m_backend->setStartsAtLogin(false);
    EXPECT_EQ(m_backend->application().loginItemStatus(), LoginItemStatus::NotRegistered);
    m_backend->setStartsAtLogin(true);
    EXPECT_EQ(m_backend->application().loginItemStatus(), LoginItemStatus::Enabled);
    m_backend->setStartsAtLogin(false);
    EXPECT_EQ(m_backend->application().loginItemStatus(), LoginItemStatus::NotRegistered);
}

TEST_P(ApplicationContract, TheProgramIsActiveWhileItIsInFront) {
    EXPECT_FALSE(m_backend->application().isActive());
    m_backend->bringToFront();
    EXPECT_TRUE(m_backend->application().isActive());
    m_backend->leaveFront();
    EXPECT_FALSE(m_backend->application().isActive());
}

INSTANTIATE_TEST_SUITE_P(Simulated, ApplicationContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, ApplicationContract, on<LinuxBackend>());

} // namespace

} // namespace quorvane
