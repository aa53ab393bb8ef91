#pragma once

#include <cstddef>

namespace quorvane {

/// Whether this process could now open `count` more files.
[[nodiscard]] bool canOpenFiles(std::size_t count);

} // namespace quorvane
