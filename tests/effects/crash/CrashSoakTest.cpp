#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "effects/crash/BSODManager.h"
#include "effects/crash/BSODView.h"
#include "effects/crash/FreezeManager.h"
#include "platform/simulated/SimulatedMachine.h"

namespace quorvane {
namespace {

constexpr double minute = 60;
constexpr double hour = 60 * minute;

bool isStopScreen(const SimulatedPanel& panel) {
    return dynamic_cast<const BSODView*>(panel.view.get()) != nullptr;
}

/// Both effects on one machine, switched on and off at random, while the screen comes and goes, the
/// wall clock is set and the main thread is blocked. The same seed repeats the run.
class Soak {
public:
    explicit Soak(std::uint64_t seed) : m_chance(seed) {
        m_machine.random.reseed(seed);
        m_bsodMoved = m_bsod->progress().observe([this] { checkProgress(); });
    }

    void run(double seconds) {
        const double end = now() + seconds;
        while (now() < end && !testing::Test::HasFailure()) {
            pass(exponential(5));
            doSomething();
            check();
        }
        stopScreens();
        m_freeze->stop();
        EXPECT_TRUE(m_machine.screens.shownPanels().empty()) << "a panel outlived both effects";
        // Delayed blocks cannot be cancelled; they end by themselves.
        m_machine.runLoop.advance(hour);
        EXPECT_EQ(m_machine.runLoop.pendingCount(), 0U);
        EXPECT_TRUE(m_machine.screens.shownPanels().empty());
    }

    [[nodiscard]] std::size_t stopScreensShown() const { return m_stopScreens; }

private:
    [[nodiscard]] double now() const { return m_machine.runLoop.currentMediaTime(); }

    double exponential(double mean) { return std::exponential_distribution<>(1 / mean)(m_chance); }

    /// Advances the clock, with a check after each deadline.
    void pass(double seconds) {
        const double end = now() + seconds;
        while (now() < end && !testing::Test::HasFailure()) {
            const double due = m_machine.runLoop.nextDeadline().value_or(end);
            m_machine.runLoop.advance(std::max(std::min(due, end) - now(), 0.0) + instant);
            check();
        }
    }

    void doSomething() {
        switch (std::uniform_int_distribution<>(0, 10)(m_chance)) {
        case 0:
            stopScreens();
            break;
        case 1:
            m_freeze->stop();
            break;
        case 2:
            setScreen(std::nullopt);
            break;
        case 3:
            setScreen(Rect{.x = 0, .y = 0, .width = 1024, .height = 600});
            break;
        case 4:
        case 5:
            startScreens();
            break;
        case 6:
            m_machine.runLoop.sleep(exponential(5));
            break;
        case 7:
            m_machine.runLoop.setDate(m_machine.runLoop.currentDate() +
                                      std::uniform_real_distribution<>(-20, 20)(m_chance));
            break;
        case 8:
            m_machine.runLoop.block(exponential(10));
            m_machine.runLoop.advance(0);
            break;
        default:
            startFreezes();
            break;
        }
    }

    void setScreen(std::optional<Rect> frame) {
        m_machine.screens.setMainScreen(frame);
        m_hasScreen = frame.has_value();
        // After a freeze without a screen there is no other one until the effect is started again.
        m_freezesMayEnd = m_freezesMayEnd || !m_hasScreen;
    }

    void startScreens() {
        if (!m_bsod->isActive())
            m_started = now();
        m_bsod->start();
        if (!m_due)
            m_due = m_started + 15;
    }

    void stopScreens() {
        m_bsod->stop();
        m_due.reset();
    }

    void startFreezes() {
        if (!m_freeze->isActive()) {
            m_lastFreeze = now();
            m_freezesMayEnd = !m_hasScreen;
        }
        m_freeze->start();
    }

    void checkProgress() const {
        EXPECT_GE(m_bsod->progress(), 0.0);
        EXPECT_LE(m_bsod->progress(), 1.0);
    }

    void check() {
        checkProgress();
        checkPromise();
        checkShown();
        EXPECT_TRUE(m_freezesMayEnd || !m_freeze->isActive() || now() - m_lastFreeze < 40.001)
            << "no freeze for " << now() - m_lastFreeze << " s";
    }

