#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quorvane {

/// The text of a small system file up to its first NUL, without surrounding white space; none when
/// it cannot be read. Reads 4096 bytes at most, the size of a sysfs attribute.
[[nodiscard]] std::optional<std::string> readSystemText(const std::filesystem::path& file);

/// The number that such a file holds, in the C locale whatever ours is; none when it holds
/// anything else, infinities included.
[[nodiscard]] std::optional<double> readSystemNumber(const std::filesystem::path& file);

} // namespace quorvane
