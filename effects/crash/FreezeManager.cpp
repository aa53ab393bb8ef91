#include "effects/crash/FreezeManager.h"

#include <utility>

#include "base/MainThread.h"
#include "base/UniformDraw.h"
#include "effects/crash/FreezeView.h"
#include "effects/crash/OverlayRecipe.h"

namespace quorvane {

namespace {

// Seconds.
constexpr double shortestWait = 20.0;
constexpr double longestWait = 40.0;
constexpr double shortestFreeze = 3.0;
constexpr double longestFreeze = 4.0;

constexpr Color clearColor{.red = 0, .green = 0, .blue = 0, .alpha = 0};

} // namespace

std::shared_ptr<FreezeManager> FreezeManager::create(const Platform& platform) {
    return makeMainThreadOwned(platform.runLoop,
                               std::unique_ptr<FreezeManager>(new FreezeManager(platform)));
}

FreezeManager::FreezeManager(const Platform& platform) : m_platform(platform) {}

FreezeManager::~FreezeManager() {
    requireMainThread(m_platform.runLoop, "FreezeManager");
}

void FreezeManager::start() {
    if (m_isActive)
        return;
    m_isActive = true;
    scheduleNext();
}

void FreezeManager::stop() {
    m_isActive = false;
    invalidate(m_freezeTimer);
    removePanel();
}

void FreezeManager::scheduleNext() {
    const double delay = draw(shortestWait, longestWait);
    // An earlier timer's handle is overwritten; that timer still fires.
    m_freezeTimer =
        m_platform.runLoop.scheduledTimer(delay, false, [weak = weak_from_this()](Timer&) {
            const auto manager = weak.lock();
            if (manager && manager->m_isActive)
                manager->showFreeze();
        });
}

void FreezeManager::showFreeze() {
    const auto screen = m_platform.screens.mainScreen();
    // Without a screen the cycle ends here, until the effect is stopped and started.
    if (!screen)
        return;
    // Two chains may overlap. A panel without a handle would stay up and take the clicks.
    removePanel();
    const double length = draw(shortestFreeze, longestFreeze);
    m_freezeWindow = showOverlay(m_platform.screens, *screen,
                                 {.opaque = false,
                                  .background = clearColor,
                                  .ignoresMouseEvents = false,
                                  .timeLimit = length},
                                 std::make_shared<FreezeView>());
    m_platform.runLoop.asyncAfter(length, [weak = weak_from_this()] {
        const auto manager = weak.lock();
        if (manager && manager->m_isActive)
            manager->endFreeze();
    });
}

void FreezeManager::endFreeze() {
    removePanel();
    scheduleNext();
}

void FreezeManager::removePanel() {
    if (const auto panel = std::exchange(m_freezeWindow, nullptr))
        panel->orderOut();
}

double FreezeManager::draw(double low, double high) {
    return uniformInRange(m_platform.random.uniform(uniformDrawBound), low, high);
}

} // namespace quorvane
