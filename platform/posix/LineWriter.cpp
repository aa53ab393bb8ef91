#include "platform/posix/LineWriter.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <condition_variable>
#include <deque>
#include <exception>
#include <fcntl.h>
#include <mutex>
#include <new>
#include <poll.h>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds longestPrint{10};
constexpr std::chrono::milliseconds partingTime{100};
constexpr std::chrono::seconds longestWait{1};
constexpr std::size_t mostLines = 1000;
// How often a thread that waits for room looks whether it is still wanted.
constexpr int lookMilliseconds = 100;

bool isTerminal(int descriptor) {
    return isatty(descriptor) == 1;
}

/// Whether poll reports room within the timeout, or an error, which the write then meets.
short pollToWrite(int descriptor, int milliseconds) {
    pollfd state{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return poll(&state, 1, milliseconds) > 0 ? state.revents : short{0};
}

/// Removes from `text` what the descriptor takes, or all if it never will take any. False: it takes
/// none at present.
bool writeOnce(int descriptor, std::string_view& text, std::size_t most) {
    const ssize_t count = write(descriptor, text.data(), std::min(text.size(), most));
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return errno == EINTR;
    text.remove_prefix(count < 0 ? text.size() : static_cast<std::size_t>(count));
    return true;
}

/// Removes from `text` what a pipe or file takes without waiting. Where poll reports room, a pipe
/// takes PIPE_BUF bytes, unless another writer is faster: inside this process there is none.
void writeNow(int descriptor, std::string_view& text) {
    static std::mutex onlyWriter;
    const std::lock_guard lock(onlyWriter);
    while (!text.empty()) {
        const short ready = pollToWrite(descriptor, 0);
        if ((ready & (POLLERR | POLLHUP | POLLNVAL)) != 0)
            text = {};
        else if (ready == 0 || !writeOnce(descriptor, text, PIPE_BUF))
            return;
    }
}

/// The room of a terminal is unknown: only the thread may wait there.
void writeWaiting(int descriptor, std::string_view text, const std::atomic<bool>& abandoned) {
    while (!text.empty() && !abandoned) {
        const short ready = pollToWrite(descriptor, lookMilliseconds);
        if (ready == 0 || abandoned)
            continue;
        if (isTerminal(descriptor))
            writeOnce(descriptor, text, text.size());
        else
            writeNow(descriptor, text);
    }
}

std::string lossOf(std::size_t lines) {
    return std::to_string(lines) + " lines lost\n";
}

} // namespace

struct LineWriter::Queue {
    struct Line {
        std::string text;
        Clock::time_point printed;
    };

    std::mutex mutex;
    std::condition_variable hasWork;
    std::condition_variable isDone;
    std::deque<Line> lines;
    std::size_t lost = 0;
    bool isWriting = false;
    bool isFinishing = false;
    bool hasEnded = false;
    std::atomic<bool> abandoned = false;

    [[nodiscard]] bool isIdle() const { return lines.empty() && !isWriting && lost == 0; }

    void add(std::string text) {
        if (lines.size() >= mostLines)
            dropOldest();
        lines.push_back({.text = std::move(text), .printed = Clock::now()});
    }

    void dropOldest() {
        lines.pop_front();
        ++lost;
    }

    std::string takeNext() {
        if (lost > 0)
            return lossOf(std::exchange(lost, 0));
        std::string text = std::move(lines.front().text);
        lines.pop_front();
        return text;
    }

    void writeNext(int descriptor, std::unique_lock<std::mutex>& lock) {
        const std::string text = takeNext();
        const auto begin = Clock::now();
        isWriting = true;
        lock.unlock();
        writeWaiting(descriptor, text, abandoned);
        lock.lock();
        isWriting = false;
        const auto now = Clock::now();
        if (now - begin >= longestWait)
            while (!lines.empty() && now - lines.front().printed >= longestWait)
                dropOldest();
    }

    /// What there is no room for is lost.
    void writeWithoutThread(int descriptor) {
        while ((lost > 0 || !lines.empty()) && pollToWrite(descriptor, 0) != 0) {
            const std::string text = takeNext();
            std::string_view left = text;
            if (isTerminal(descriptor))
                writeOnce(descriptor, left, left.size());
            else
                writeNow(descriptor, left);
            if (!left.empty())
                ++lost;
        }
        while (!lines.empty())
            dropOldest();
    }

    void run(int descriptor) {
        std::unique_lock lock(mutex);
        while (!abandoned) {
            hasWork.wait(lock, [this] { return isFinishing || !isIdle(); });
            if (isIdle())
                break;
            writeNext(descriptor, lock);
            if (isIdle())
                isDone.notify_all();
        }
        hasEnded = true;
        isDone.notify_all();
    }
};

LineWriter::LineWriter(int descriptor)
    : m_descriptor(fcntl(descriptor, F_GETFD) < 0 ? -1 : descriptor),
      m_queue(std::make_shared<Queue>()) {}

LineWriter::~LineWriter() {
    finish();
}

void LineWriter::print(std::string_view line) {
    if (m_descriptor < 0)
        return;
    std::unique_lock lock(m_queue->mutex);
    try {
        printLocked(std::string(line) + "\n", lock);
    } catch (const std::bad_alloc&) {
        ++m_queue->lost;
    }
}

void LineWriter::printLocked(std::string text, std::unique_lock<std::mutex>& lock) {
    const bool wasIdle = m_queue->isIdle();
    if (wasIdle && !isTerminal(m_descriptor)) {
        std::string_view left = text;
        writeNow(m_descriptor, left);
        text.erase(0, text.size() - left.size());
        if (text.empty())
            return;
    }
    m_queue->add(std::move(text));
    if (!startThread()) {
        m_queue->writeWithoutThread(m_descriptor);
        return;
    }
    m_queue->hasWork.notify_one();
    if (wasIdle)
        m_queue->isDone.wait_for(lock, longestPrint, [this] { return m_queue->isIdle(); });
}

/// Whether there is a thread. With the mutex held.
bool LineWriter::startThread() {
    if (m_queue->isFinishing || m_thread.joinable())
        return !m_queue->isFinishing;
    try {
        m_thread =
            std::thread([queue = m_queue, descriptor = m_descriptor] { queue->run(descriptor); });
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void LineWriter::finish() {
    std::unique_lock lock(m_queue->mutex);
    m_queue->isFinishing = true;
    if (!m_thread.joinable())
        return;
    m_queue->hasWork.notify_one();
    const bool ended =
        m_queue->isDone.wait_for(lock, partingTime, [this] { return m_queue->hasEnded; });
    m_queue->abandoned = true;
    lock.unlock();
    if (ended)
        m_thread.join();
    else
        m_thread.detach();
}

} // namespace quorvane
