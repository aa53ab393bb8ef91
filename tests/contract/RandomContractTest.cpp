#include <array>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <set>

#include "platform/linux/system/LinuxRandom.h"
#include "platform/macos/MacRandom.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/contract/Contract.h"

namespace quorvane {

namespace {

using RandomContract = Contract<Random>;

TEST_P(RandomContract, ABoundOfZeroLeavesOnlyZero) {
    for (int draw = 0; draw < 100; ++draw)
        EXPECT_EQ(m_backend->uniform(0), 0U);
}

TEST_P(RandomContract, BothEndsAreDrawnAndNothingBeyond) {
    std::set<std::uint64_t> seen;
    for (int draw = 0; draw < 1000; ++draw)
        seen.insert(m_backend->uniform(4));
    EXPECT_EQ(seen, (std::set<std::uint64_t>{0, 1, 2, 3, 4}));
}

TEST_P(RandomContract, EveryNumberIsEquallyLikely) {
    // One more than a power of two, where a biased generator is most uneven.
    constexpr std::size_t kinds = 5;
    constexpr int draws = 50'000;
    std::array<int, kinds> counts{};
    for (int draw = 0; draw < draws; ++draw)
        ++counts.at(m_backend->uniform(kinds - 1));
    const double mean = static_cast<double>(draws) / kinds;
    // Seven standard deviations: a fair generator misses them once in 10^11 runs.
    const double slack = 7 * std::sqrt(mean * (1.0 - 1.0 / kinds));
    for (const int count : counts)
        EXPECT_NEAR(count, mean, slack);
}

TEST_P(RandomContract, LargeBoundsAreUnbiasedToo) {
    // 64 bits modulo 3 * 2^62 would give the lowest third twice the share of each other third.
    constexpr std::uint64_t third = std::uint64_t{1} << 62U;
    constexpr int draws = 30'000;
    std::array<int, 3> counts{};
    for (int draw = 0; draw < draws; ++draw)
        ++counts.at(m_backend->uniform(3 * third - 1) / third);
    const double mean = draws / 3.0;
    const double slack = 7 * std::sqrt(mean * 2.0 / 3.0);
    for (const int count : counts)
        EXPECT_NEAR(count, mean, slack);
}

TEST_P(RandomContract, TheLargestBoundUsesAllBits) {
    std::uint64_t ones = 0;
    std::uint64_t zeros = 0;
    for (int draw = 0; draw < 200; ++draw) {
        const std::uint64_t value = m_backend->uniform(std::numeric_limits<std::uint64_t>::max());
        ones |= value;
        zeros |= ~value;
    }
    EXPECT_EQ(ones, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(zeros, std::numeric_limits<std::uint64_t>::max());
}

INSTANTIATE_TEST_SUITE_P(Simulated, RandomContract, on<SimulatedRandom>());
INSTANTIATE_TEST_SUITE_P(Linux, RandomContract, on<LinuxRandom>());
INSTANTIATE_TEST_SUITE_P(Mac, RandomContract, on<MacRandom>());

} // namespace

} // namespace quorvane
