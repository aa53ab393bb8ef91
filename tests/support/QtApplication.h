#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace quorvane {

/// A Qt event loop for one test.
class QtApplication {
public:
    /// Runs the event loop until `condition` holds, for `milliseconds` at most; whether it held.
    template <typename Condition>
    static bool runUntil(const Condition& condition, int milliseconds = 10'000) {
        const QDeadlineTimer deadline(milliseconds);
        // Wakes the event loop now and then to look at the condition.
        QTimer tick;
        tick.start(5);
        while (!condition()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        return true;
    }

    static void runFor(int milliseconds) {
        runUntil([] { return false; }, milliseconds);
    }

private:
    int m_argumentCount = 1;
    char m_name[5] = "test";                  // NOLINT(modernize-avoid-c-arrays): what Qt asks for.
    char* m_arguments[2] = {m_name, nullptr}; // NOLINT(modernize-avoid-c-arrays): the same.
    QCoreApplication m_application{m_argumentCount, m_arguments};
};

} // namespace quorvane
