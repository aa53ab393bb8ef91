#include "platform/linux/system/LinuxUserDefaults.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/contract/Contract.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class UserDefaultsBackend : public ContractBackend {
public:
    virtual UserDefaults& defaults() = 0;

    /// Starts the program again.
    virtual void relaunch() {}
};

class SimulatedBackend final : public UserDefaultsBackend {
public:
    UserDefaults& defaults() override { return m_defaults; }

private:
    // The simulated store itself outlives a launch.
    SimulatedUserDefaults m_defaults;
};

class LinuxBackend final : public UserDefaultsBackend {
public:
    UserDefaults& defaults() override { return *m_defaults; }

    void relaunch() override { m_defaults = make(); }

private:
    [[nodiscard]] std::unique_ptr<LinuxUserDefaults> make() const {
        return std::make_unique<LinuxUserDefaults>(m_folder.path() / "quorvane/quorvane.ini");
    }

    TemporaryFolder m_folder;
    std::unique_ptr<LinuxUserDefaults> m_defaults = make();
};

using UserDefaultsContract = Contract<UserDefaultsBackend>;

TEST_P(UserDefaultsContract, AKeyThatWasNeverSetIsFalse) {
    EXPECT_FALSE(m_backend->defaults().boolForKey("hardwareChecked"));
}

TEST_P(UserDefaultsContract, AValueHoldsAtOnce) {
    m_backend->defaults().setBool("hardwareChecked", true);
    EXPECT_TRUE(m_backend->defaults().boolForKey("hardwareChecked"));
    m_backend->defaults().setBool("hardwareChecked", false);
    EXPECT_FALSE(m_backend->defaults().boolForKey("hardwareChecked"));
}

TEST_P(UserDefaultsContract, KeysAreIndependent) {
    m_backend->defaults().setBool("one", true);
    EXPECT_FALSE(m_backend->defaults().boolForKey("two"));
    m_backend->defaults().setBool("two", true);
    m_backend->defaults().setBool("one", false);
    EXPECT_TRUE(m_backend->defaults().boolForKey("two"));
}

TEST_P(UserDefaultsContract, AValueOutlivesTheProgram) {
    m_backend->defaults().setBool("hardwareChecked", true);
    m_backend->relaunch();
    EXPECT_TRUE(m_backend->defaults().boolForKey("hardwareChecked"));
    m_backend->defaults().setBool("hardwareChecked", false);
    m_backend->relaunch();
    EXPECT_FALSE(m_backend->defaults().boolForKey("hardwareChecked"));
}

INSTANTIATE_TEST_SUITE_P(Simulated, UserDefaultsContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, UserDefaultsContract, on<LinuxBackend>());

} // namespace

} // namespace quorvane
