#include "platform/ThreadedHIDDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace quorvane {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::uint8_t readReportID = 1;
// A lid's report has three bytes; longer ones are cut.
constexpr std::size_t capacity = 8;

constexpr auto period = std::chrono::duration_cast<Clock::duration>(1s) / 30;
// Between an answer and the call that is expected to fetch it: what a busy machine takes to wake a
// thread.
constexpr Clock::duration lead = 5ms;
constexpr Clock::duration longestWait = 250ms;
constexpr Clock::duration restAfter = 1s;
// Until a device that could not be opened, or is gone, is tried again.
constexpr Clock::duration retryAfter = 1s;

struct Answer {
    HIDResult result = hidSuccess;
    std::array<std::uint8_t, capacity> bytes{};
    std::size_t length = capacity;
    Clock::time_point came;
};

} // namespace

/// What the thread and the device's callers share, under one mutex.
class ThreadedHIDDevice::Reader : public std::enable_shared_from_this<Reader>,
                                  quorvane::NonCopyable {
public:
    explicit Reader(Make make) : m_make(std::move(make)) {}

    HIDResult ask() {
        const std::lock_guard lock(m_mutex);
        return askLocked();
    }

    void replace(Make make) {
        const std::lock_guard lock(m_mutex);
        m_make = std::move(make);
        m_replaced = true;
        m_opened.reset();
        m_changed.notify_all();
    }

    void abandon() {
        const std::lock_guard lock(m_mutex);
        m_abandoned = true;
        m_changed.notify_all();
    }

    /// The result of opening the device.
    HIDResult waitForOpening() {
        std::unique_lock lock(m_mutex);
        if (const HIDResult result = askLocked(); result != hidSuccess)
            return result;
        m_changed.wait_until(lock, deadline(), [this] { return m_opened.has_value(); });
        return m_opened.value_or(ETIMEDOUT);
    }

    HIDResult answer(bool mayWait, std::span<std::uint8_t> buffer, std::size_t& length) {
        std::unique_lock lock(m_mutex);
        if (const HIDResult result = askLocked(); result != hidSuccess)
            return result;
        if (mayWait)
            m_changed.wait_until(lock, deadline(), [this] { return hasFreshAnswer(); });
        if (!hasFreshAnswer())
            return ETIMEDOUT;
        if (m_answer->result != hidSuccess)
            return m_answer->result;
        length = std::min(buffer.size(), m_answer->length);
        std::copy_n(m_answer->bytes.begin(), length, buffer.begin());
        return hidSuccess;
    }

private:
    HIDResult askLocked() {
        m_asked = Clock::now();
        if (m_runs)
            return hidSuccess;
        try {
            std::thread([self = shared_from_this()] { self->run(); }).detach();
        } catch (const std::system_error& error) {
            return error.code().value();
        }
        m_runs = true;
        return hidSuccess;
    }

    [[nodiscard]] bool isAsked() const {
        return !m_abandoned && Clock::now() - m_asked < restAfter;
    }

    [[nodiscard]] bool hasFreshAnswer() const {
        return m_answer && Clock::now() - m_answer->came <= period;
    }

    /// When a device that is being opened or read has taken too long.
    [[nodiscard]] Clock::time_point deadline() const {
        return (m_isReading ? m_began : Clock::now()) + longestWait;
    }

    void run() {
        std::unique_lock lock(m_mutex);
        while (isAsked())
            readWhileAsked(lock);
        m_runs = false;
    }

    void readWhileAsked(std::unique_lock<std::mutex>& lock) {
        std::shared_ptr<HIDDevice> device;
        while (isAsked()) {
            read(lock, device);
            m_changed.wait_until(lock, nextReading(), [this] { return m_abandoned || m_replaced; });
        }
        m_opened.reset();
        lock.unlock();
        device.reset();
        lock.lock();
    }

    /// Opens the device if necessary and reads it, unlocked.
    void read(std::unique_lock<std::mutex>& lock, std::shared_ptr<HIDDevice>& device) {
        const bool replaced = std::exchange(m_replaced, false);
        const Make make = m_make;
        m_began = Clock::now();
        m_isReading = true;
        lock.unlock();
        if (replaced)
            device.reset();
        Answer answer;
        if (!device) {
            device = make();
            answer.result = device->open();
            setOpened(answer.result);
        }
        const bool opened = answer.result == hidSuccess;
        if (opened)
            answer.result = device->getReport(HIDReportType::Feature, readReportID, answer.bytes,
                                              answer.length);
        if (!opened || answer.result == ENODEV) {
            device.reset();
            setOpened(answer.result);
        }
        answer.came = Clock::now();
        lock.lock();
        m_answer = answer;
        m_isReading = false;
        m_changed.notify_all();
    }

    void setOpened(HIDResult result) {
        const std::lock_guard lock(m_mutex);
        m_opened = result;
        m_changed.notify_all();
    }

    [[nodiscard]] Clock::time_point nextReading() const {
        if (m_opened != hidSuccess)
            return m_answer->came + retryAfter;
        const Clock::duration took = m_answer->came - m_began;
        // Calls are expected every period after the last one. A slow answer varies more.
        Clock::time_point next = m_asked - lead - took - took / 4;
        while (next < m_began + period / 2)
            next += period;
        return took > period ? std::max(next, m_answer->came + took) : next;
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    Make m_make;
    bool m_replaced = false;
    bool m_abandoned = false;
    bool m_runs = false;
    Clock::time_point m_asked;
    // The last reading, or the one in progress.
    Clock::time_point m_began;
    bool m_isReading = false;
    // None while the device is closed.
    std::optional<HIDResult> m_opened;
    std::optional<Answer> m_answer;
};

ThreadedHIDDevice::ThreadedHIDDevice(Make make)
    : m_properties(make()), m_reader(std::make_shared<Reader>(std::move(make))) {}

ThreadedHIDDevice::~ThreadedHIDDevice() {
    m_reader->abandon();
}

HIDResult ThreadedHIDDevice::readAhead() {
    return m_reader->ask();
}

void ThreadedHIDDevice::replace(Make make) {
    m_reader->replace(std::move(make));
}

HIDResult ThreadedHIDDevice::open() {
    const HIDResult result = m_reader->waitForOpening();
    if (result == hidSuccess) {
        m_open = true;
        m_readBefore = false;
    }
    return result;
}

HIDResult ThreadedHIDDevice::getReport(HIDReportType type, std::uint8_t reportID,
                                       std::span<std::uint8_t> buffer, std::size_t& length) {
    if (type != HIDReportType::Feature || reportID != readReportID)
        return ENOTSUP;
    if (!m_open)
        return ENODEV;
    const std::size_t room = std::min(length, buffer.size());
    if (room == 0)
        return EINVAL;
    const bool mayWait = !std::exchange(m_readBefore, true);
    return m_reader->answer(mayWait, buffer.first(room), length);
}

std::optional<int> ThreadedHIDDevice::integerProperty(std::string_view key) const {
    return m_properties->integerProperty(key);
}

} // namespace quorvane
