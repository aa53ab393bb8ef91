#include <gtest/gtest.h>
#include <memory>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxBundle.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class BundleContractBackend : NonCopyable {
public:
    virtual ~BundleContractBackend() = default;

    /// Holds "creaking" of type "mp3", whose file's content is "creak".
    virtual Bundle& bundle() = 0;

protected:
    TemporaryFolder m_folder;
    std::filesystem::path m_creak = m_folder.write("creaking.mp3", "creak");
};

class SimulatedBackend final : public BundleContractBackend {
public:
    SimulatedBackend() { m_bundle.addResource("creaking", "mp3", m_creak); }

    Bundle& bundle() override { return m_bundle; }

private:
    SimulatedBundle m_bundle;
};

class LinuxBackend final : public BundleContractBackend {
public:
    Bundle& bundle() override { return m_bundle; }

private:
    LinuxBundle m_bundle{{m_folder.path() / "missing", m_folder.path()}};
};

using BundleBackendMaker = std::unique_ptr<BundleContractBackend> (*)();

class BundleContract : public testing::TestWithParam<BundleBackendMaker> {
protected:
    std::unique_ptr<BundleContractBackend> m_backend = GetParam()();
};

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

template <typename Backend>
std::unique_ptr<BundleContractBackend> make() {
    return std::make_unique<Backend>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, BundleContract, testing::Values(&make<SimulatedBackend>));
INSTANTIATE_TEST_SUITE_P(Linux, BundleContract, testing::Values(&make<LinuxBackend>));

} // namespace

} // namespace quorvane