    /// A stop screen every 15 s from the start on; those that are missed while the main thread is
    /// blocked come as one, as soon as it goes on.
    void checkPromise() {
        if (m_due && now() >= *m_due) {
            m_promised += m_hasScreen ? 1 : 0;
            m_screenWasThere = m_hasScreen;
            m_due = m_started + 15 * (std::floor((now() - m_started) / 15) + 1);
        }
        const auto& panels = m_machine.screens.panels();
        for (; m_counted < panels.size(); ++m_counted)
            m_stopScreens += isStopScreen(*panels[m_counted]) ? 1 : 0;
        EXPECT_EQ(m_stopScreens, m_promised) << "at " << now();
    }

    void checkShown() {
        std::size_t stopScreens = 0;
        std::size_t freezes = 0;
        std::map<std::shared_ptr<SimulatedPanel>, double> shown;
        for (const auto& panel : m_machine.screens.shownPanels()) {
            const auto known = m_shown.find(panel);
            shown[panel] = known == m_shown.end() ? now() : known->second;
            checkTime(*panel, now() - shown[panel]);
            ++(isStopScreen(*panel) ? stopScreens : freezes);
        }
        m_shown = std::move(shown);
        EXPECT_EQ(stopScreens, m_bsod->isShowing() && m_screenWasThere ? 1U : 0U) << "at " << now();
        EXPECT_TRUE(m_bsod->isActive() || !m_bsod->isShowing());
        EXPECT_LE(freezes, m_freeze->isActive() ? 1U : 0U);
        if (freezes > 0 || m_wasFrozen)
            m_lastFreeze = now();
        m_wasFrozen = freezes > 0;
    }

    static void checkTime(const SimulatedPanel& panel, double upFor) {
        if (isStopScreen(panel)) {
            EXPECT_EQ(panel.timeLimit, 5);
            EXPECT_LT(upFor, 5.02) << "it ends with a tick of the progress";
            return;
        }
        EXPECT_GE(panel.timeLimit, 3);
        EXPECT_LE(panel.timeLimit, 4);
        EXPECT_LT(upFor, panel.timeLimit + 0.001);
    }

    // Longer than the rounding of times.
    static constexpr double instant = 1e-6;

    std::mt19937_64 m_chance;
    SimulatedMachine m_machine;
    std::shared_ptr<BSODManager> m_bsod = BSODManager::create(m_machine.platform());
    std::shared_ptr<FreezeManager> m_freeze = FreezeManager::create(m_machine.platform());
    Subscription m_bsodMoved;
    bool m_hasScreen = true;
    // When the stop screens were started, and when the next one is due.
    double m_started = 0;
    std::optional<double> m_due;
    bool m_screenWasThere = false;
    std::size_t m_promised = 0;
    std::size_t m_stopScreens = 0;
    // Number of panels counted so far.
    std::size_t m_counted = 0;
    // When the last freeze ended, or the freezes were started.
    double m_lastFreeze = 0;
    bool m_wasFrozen = false;
    bool m_freezesMayEnd = false;
    // When each shown panel was first seen.
    std::map<std::shared_ptr<SimulatedPanel>, double> m_shown;
};

/// A number from the environment, so that a longer soak or a failed seed needs no rebuilding.
std::uint64_t setting(const char* name, std::uint64_t otherwise) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

TEST(CrashSoak, ADayAndANight) {
    const std::uint64_t seed = setting("QUORVANE_SOAK_SEED", std::random_device{}());
    const std::uint64_t hours = setting("QUORVANE_SOAK_HOURS", 24);
    std::cout << "QUORVANE_SOAK_SEED=" << seed << '\n';
    Soak soak(seed);
    soak.run(static_cast<double>(hours) * hour);
    EXPECT_GT(soak.stopScreensShown(), 50 * hours);
}

TEST(CrashSoak, AThousandTimesTenMinutes) {
    const std::uint64_t first = setting("QUORVANE_SOAK_SEED", std::random_device{}());
    const std::uint64_t runs = setting("QUORVANE_SOAK_RUNS", 1000);
    for (std::uint64_t seed = first; seed < first + runs && !HasFailure(); ++seed) {
        SCOPED_TRACE("QUORVANE_SOAK_SEED=" + std::to_string(seed));
        Soak(seed).run(10 * minute);
    }
    std::cout << "QUORVANE_SOAK_SEED=" << first << '\n';
}

} // namespace
} // namespace quorvane
