// How well the run loop keeps time, beside the toolkit's own precise timer: the mean error of the
// period and the 99th percentile of its jitter over ten seconds, at the rates the program uses.

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <functional>
#include <vector>

#include "platform/linux/LinuxRunLoop.h"

namespace quorvane {
namespace {

constexpr double seconds = 10;

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Lets `startTimer` begin to call its argument, collects the instants of ten seconds, and reports.
void measure(benchmark::State& state,
             const std::function<std::function<void()>(std::function<void()>)>& startTimer) {
    const auto rate = static_cast<double>(state.range(0));
    const auto count = static_cast<std::size_t>(seconds * rate) + 1;
    std::vector<double> instants;
    instants.reserve(count);
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): the library counts it
        QEventLoop loop;
        const auto stop = startTimer([&] {
            instants.push_back(now());
            if (instants.size() == count)
                loop.quit();
        });
        loop.exec();
        stop();
    }
    const double meanPeriod = (instants.back() - instants.front()) / static_cast<double>(count - 1);
    std::vector<double> jitter;
    for (std::size_t i = 1; i < count; ++i)
        jitter.push_back(std::abs(instants[i] - instants[i - 1] - meanPeriod));
    std::sort(jitter.begin(), jitter.end());
    state.counters["mean_error_percent"] = std::abs(meanPeriod * rate - 1) * 100;
    state.counters["jitter_p99_us"] = jitter[jitter.size() * 99 / 100] * 1e6;
}

void ownRunLoop(benchmark::State& state) {
    LinuxRunLoop runLoop;
    measure(state, [&](std::function<void()> block) {
        const auto timer = runLoop.scheduledTimer(1.0 / static_cast<double>(state.range(0)), true,
                                                  [block = std::move(block)](Timer&) { block(); });
        return [timer] { timer->invalidate(); };
    });
}

void preciseQTimer(benchmark::State& state) {
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    measure(state, [&](std::function<void()> block) {
        QObject::connect(&timer, &QTimer::timeout, std::move(block));
        timer.start(
            std::chrono::milliseconds(std::lround(1000.0 / static_cast<double>(state.range(0)))));
        return [&timer] { timer.stop(); };
    });
}

// Turn by turn, so that a noisy moment of the machine meets both.
BENCHMARK(ownRunLoop)->Arg(20)->Iterations(1);
BENCHMARK(preciseQTimer)->Arg(20)->Iterations(1);
BENCHMARK(ownRunLoop)->Arg(30)->Iterations(1);
BENCHMARK(preciseQTimer)->Arg(30)->Iterations(1);
BENCHMARK(ownRunLoop)->Arg(60)->Iterations(1);
BENCHMARK(preciseQTimer)->Arg(60)->Iterations(1);

} // namespace
} // namespace quorvane

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
}
