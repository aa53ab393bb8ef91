#pragma once

#include <string>

namespace quorvane {

/// Whether the program may ever print `line`.
[[nodiscard]] bool isPromisedLine(const std::string& line);

} // namespace quorvane
