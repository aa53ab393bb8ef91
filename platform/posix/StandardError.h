#pragma once

#include <string_view>

namespace quorvane {

/// Prints "quorvane: ", `what` and a newline on standard error, as a LineWriter does: without
/// waiting for who reads it. What waits at exit gets 100 ms. Any thread.
void printError(std::string_view what);

} // namespace quorvane
