#include "platform/linux/system/TerminationSignals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <utility>

#include <QSocketNotifier>

#include "base/FatalError.h"

namespace quorvane {

namespace {

sigset_t terminationSignals() {
    sigset_t wanted;
    sigemptyset(&wanted);
    sigaddset(&wanted, SIGINT);
    sigaddset(&wanted, SIGTERM);
    return wanted;
}

} // namespace

TerminationSignals::TerminationSignals() {
    const sigset_t wanted = terminationSignals();
    // They stay blocked to the end, so that one during the exit changes nothing.
    pthread_sigmask(SIG_BLOCK, &wanted, nullptr);
    m_descriptor = FileDescriptor(signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!m_descriptor)
        fatalError("TerminationSignals: no signal descriptor: " +
                   std::string(std::strerror(errno)));
}

TerminationSignals::~TerminationSignals() = default;

void TerminationSignals::ignore() {
    m_notifier.reset();
}

void TerminationSignals::listen(std::function<void()> handler) {
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this, handler = std::move(handler)] {
                         signalfd_siginfo signal{};
                         while (read(m_descriptor.get(), &signal, sizeof signal) == sizeof signal)
                             handler();
                     });
}

} // namespace quorvane
