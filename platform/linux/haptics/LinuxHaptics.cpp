#include "platform/linux/haptics/LinuxHaptics.h"

#include <atomic>
#include <chrono>
#include <utility>

#include "platform/linux/haptics/EvdevForceFeedback.h"
#include "platform/linux/haptics/HapticDevice.h"

namespace quorvane {

namespace {

using namespace std::chrono_literals;

// A performer is dropped at the second check in a row that finds it neither held nor asked for
// since the check before: 0.5 to 1 s after it was released, 1 to 1.5 s after it was asked for.
constexpr auto checkInterval = 500ms;
constexpr int unusedChecksBeforeClosing = 2;

// Milliseconds for closing the device at exit; a healthy one takes one or two.
constexpr int longestWait = 500;

} // namespace

class LinuxHaptics::Performer final : public HapticPerformer {
public:
    Performer(QThreadPool& background, const std::shared_ptr<ForceFeedbackDevices>& devices)
        : m_background(background), m_opening(std::make_shared<Opening>()) {
        m_background.start([devices, opening = m_opening]() mutable {
            opening->device = HapticDevice::openBest(*devices);
            opening->isDone.store(true, std::memory_order_release);
            // If the performer is gone by now, this closes the device, on this thread.
            opening.reset();
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
            m_background.start([opening = std::move(m_opening)]() mutable { opening.reset(); });
    }

private:
    /// Shared with the thread that opens.
    struct Opening {
        std::unique_ptr<HapticDevice> device;
        std::atomic<bool> isDone = false;
    };

    QThreadPool& m_background;
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
    if (m_background && !m_background->waitForDone(longestWait))
        static_cast<void>(m_background.release());
}

std::shared_ptr<HapticPerformer> LinuxHaptics::defaultPerformer() {
    m_wasAskedFor = true;
    if (!m_background)
        m_background = std::make_unique<QThreadPool>();
    if (!m_current || m_current->isLost()) {
        m_current = std::make_shared<Performer>(*m_background, m_devices);
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
