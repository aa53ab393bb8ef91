#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quorvane {

/// The text of a small system file up to its first NUL, without surrounding white space; none when
/// it cannot be read. Reads 4096 bytes at most, the size of a sysfs attribute.
[[nodiscard]] std::optional<std::string> readSystemText(const std::filesystem::path& file);

/// The number in such a file, in the C locale whatever the process's is; none when the file holds
/// anything else, infinity included.
[[nodiscard]] std::optional<double> readSystemNumber(const std::filesystem::path& file);

} // namespace quorvane
