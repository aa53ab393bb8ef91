#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
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

/// Both effects on one machine for a while, switched on and off at random, with a screen that comes
/// and goes. The seed repeats the run.
class Soak {
public:
    explicit Soak(std::uint64_t seed) : m_chance(seed) {
        m_machine.random.reseed(seed);
        m_bsodMoved = m_bsod->progress().observe([this] { checkProgress(); });
    }

    void run(double seconds) {
        const double end = m_machine.runLoop.currentMediaTime() + seconds;
        while (m_machine.runLoop.currentMediaTime() < end && !testing::Test::HasFailure()) {
            m_machine.runLoop.advance(std::exponential_distribution<>(1.0 / 5)(m_chance));
            check();
            doSomething();
            check();
        }
        m_bsod->stop();
        m_freeze->stop();
        EXPECT_TRUE(m_machine.screens.shownPanels().empty()) << "a panel outlived both effects";
        // What cannot be cancelled ends by itself.
        m_machine.runLoop.advance(hour);
        EXPECT_EQ(m_machine.runLoop.pendingCount(), 0U);
        EXPECT_TRUE(m_machine.screens.shownPanels().empty());
    }

private:
    void doSomething() {
        switch (std::uniform_int_distribution<>(0, 7)(m_chance)) {
        case 0:
            m_bsod->stop();
            break;
        case 1:
            m_freeze->stop();
            break;
        case 2:
            m_machine.screens.setMainScreen(std::nullopt);
            break;
        case 3:
            m_machine.screens.setMainScreen(Rect{.x = 0, .y = 0, .width = 1024, .height = 600});
            break;
        case 4:
        case 5:
            m_bsod->start();
            break;
        default:
            m_freeze->start();
            break;
        }
    }

    void checkProgress() const {
        EXPECT_GE(m_bsod->progress(), 0.0);
        EXPECT_LE(m_bsod->progress(), 1.0);
    }

    void check() const {
        std::size_t stopScreens = 0;
        std::size_t freezes = 0;
        for (const auto& panel : m_machine.screens.shownPanels())
            ++(dynamic_cast<const BSODView*>(panel->view.get()) ? stopScreens : freezes);
        EXPECT_LE(stopScreens, m_bsod->isShowing() ? 1U : 0U);
        EXPECT_TRUE(m_bsod->isActive() || !m_bsod->isShowing());
        EXPECT_LE(freezes, m_freeze->isActive() ? 1U : 0U);
        checkProgress();
    }

    std::mt19937_64 m_chance;
    SimulatedMachine m_machine;
    std::shared_ptr<BSODManager> m_bsod = BSODManager::create(m_machine.platform());
    std::shared_ptr<FreezeManager> m_freeze = FreezeManager::create(m_machine.platform());
    Subscription m_bsodMoved;
};

/// A number from the environment, so that a longer soak or a failed seed needs no rebuilding.
std::uint64_t setting(const char* name, std::uint64_t otherwise) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value ? std::strtoull(value, nullptr, 10) : otherwise;
}

TEST(CrashSoak, a_day_and_a_night) {
    const std::uint64_t seed = setting("QUORVANE_SOAK_SEED", std::random_device{}());
    const std::uint64_t hours = setting("QUORVANE_SOAK_HOURS", 24);
    std::cout << "QUORVANE_SOAK_SEED=" << seed << '\n';
    Soak(seed).run(static_cast<double>(hours) * hour);
}

TEST(CrashSoak, a_thousand_times_ten_minutes) {
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
