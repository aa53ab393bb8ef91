#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "base/NonCopyable.h"

namespace quorvane {

/// Writes lines to a descriptor, in order, without waiting for who reads them. A regular file or a
/// pipe with room gets a line at once. What a pipe has no room for, and all that goes to a
/// terminal, is written by a thread, which is started when it is first needed and sleeps without
/// lines.
///
/// After a second without room, and when more than 1000 lines wait, the oldest are dropped; when
/// writing goes on, "N lines lost" is written in their place. A closed pipe is ignored: no error,
/// and no SIGPIPE, unless its reader closes it during the write, for which `main` ignores the
/// signal. Where no thread can be started, lines without room are dropped. Any thread.
class LineWriter : NonCopyable {
public:
    /// The descriptor is not owned. If it is closed already, nothing is ever written, since another
    /// file may get its number.
    explicit LineWriter(int descriptor);
    /// As `finish`.
    ~LineWriter();

    /// Writes `line` and a newline. Waits for the thread 10 ms at most, and not at all while
    /// earlier lines wait.
    void print(std::string_view line);

    /// Gives what waits 100 ms, and ends the thread. What is printed after this is written only if
    /// there is room at once. Main thread, once.
    void finish();

private:
    struct Queue;

    void printLocked(std::string text, std::unique_lock<std::mutex>& lock);
    bool startThread();

    int m_descriptor;
    // The thread has a reference too: it may be stuck in a write for longer than this object lives.
    std::shared_ptr<Queue> m_queue;
    std::thread m_thread;
};

} // namespace quorvane
