#include <QGuiApplication>
#include <QWindow>
#include <gtest/gtest.h>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/desktop/LinuxApplication.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

class ApplicationContractBackend : NonCopyable {
public:
    virtual ~ApplicationContractBackend() = default;

    virtual const Application& application() = 0;
    virtual void setStartsAtLogin(bool starts) = 0;
    virtual void bringToFront() = 0;
    virtual void leaveFront() = 0;
};

class SimulatedBackend final : public ApplicationContractBackend {
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

class LinuxBackend final : public ApplicationContractBackend {
public:
    const Application& application() override { return m_linux; }

    void setStartsAtLogin(bool starts) override {
        m_config.write("autostart/quorvane.desktop",
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
    int m_count = 1;
    char m_name[5] = "test";                  // NOLINT(modernize-avoid-c-arrays): what Qt asks for.
    char* m_arguments[2] = {m_name, nullptr}; // NOLINT(modernize-avoid-c-arrays): the same.
    QGuiApplication m_toolkit{m_count, m_arguments};
    std::unique_ptr<QWindow> m_window;
    LinuxApplication m_linux;
};

using ApplicationBackendMaker = std::unique_ptr<ApplicationContractBackend> (*)();

class ApplicationContract : public testing::TestWithParam<ApplicationBackendMaker> {
protected:
    std::unique_ptr<ApplicationContractBackend> m_backend = GetParam()();
};

TEST_P(ApplicationContract, TheLoginItemIsWhatItIsWhenItIsAskedFor) {
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

template <typename Backend>
std::unique_ptr<ApplicationContractBackend> make() {
    return std::make_unique<Backend>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, ApplicationContract, testing::Values(&make<SimulatedBackend>));
INSTANTIATE_TEST_SUITE_P(Linux, ApplicationContract, testing::Values(&make<LinuxBackend>));

} // namespace

} // namespace quorvane
