"""Private message buses."""

import os
import subprocess

import dbus
import dbus.bus

from . import processes

_CONFIG = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
    <allow user="*"/>
  </policy>
</busconfig>
"""


class Bus:
    """A message bus without service activation."""

    def __init__(self, env, directory, name, stack):
        self._env = env
        socket = os.path.join(directory, f"{name}-bus")
        config = f"{socket}.conf"
        with open(config, "w", encoding="utf-8") as file:
            file.write(_CONFIG.format(socket=socket))
        daemon = processes.Server(
            ["dbus-daemon", f"--config-file={config}", "--nofork", "--nopidfile",
             "--nosyslog", "--print-address=1"],
            env, stack, stdout=subprocess.PIPE)
        self.pid = daemon.process.pid
        self.address = daemon.process.stdout.readline().decode().strip()
        if not self.address:
            raise daemon.failure(f"the {name} bus has no address")

    def is_listened_to(self, member):
        """Whether any connection has a match rule for the signals of this name."""
        connection = dbus.bus.BusConnection(self.address)
        try:
            daemon = connection.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                           introspect=False)
            rules = daemon.GetAllMatchRules(dbus_interface="org.freedesktop.DBus.Debug.Stats")
            return any(f"member='{member}'" in rule for own in rules.values() for rule in own)
        finally:
            connection.close()


class AccessibilityBus:
    """The accessibility bus of a session: its launcher, the bus and, once needed, its registry."""

    LAUNCHER = "/usr/libexec/at-spi-bus-launcher"

    def __init__(self, env, session_address, stack, **popen_options):
        self._session_address = session_address
        launcher = processes.Server(
            [self.LAUNCHER, "--launch-immediately"],
            dict(env, DBUS_SESSION_BUS_ADDRESS=session_address, GSETTINGS_BACKEND="memory"), stack,
            **popen_options)
        self.address = launcher.wait_until(self._ask_for_address, "the accessibility bus")

    def _ask_for_address(self):
        connection = dbus.bus.BusConnection(self._session_address)
        try:
            bus = connection.get_object("org.a11y.Bus", "/org/a11y/bus", introspect=False)
            return str(bus.GetAddress(dbus_interface="org.a11y.Bus"))
        except dbus.DBusException:
            return None
        finally:
            connection.close()


class Services:
    """The fakes of services.py on a bus, in a process of their own."""

    def __init__(self, env, bus, stack, names=("login", "power")):
        self._process = processes.start_script(
            os.path.join(os.path.dirname(__file__), "services.py"), bus.address, *names,
            env=env, stack=stack)

    def _send(self, command):
        self._process.stdin.write(f"{command}\n".encode())
        self._process.stdin.flush()
        if self._process.stdout.readline() != b"done\n":
            raise RuntimeError(f"the fake services did not obey '{command}'")

    def close_lid(self):
        self._send("lid closed")

    def open_lid(self):
        self._send("lid open")

    def repeat_lid(self):
        """Announces the lid's state again although it has not changed."""
        self._send("lid same")

    def ask_for_less_motion(self):
        self._send("motion reduced")

    def ask_for_usual_motion(self):
        self._send("motion usual")

    def prepare_for_sleep(self):
        self._send("sleep")

    def wake_up(self):
        self._send("wake")

    def sleep_and_wake(self):
        self.prepare_for_sleep()
        self.wake_up()

    def lock(self, session=""):
        """Locks the caller's session, or this one."""
        self._send(f"lock {session}".strip())

    def unlock(self, session=""):
        """Unlocks what lock() has locked."""
        self._send(f"unlock {session}".strip())
