#include "platform/linux/system/LinuxBundle.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/contract/Contract.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class BundleBackend : public ContractBackend {
public:
    /// Holds "creaking" of type "mp3", whose file's content is "creak".
    virtual Bundle& bundle() = 0;

protected:
    TemporaryFolder m_folder;
    std::filesystem::path m_creak = m_folder.write("creaking.mp3", "creak");
};

class SimulatedBackend final : public BundleBackend {
public:
    SimulatedBackend() { m_bundle.addResource("creaking", "mp3", m_creak); }

    Bundle& bundle() override { return m_bundle; }

private:
    SimulatedBundle m_bundle;
};

class LinuxBackend final : public BundleBackend {
public:
    Bundle& bundle() override { return m_bundle; }

private:
    LinuxBundle m_bundle{{m_folder.path() / "missing", m_folder.path()}};
};

using BundleContract = Contract<BundleBackend>;

TEST_P(BundleContract, AResourceIsFoundByNameAndType) {
    const auto file = m_backend->bundle().urlForResource("creaking", "mp3");
    ASSERT_TRUE(file);
    EXPECT_EQ(fileText(*file), "creak");
}

TEST_P(BundleContract, AMissingResourceIsNone) {
    EXPECT_EQ(m_backend->bundle().urlForResource("tractor", "mp3"), std::nullopt);
}

TEST_P(BundleContract, AnotherTypeIsAnotherResource) {
    EXPECT_EQ(m_backend->bundle().urlForResource("creaking", "png"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Simulated, BundleContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, BundleContract, on<LinuxBackend>());

} // namespace

} // namespace quorvane
