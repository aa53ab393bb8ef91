#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace quorvane {

/// Ends the program, with "quorvane: fatal: " and `message` on standard error. `message` starts
/// with the name of the class that cannot go on, and gives the reason. Any thread.
[[noreturn]] inline void fatalError(const std::string& message) {
    std::fprintf(stderr, "quorvane: fatal: %s\n", message.c_str());
    std::abort();
}

} // namespace quorvane
