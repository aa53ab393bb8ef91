#include "platform/linux/keyboard/KeyReaderPlaces.h"

#include <QCoreApplication>
#include <sys/stat.h>

#include <system_error>

namespace quorvane {

namespace {

namespace fs = std::filesystem;

constexpr auto programName = "quorvane-key-reader";

} // namespace

KeyReaderPlaces findKeyReader() {
    return findKeyReaderFor(QCoreApplication::applicationDirPath().toStdString());
}

KeyReaderPlaces findKeyReaderFor(const fs::path& folder) {
    std::error_code error;
    if (fs::exists(folder / programName, error))
        return {.own = folder / programName, .installed = {}};
    const fs::path installed = folder.parent_path() / QUORVANE_LIBEXEC / programName;
    if (!fs::exists(installed, error))
        return {};
    return {.own = installed, .installed = canOnlyRootChange(installed) ? installed : fs::path()};
}

bool canOnlyRootChange(const fs::path& file) {
    // Without links on the way there is nothing to look at but the file and its folders.
    std::error_code error;
    if (fs::canonical(file, error) != file)
        return false;
    for (fs::path path = file;; path = path.parent_path()) {
        struct stat facts {};

        if (lstat(path.c_str(), &facts) != 0 || facts.st_uid != 0 ||
            (facts.st_mode & (S_IWGRP | S_IWOTH)) != 0)
            return false;
        if (path == path.root_path())
            return true;
    }
}

} // namespace quorvane
