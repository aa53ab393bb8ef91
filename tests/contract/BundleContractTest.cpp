#include <gtest/gtest.h>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxBundle.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class BundleContractSide : NonCopyable {
public:
    virtual ~BundleContractSide() = default;

    /// Holds "creaking" of type "mp3", whose file's content is "creak".
    virtual Bundle& bundle() = 0;

protected:
    TemporaryFolder m_folder;
    std::filesystem::path m_creak = m_folder.write("creaking.mp3", "creak");
};

class SimulatedSide final : public BundleContractSide {
public:
    SimulatedSide() { m_bundle.addResource("creaking", "mp3", m_creak); }

    Bundle& bundle() override { return m_bundle; }

private:
    SimulatedBundle m_bundle;
};

class LinuxSide final : public BundleContractSide {
public:
    Bundle& bundle() override { return m_bundle; }

private:
    LinuxBundle m_bundle{{m_folder.path() / "missing", m_folder.path()}};
};

using BundleSideMaker = std::unique_ptr<BundleContractSide> (*)();

class BundleContract : public testing::TestWithParam<BundleSideMaker> {
protected:
    std::unique_ptr<BundleContractSide> m_side = GetParam()();
};

TEST_P(BundleContract, AResourceIsFoundByNameAndType) {
    const auto file = m_side->bundle().urlForResource("creaking", "mp3");
    ASSERT_TRUE(file);
    EXPECT_EQ(fileText(*file), "creak");
}

TEST_P(BundleContract, AMissingResourceIsNone) {
    EXPECT_EQ(m_side->bundle().urlForResource("tractor", "mp3"), std::nullopt);
}

TEST_P(BundleContract, AnotherTypeIsAnotherResource) {
    EXPECT_EQ(m_side->bundle().urlForResource("creaking", "png"), std::nullopt);
}

template <typename Side>
std::unique_ptr<BundleContractSide> make() {
    return std::make_unique<Side>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, BundleContract, testing::Values(&make<SimulatedSide>));
INSTANTIATE_TEST_SUITE_P(Linux, BundleContract, testing::Values(&make<LinuxSide>));

} // namespace

} // namespace quorvane
