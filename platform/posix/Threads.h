#pragma once

#include <functional>
#include <thread>

namespace quorvane {

/// Runs `body` on a thread of that name, a literal of 15 characters at most, which a debugger
/// shows. A thread that cannot be started is a line on standard error, and the result is not
/// joinable. So is one that runs out of memory: it ends. Any thread.
[[nodiscard]] std::thread startThread(const char* name, std::function<void()> body);

/// From now on, an exception that nothing catches is told on standard error, with what it says and
/// the thread, before the program is aborted.
void tellUncaughtExceptions();

} // namespace quorvane
