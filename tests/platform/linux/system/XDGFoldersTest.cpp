#include "platform/linux/common/XDGFolders.h"

#include <gmock/gmock.h>
#include <pwd.h>
#include <unistd.h>

#include "tests/support/Environment.h"

namespace quorvane {

using testing::ElementsAre;

namespace fs = std::filesystem;

TEST(XDGFoldersTest, RelativeFoldersAreIgnored) {
    const EnvironmentVariable home("HOME", "/some/home");
    const EnvironmentVariable config("XDG_CONFIG_HOME", "config");
    const EnvironmentVariable configs("XDG_CONFIG_DIRS", "one:/two:../three::/four");
    const EnvironmentVariable data("XDG_DATA_HOME", "./data");
    const EnvironmentVariable datas("XDG_DATA_DIRS", "share:/five");
    EXPECT_THAT(xdgConfigFolders(), ElementsAre("/some/home/.config", "/two", "/four"));
    EXPECT_THAT(xdgDataFolders(), ElementsAre("/some/home/.local/share", "/five"));
}

TEST(XDGFoldersTest, MissingAndEmptyVariablesMeanTheDefaults) {
    const EnvironmentVariable home("HOME", "/some/home");
    for (const auto& nothing : {std::optional<std::string>(), std::optional<std::string>("")}) {
        const EnvironmentVariable config("XDG_CONFIG_HOME", nothing);
        const EnvironmentVariable configs("XDG_CONFIG_DIRS", nothing);
        const EnvironmentVariable data("XDG_DATA_HOME", nothing);
        const EnvironmentVariable datas("XDG_DATA_DIRS", nothing);
        EXPECT_THAT(xdgConfigFolders(), ElementsAre("/some/home/.config", "/etc/xdg"));
        EXPECT_THAT(xdgDataFolders(),
                    ElementsAre("/some/home/.local/share", "/usr/local/share", "/usr/share"));
    }
}

TEST(XDGFoldersTest, WithoutAHomeFolderInTheEnvironmentItIsTheUsersOwn) {
    const EnvironmentVariable config("XDG_CONFIG_HOME", std::nullopt);
    const fs::path own = getpwuid(getuid())->pw_dir; // NOLINT(concurrency-mt-unsafe): one thread.
    for (const auto& home : {std::optional<std::string>(), std::optional<std::string>("home")}) {
        const EnvironmentVariable variable("HOME", home);
        EXPECT_EQ(xdgConfigFolder(), own / ".config");
    }
}

} // namespace quorvane
