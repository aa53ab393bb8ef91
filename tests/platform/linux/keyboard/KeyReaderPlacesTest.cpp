#include <gtest/gtest.h>

#include "platform/linux/keyboard/KeyReaderPlaces.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

class KeyReaderPlacesTest : public testing::Test {
protected:
    [[nodiscard]] KeyReaderPlaces find() const { return findKeyReaderFor(m_folder.path() / "bin"); }

    TemporaryFolder m_folder;
};

TEST_F(KeyReaderPlacesTest, WithoutAReaderThereIsNoPlace) {
    EXPECT_EQ(find(), KeyReaderPlaces());
}

TEST_F(KeyReaderPlacesTest, ReaderBesideTheProgramIsNeverRunAsRoot) {
    const auto reader = m_folder.write("bin/quorvane-key-reader", "");
    m_folder.write("libexec/quorvane-key-reader", "");
    EXPECT_EQ(find(), (KeyReaderPlaces{.own = reader, .installed = {}}));
}

TEST_F(KeyReaderPlacesTest, ReaderInstalledWhereOthersCanExchangeItIsNeverRunAsRoot) {
    const auto reader = m_folder.write("libexec/quorvane-key-reader", "");
    EXPECT_EQ(find(), (KeyReaderPlaces{.own = reader, .installed = {}}));
}

TEST_F(KeyReaderPlacesTest, OnlyRootCanChangeTheSystemsPrograms) {
    EXPECT_TRUE(canOnlyRootChange("/usr/bin/env"));
    EXPECT_TRUE(canOnlyRootChange("/"));
}

TEST_F(KeyReaderPlacesTest, AnybodyCanChangeWhatAllMayWriteAndWhatIsInSuchAFolder) {
    EXPECT_FALSE(canOnlyRootChange("/dev/null"));
    const auto file = m_folder.write("file", "");
    fs::permissions(file, fs::perms{0755});
    EXPECT_FALSE(canOnlyRootChange(file));
}

TEST_F(KeyReaderPlacesTest, LinksAndWhatIsNotThereAreNotTrusted) {
    fs::create_symlink("/usr/bin/env", m_folder.path() / "link");
    EXPECT_FALSE(canOnlyRootChange(m_folder.path() / "link"));
    EXPECT_FALSE(canOnlyRootChange("/usr/bin/../bin/env"));
    EXPECT_FALSE(canOnlyRootChange("/usr/bin/no-such-program"));
    EXPECT_FALSE(canOnlyRootChange("usr/bin/env"));
    EXPECT_FALSE(canOnlyRootChange(""));
}

} // namespace

} // namespace quorvane
