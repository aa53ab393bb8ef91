#include "tests/support/PrivateBus.h"

#include <stdexcept>
#include <vector>

namespace quorvane {

namespace {

std::string configuration(const std::string& address, const std::string& services) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>)" +
           address + R"(</listen>
  )" + services +
           R"(
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

std::filesystem::path PrivateBus::writeConfiguration(const std::filesystem::path& services) {
    return m_folder.write(
        "bus.conf", configuration(address(), services.empty() ? std::string()
                                                              : "<servicedir>" + services.string() +
                                                                    "</servicedir>"));
}

PrivateBus::PrivateBus(const std::filesystem::path& services)
    : m_configuration(writeConfiguration(services)) {
    restart();
}

void PrivateBus::restart() {
    m_daemon.emplace(std::vector<std::string>{"dbus-daemon", "--nofork", "--print-address=1",
                                              "--config-file=" + m_configuration.string()});
    // The address is printed once the bus takes connections.
    if (m_daemon->line().empty())
        throw std::runtime_error("no bus daemon");
}

std::string PrivateBus::address() const {
    return "unix:path=" + (m_folder.path() / "bus").string();
}

} // namespace quorvane
