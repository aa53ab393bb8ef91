#include "tests/support/PrivateBus.h"

#include <stdexcept>

namespace quorvane {

namespace {

constexpr int patienceMilliseconds = 10'000;

std::string configuration(const std::string& address) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>)" +
           address + R"(</listen>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
)";
}

} // namespace

PrivateBus::PrivateBus() {
    const auto file = m_folder.write("bus.conf", configuration(address()));
    m_daemon.start("dbus-daemon", {"--nofork", "--print-address=1", "--config-file",
                                   QString::fromStdString(file.string())});
    // The address is printed once the bus takes connections.
    if (!m_daemon.waitForReadyRead(patienceMilliseconds))
        throw std::runtime_error("no bus daemon: " + m_daemon.readAllStandardError().toStdString());
}

PrivateBus::~PrivateBus() {
    stop();
}

std::string PrivateBus::address() const {
    return "unix:path=" + (m_folder.path() / "bus").string();
}

void PrivateBus::stop() {
    m_daemon.terminate();
    m_daemon.waitForFinished(patienceMilliseconds);
}

} // namespace quorvane
