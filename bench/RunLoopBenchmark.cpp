// How well the run loop keeps time, compared with Qt's precise timer: the mean error of the period
// and the 99th percentile of its jitter over ten seconds, at the rates the program uses.

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "bench/Row.h"
#include "platform/linux/system/LinuxRunLoop.h"

namespace quorvane {
namespace {

constexpr double seconds = 10;

struct Figures {
    double meanErrorPercent = 0;
    double jitterMicroseconds = 0;
};

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Starts a timer that calls the block, and returns what stops it.
using StartTimer = std::function<std::function<void()>(std::function<void()>)>;

/// Collects the instants at which a timer of `rate` Hz fires in ten seconds.
Figures measure(int rate, const StartTimer& startTimer) {
    const auto count = static_cast<std::size_t>(seconds * rate) + 1;
    std::vector<double> instants;
    instants.reserve(count);
    QEventLoop loop;
    const auto stop = startTimer([&] {
        instants.push_back(now());
        if (instants.size() == count)
            loop.quit();
    });
    loop.exec();
    stop();
    const double meanPeriod = (instants.back() - instants.front()) / static_cast<double>(count - 1);
    std::vector<double> jitter;
    for (std::size_t i = 1; i < count; ++i)
        jitter.push_back(std::abs(instants[i] - instants[i - 1] - meanPeriod));
    std::sort(jitter.begin(), jitter.end());
    return {.meanErrorPercent = std::abs(meanPeriod * rate - 1) * 100,
            .jitterMicroseconds = jitter[jitter.size() * 99 / 100] * 1e6};
}

Figures measureRunLoop(int rate) {
    LinuxRunLoop runLoop;
    return measure(rate, [&](std::function<void()> block) {
        const auto timer = runLoop.scheduledTimer(1.0 / rate, true,
                                                  [block = std::move(block)](Timer&) { block(); });
        return [timer] { timer->invalidate(); };
    });
}

Figures measurePreciseQTimer(int rate) {
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    return measure(rate, [&](std::function<void()> block) {
        QObject::connect(&timer, &QTimer::timeout, std::move(block));
        timer.start(std::chrono::milliseconds(std::lround(1000.0 / rate)));
        return [&timer] { timer.stop(); };
    });
}

} // namespace
} // namespace quorvane

int main(int argc, char** argv) {
    using namespace quorvane;
    const QCoreApplication application(argc, argv);
    for (const int rate : {20, 30, 60}) {
        const Figures ours = measureRunLoop(rate);
        const Figures qt = measurePreciseQTimer(rate);
        const std::string timer = "timer at " + std::to_string(rate) + " Hz: ";
        printRow((timer + "mean error").c_str(), ours.meanErrorPercent, "QTimer, precise",
                 qt.meanErrorPercent, "%");
        printRow((timer + "jitter, 99th percentile").c_str(), ours.jitterMicroseconds,
                 "QTimer, precise", qt.jitterMicroseconds, "us");
    }
}
