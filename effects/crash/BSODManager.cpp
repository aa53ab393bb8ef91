#include "effects/crash/BSODManager.h"

#include <algorithm>
#include <utility>

#include "base/MainThread.h"
#include "effects/crash/OverlayRecipe.h"

namespace quorvane {

namespace {

// Seconds.
constexpr double showInterval = 15.0;
constexpr double showDuration = 5.0;
constexpr double progressInterval = 1.0 / 60;

} // namespace

std::shared_ptr<BSODManager> BSODManager::create(const Platform& platform) {
    return makeMainThreadOwned(platform.runLoop,
                               std::unique_ptr<BSODManager>(new BSODManager(platform)));
}

BSODManager::BSODManager(const Platform& platform) : m_platform(platform) {}

BSODManager::~BSODManager() {
    // The timers' blocks do nothing without the manager. The owner has stopped it, so no panel is
    // shown.
    requireMainThread(m_platform.runLoop, "BSODManager");
}

void BSODManager::start() {
    if (m_isActive)
        return;
    m_isActive = true;
    m_bsodTimer =
        m_platform.runLoop.scheduledTimer(showInterval, true, [weak = weak_from_this()](Timer&) {
            if (const auto manager = weak.lock())
                manager->showBSOD();
        });
}

void BSODManager::stop() {
    m_isActive = false;
    m_isShowing = false;
    invalidate(m_bsodTimer);
    invalidate(m_progressTimer);
    removePanel();
}

void BSODManager::showBSOD() {
    static_assert(!errors.empty(), "BSODManager: there are no stop codes");
    const StopCode& row = errors.at(m_platform.random.uniform(errors.size() - 1));
    m_screen->errorMessage = std::string(row.msg);
    m_screen->errorCode = std::string(row.code);
    m_screen->progress = 0.0;
    m_isShowing = true;
    showPanel();
    const Start start{.date = m_platform.runLoop.currentDate(),
                      .mediaTime = m_platform.runLoop.currentMediaTime()};
    invalidate(m_progressTimer);
    m_progressTimer = m_platform.runLoop.scheduledTimer(
        progressInterval, true, [weak = weak_from_this(), start](Timer& timer) {
            if (const auto manager = weak.lock())
                manager->tick(timer, start);
            else
                timer.invalidate();
        });
}

void BSODManager::showPanel() {
    // When the main thread was busy, two screens can come within 5 s. A panel without a handle
    // would stay up, and take the clicks, until the program ends.
    removePanel();
    const auto screen = m_platform.screens.mainScreen();
    if (!screen)
        return;
    m_bsodWindow = showOverlay(m_platform.screens, *screen,
                               {.opaque = true,
                                .background = BSODView::background,
                                .ignoresMouseEvents = {},
                                .timeLimit = showDuration},
                               std::make_shared<BSODView>(m_screen));
}

double BSODManager::fractionSince(const Start& start) const {
    // The wall clock can be set back; the media clock ends the screen even then.
    if (m_platform.runLoop.currentMediaTime() - start.mediaTime >= showDuration)
        return 1.0;
    const double elapsed = m_platform.runLoop.currentDate() - start.date;
    return std::clamp(elapsed / showDuration, 0.0, 1.0);
}

void BSODManager::tick(Timer& timer, const Start& start) {
    const double fraction = fractionSince(start);
    m_screen->progress = fraction;
    if (fraction < 1.0)
        return;
    timer.invalidate();
    m_isShowing = false;
    removePanel();
}

void BSODManager::removePanel() {
    if (const auto panel = std::exchange(m_bsodWindow, nullptr))
        panel->orderOut();
}

} // namespace quorvane
