#include "platform/linux/common/XDGFolders.h"

#include <algorithm>
#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <unistd.h>

namespace quorvane {

namespace {

namespace fs = std::filesystem;

std::string_view variable(const char* name) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): main thread only.
    return value ? value : "";
}

fs::path homeFolder() {
    fs::path home = variable("HOME");
    if (home.is_absolute())
        return home;
    const passwd* user = getpwuid(getuid()); // NOLINT(concurrency-mt-unsafe): main thread only.
    return user && user->pw_dir && *user->pw_dir == '/' ? user->pw_dir : "/";
}

fs::path folder(const char* name, const char* inHome) {
    const fs::path set = variable(name);
    return set.is_absolute() ? set : homeFolder() / inHome;
}

void append(std::vector<fs::path>& folders, std::string_view list, std::string_view otherwise) {
    if (list.empty())
        list = otherwise;
    while (!list.empty()) {
        const auto end = std::min(list.find(':'), list.size());
        const fs::path path = list.substr(0, end);
        if (path.is_absolute())
            folders.push_back(path);
        list.remove_prefix(std::min(end + 1, list.size()));
    }
}

} // namespace

fs::path xdgConfigFolder() {
    return folder("XDG_CONFIG_HOME", ".config");
}

std::vector<fs::path> xdgConfigFolders() {
    std::vector<fs::path> folders{xdgConfigFolder()};
    append(folders, variable("XDG_CONFIG_DIRS"), "/etc/xdg");
    return folders;
}

std::vector<fs::path> xdgDataFolders() {
    std::vector<fs::path> folders{folder("XDG_DATA_HOME", ".local/share")};
    append(folders, variable("XDG_DATA_DIRS"), "/usr/local/share:/usr/share");
    return folders;
}

} // namespace quorvane
