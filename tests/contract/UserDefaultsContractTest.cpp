#include <gtest/gtest.h>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxUserDefaults.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class UserDefaultsContractSide : NonCopyable {
public:
    virtual ~UserDefaultsContractSide() = default;

    virtual UserDefaults& defaults() = 0;

    /// A new start of the program.
    virtual void relaunch() {}
};

class SimulatedSide final : public UserDefaultsContractSide {
public:
    UserDefaults& defaults() override { return m_defaults; }

private:
    // The simulated store is what lasts from launch to launch.
    SimulatedUserDefaults m_defaults;
};

class LinuxSide final : public UserDefaultsContractSide {
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

using UserDefaultsSideMaker = std::unique_ptr<UserDefaultsContractSide> (*)();

class UserDefaultsContract : public testing::TestWithParam<UserDefaultsSideMaker> {
protected:
    std::unique_ptr<UserDefaultsContractSide> m_side = GetParam()();
};

TEST_P(UserDefaultsContract, AKeyThatWasNeverSetIsFalse) {
    EXPECT_FALSE(m_side->defaults().boolForKey("hardwareChecked"));
}

TEST_P(UserDefaultsContract, AValueHoldsAtOnce) {
    m_side->defaults().setBool("hardwareChecked", true);
    EXPECT_TRUE(m_side->defaults().boolForKey("hardwareChecked"));
    m_side->defaults().setBool("hardwareChecked", false);
    EXPECT_FALSE(m_side->defaults().boolForKey("hardwareChecked"));
}

TEST_P(UserDefaultsContract, KeysAreIndependent) {
    m_side->defaults().setBool("one", true);
    EXPECT_FALSE(m_side->defaults().boolForKey("two"));
    m_side->defaults().setBool("two", true);
    m_side->defaults().setBool("one", false);
    EXPECT_TRUE(m_side->defaults().boolForKey("two"));
}

TEST_P(UserDefaultsContract, AValueOutlivesTheProgram) {
    m_side->defaults().setBool("hardwareChecked", true);
    m_side->relaunch();
    EXPECT_TRUE(m_side->defaults().boolForKey("hardwareChecked"));
    m_side->defaults().setBool("hardwareChecked", false);
    m_side->relaunch();
    EXPECT_FALSE(m_side->defaults().boolForKey("hardwareChecked"));
}

template <typename Side>
std::unique_ptr<UserDefaultsContractSide> make() {
    return std::make_unique<Side>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, UserDefaultsContract, testing::Values(&make<SimulatedSide>));
INSTANTIATE_TEST_SUITE_P(Linux, UserDefaultsContract, testing::Values(&make<LinuxSide>));

} // namespace

} // namespace quorvane
