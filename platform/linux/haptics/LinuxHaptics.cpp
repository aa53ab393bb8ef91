#include "platform/linux/haptics/LinuxHaptics.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/linux/haptics/EvdevForceFeedback.h"
#include "platform/linux/haptics/HapticDevice.h"
#include "platform/posix/Threads.h"

namespace quorvane {

namespace {

using namespace std::chrono_literals;

// A performer is dropped at the second check in a row that finds it neither held nor asked for
// since the check before: 0.5 to 1 s after it was released, 1 to 1.5 s after it was asked for.
constexpr auto checkInterval = 500ms;
constexpr int unusedChecksBeforeClosing = 2;

// For closing the device at exit; a healthy one takes one or two milliseconds.
constexpr auto longestWait = 500ms;

} // namespace

/// Work on threads. Not a QThreadPool, which needs file descriptors and aborts without any left.
class LinuxHaptics::Background {
public:
    static void start(const std::shared_ptr<Background>& self, std::function<void()> work) {
        self->count(1);
        std::thread thread = startThread("haptics", [self, work = std::move(work)]() mutable {
            work();
            // Closes the device if nothing else does.
            work = nullptr;
            self->count(-1);
        });
        if (thread.joinable())
            thread.detach();
        else
            self->count(-1);
    }

    void waitForDone(std::chrono::milliseconds timeout) {
        std::unique_lock lock(m_mutex);
        m_isDone.wait_for(lock, timeout, [this] { return m_running == 0; });
    }

private:
    void count(int change) {
        const std::lock_guard lock(m_mutex);
        m_running += change;
        m_isDone.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_isDone;
    int m_running = 0;
};

class LinuxHaptics::Performer final : public HapticPerformer {
public:
    Performer(std::shared_ptr<Background> background,
              const std::shared_ptr<ForceFeedbackDevices>& devices)
        : m_background(std::move(background)), m_opening(std::make_shared<Opening>()) {
        Background::start(m_background, [devices, opening = m_opening] {
            opening->device = HapticDevice::openBest(*devices);
            opening->isDone.store(true, std::memory_order_release);
        });
    }

    ~Performer() override { close(); }

    void performFeedback(HapticPattern pattern, HapticPerformanceTime /*time*/) override {
        if (!m_opening || !m_opening->isDone.load(std::memory_order_acquire))
            return;
        if (m_opening->device && !m_opening->device->play(pattern))
            close();
    }

    /// Whether its device has vanished.
    [[nodiscard]] bool isLost() const { return !m_opening; }

    void close() {
        if (m_opening)
            Background::start(m_background, [opening = std::move(m_opening)] {});
    }

private:
    /// Shared with the thread that opens.
    struct Opening {
        std::unique_ptr<HapticDevice> device;
        std::atomic<bool> isDone = false;
    };

    std::shared_ptr<Background> m_background;
    std::shared_ptr<Opening> m_opening;
};

LinuxHaptics::LinuxHaptics() : LinuxHaptics(std::make_shared<EvdevForceFeedback>()) {}

LinuxHaptics::LinuxHaptics(std::shared_ptr<ForceFeedbackDevices> devices)
    : m_devices(std::move(devices)) {
    m_useCheck.setInterval(checkInterval);
    QObject::connect(&m_useCheck, &QTimer::timeout, &m_useCheck, [this] { closeWhenUnused(); });
}

LinuxHaptics::~LinuxHaptics() {
    if (m_current)
        m_current->close();
    if (m_background)
        m_background->waitForDone(longestWait);
}

std::shared_ptr<HapticPerformer> LinuxHaptics::defaultPerformer() {
    m_wasAskedFor = true;
    if (!m_background)
        m_background = std::make_shared<Background>();
    if (!m_current || m_current->isLost()) {
        m_current = std::make_shared<Performer>(m_background, m_devices);
        m_useCheck.start();
    }
    return m_current;
}

void LinuxHaptics::closeWhenUnused() {
    const bool isUsed = m_current.use_count() > 1;
    if (std::exchange(m_wasAskedFor, false) || isUsed)
        m_unusedChecks = 0;
    else if (++m_unusedChecks >= unusedChecksBeforeClosing) {
        m_current.reset();
        m_useCheck.stop();
    }
}

} // namespace quorvane
