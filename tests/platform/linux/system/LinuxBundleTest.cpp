#include <algorithm>
#include <gmock/gmock.h>

#include "platform/linux/system/LinuxBundle.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;

namespace fs = std::filesystem;

class LinuxBundleTest : public testing::Test {
protected:
    static std::size_t indexOf(const std::vector<fs::path>& folders, const fs::path& folder) {
        const auto found = std::find(folders.begin(), folders.end(), folder);
        EXPECT_NE(found, folders.end()) << folder;
        return static_cast<std::size_t>(found - folders.begin());
    }

    EnvironmentVariable m_override{"QUORVANE_RESOURCES", std::nullopt};
    TemporaryFolder m_folder;
};

TEST_F(LinuxBundleTest, TheFirstFolderThatHasTheFileWins) {
    const auto second = m_folder.write("second/logo.png", "");
    const LinuxBundle bundle({m_folder.path() / "first", m_folder.path() / "second"});
    EXPECT_EQ(bundle.urlForResource("logo", "png"), second);
    const auto first = m_folder.write("first/logo.png", "");
    EXPECT_EQ(bundle.urlForResource("logo", "png"), first);
}

TEST_F(LinuxBundleTest, AFolderIsNoResource) {
    m_folder.write("logo.png/inside", "");
    EXPECT_EQ(LinuxBundle({m_folder.path()}).urlForResource("logo", "png"), std::nullopt);
}

TEST_F(LinuxBundleTest, TheProgramsOwnFoldersComeBeforeTheXDGFolders) {
    const EnvironmentVariable home("XDG_DATA_HOME", "/some/data");
    const EnvironmentVariable dirs("XDG_DATA_DIRS", "/one:/two");
    const auto folders = LinuxBundle::standardFolders();
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    EXPECT_THAT(folders,
                ElementsAre(program / "resources", program.parent_path() / "share/quorvane",
                            "/some/data/quorvane", "/one/quorvane", "/two/quorvane"));
}

TEST_F(LinuxBundleTest, TheOverrideIsTheOnlyFolder) {
    const EnvironmentVariable override("QUORVANE_RESOURCES", "/some/where");
    EXPECT_THAT(LinuxBundle::standardFolders(), ElementsAre("/some/where"));
}

} // namespace

} // namespace quorvane
