"""A desktop session: everything in this package, started and connected."""

import contextlib
import os
import tempfile

from . import processes
from .buses import AccessibilityBus, Bus, Services
from .display import Display
from .program import Program
from .sound_server import SoundServer


class Session:
    """A display with a window manager, a session bus with accessibility, a sound server.

    A context manager: leaving it ends its processes and removes its files. A process can have one
    session in all, as its accessibility client can connect to one bus only. `recorder_latency` is
    SoundServer.record's.
    """

    def __init__(self, width=1280, height=1024, sound_server=SoundServer, recorder_latency=20):
        self._size = width, height
        self._sound_server = sound_server
        self._recorder_latency = recorder_latency
        self._stack = contextlib.ExitStack()

    def __enter__(self):
        try:
            self._build()
        except BaseException:
            self._stack.close()
            raise
        return self

    def __exit__(self, *_):
        self._stack.close()

    def _build(self):
        self.directory = self._stack.enter_context(
            tempfile.TemporaryDirectory(prefix="quorvane-desktop-", ignore_cleanup_errors=True))
        self._env = processes.base_environment(self.directory)
        self.display = Display(self._env, self._stack, *self._size)
        self.bus = Bus(self._env, self.directory, "session", self._stack)
        self._env["DISPLAY"] = self.display.name
        accessibility = AccessibilityBus(self._env, self.bus.address, self._stack)
        self.sound = self.sound_server("sound")
        self.sound.start(self._stack)
        self.recording = self.sound.record(self._stack, self._recorder_latency)
        # Atspi connects to the bus in this process's environment when it is loaded.
        from .accessibility import ScreenReader
        self.reader = ScreenReader(accessibility.address)

    def sound_server(self, name):
        """A sound server in its own folder, not started yet."""
        return self._sound_server(self._env, os.path.join(self.directory, name))

    def system_bus(self, name, stack):
        """A private system bus with nothing on it, until `stack` is closed."""
        return Bus(self._env, self.directory, name, stack)

    def settings_portal(self, stack):
        """A settings portal with animations off, until `stack` is closed."""
        return Services(self._env, self.bus, stack, ["portal"])

    def screen_saver(self, stack):
        """A screen saver that is not active, until `stack` is closed."""
        return Services(self._env, self.bus, stack, ["saver"])

    def environment(self, home):
        """A program's environment in this session, with its own home folder and no system bus."""
        environment = processes.base_environment(home)
        environment.update({
            "DISPLAY": self.display.name,
            "DBUS_SESSION_BUS_ADDRESS": self.bus.address,
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={home}/no-system-bus",
            "PULSE_SERVER": self.sound.address,
            # libpulse makes this file, in the home folder if it is not told where.
            "PULSE_COOKIE": os.path.join(self.directory, "pulse-cookie"),
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        })
        return environment

    def run(self, command, env, stack, **options):
        """Starts a program, which is ended when `stack` is closed; see Program for the options."""
        return Program(command, env, stack, **options)
