#pragma once

#include <filesystem>

namespace quorvane {

/// The paths of the program quorvane-key-reader; an empty path means that it was not found.
struct KeyReaderPlaces {
    /// To be started with this user's own rights.
    std::filesystem::path own;
    /// To be started as root: only an installed one that only root can replace.
    std::filesystem::path installed;

    bool operator==(const KeyReaderPlaces&) const = default;
};

/// The one in this program's folder, as in a build folder, else the one that was installed with
/// this program.
[[nodiscard]] KeyReaderPlaces findKeyReader();

/// As `findKeyReader` for a program in `folder`.
[[nodiscard]] KeyReaderPlaces findKeyReaderFor(const std::filesystem::path& folder);

/// Whether `file`, an absolute path without symbolic links, and every folder above it belong to
/// root and no other user may write to them.
[[nodiscard]] bool canOnlyRootChange(const std::filesystem::path& file);

} // namespace quorvane
