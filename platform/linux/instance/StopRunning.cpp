#include "platform/linux/instance/StopRunning.h"

#include <chrono>
#include <csignal>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/instance/BusName.h"
#include "platform/linux/instance/InstanceLock.h"
#include "platform/linux/instance/SessionBus.h"

namespace quorvane {

namespace {

using namespace std::chrono_literals;

bool isOwn(pid_t process) {
    struct stat status {};

    return process > 0 && stat(("/proc/" + std::to_string(process)).c_str(), &status) == 0 &&
           status.st_uid == geteuid();
}

struct Running {
    /// 0: none.
    pid_t process = 0;
    bool isOnBus = false;

    bool operator==(const Running&) const = default;
};

Running findRunning(SessionBus& bus) {
    const auto named =
        static_cast<pid_t>(numberIn(bus.askDaemon("GetConnectionUnixProcessID", "s", busName)));
    if (isOwn(named))
        return {.process = named, .isOnBus = true};
    const pid_t holder = InstanceLock::holder();
    return {.process = isOwn(holder) ? holder : 0};
}

/// `process` is a pidfd, which becomes readable with the end of the process.
bool endsWithin(std::chrono::milliseconds time, const FileDescriptor& process) {
    pollfd polled{.fd = process.get(), .events = POLLIN, .revents = 0};
    return poll(&polled, 1, static_cast<int>(time.count())) > 0;
}

bool endsBySignal(int signal, const FileDescriptor& process) {
    syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0);
    return endsWithin(1s, process);
}

bool endsWhenAsked(SessionBus& bus, const FileDescriptor& process) {
    const BusMessage call =
        bus.call(busName, busPath, busInterface, "ActivateAction", "sava{sv}", stopAction, 0, 0);
    return call && sd_bus_send(bus.get(), call.get(), nullptr) >= 0 && endsWithin(500ms, process);
}

} // namespace

StopResult stopRunning() {
    SessionBus bus;
    const Running running = findRunning(bus);
    if (running.process == 0)
        return StopResult::NothingRuns;
    const FileDescriptor process(static_cast<int>(syscall(SYS_pidfd_open, running.process, 0)));
    // It may have ended, and its number may have gone to another process, before the pidfd was
    // open.
    if (findRunning(bus) != running)
        return StopResult::Stopped;
    const bool hasEnded = (running.isOnBus && endsWhenAsked(bus, process)) ||
                          endsBySignal(SIGTERM, process) || endsBySignal(SIGKILL, process);
    return hasEnded ? StopResult::Stopped : StopResult::Failed;
}

} // namespace quorvane
