#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <thread>

namespace quorvane {

using namespace std::chrono_literals;

/// Lets `time` pass, with the Qt event loop running where there is a Qt application.
inline void waitFor(std::chrono::milliseconds time) {
    if (!QCoreApplication::instance()) {
        std::this_thread::sleep_for(time);
        return;
    }
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Waits, as `waitFor` does, until `condition` holds or `timeout` is over; returns whether it held.
template <typename Condition>
bool waitUntil(const Condition& condition, std::chrono::milliseconds timeout = 20s) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        waitFor(5ms);
    }
    return true;
}

} // namespace quorvane
