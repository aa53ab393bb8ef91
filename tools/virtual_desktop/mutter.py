"""Mutter, the compositor of GNOME, without a screen."""

import glob
import json
import os
import subprocess
import threading

import dbus
import dbus.bus
import numpy

from . import processes
from .waiting import wait_until

_LEFT_BUTTON = 0x110
_SHIFT = 42
_REMOTE = "org.gnome.Mutter.RemoteDesktop"
_CAST = "org.gnome.Mutter.ScreenCast"
_HIDDEN_CURSOR = 0


class Mutter:
    """A Mutter and its Xwayland on the session bus of `env`, until `stack` is closed.

    The outputs are side by side; each has `size` in pixels. Pictures of them come through a
    PipeWire of its own.
    """

    def __init__(self, env, stack, size=(1280, 800), outputs=1):
        self._size = size
        self._env = {name: value for name, value in env.items() if name != "DISPLAY"} | {
            "LIBGL_ALWAYS_SOFTWARE": "1", "GSETTINGS_BACKEND": "memory"}
        runtime = env["XDG_RUNTIME_DIR"]
        self._start_pipewire(runtime, stack)
        server = processes.Server(
            ["mutter", "--headless", "--wayland-display", "mutter",
             *[f"--virtual-monitor={size[0]}x{size[1]}"] * outputs], self._env, stack)
        # The line comes after that about X11.
        server.wait_until(lambda: _after(server.log, "Using Wayland display name "), "the display")
        display = _after(server.log, "Using public X11 display ").split(",")[0]
        authority, = glob.glob(os.path.join(runtime, ".mutter-Xwaylandauth.*"))
        self.environment = {"DISPLAY": display, "XAUTHORITY": authority,
                            "WAYLAND_DISPLAY": os.path.join(runtime, "mutter")}
        """The variables by which a program connects to it."""
        self._connection = dbus.bus.BusConnection(env["DBUS_SESSION_BUS_ADDRESS"])
        stack.callback(self._connection.close)
        server.wait_until(lambda: all(map(self._connection.name_has_owner, (_REMOTE, _CAST))),
                          "its services")
        remote = self._session(_REMOTE)
        self.input = MutterInput(dbus.Interface(remote, f"{_REMOTE}.Session"))
        self._pictures = self._cast(remote, outputs, stack)

    def _start_pipewire(self, runtime, stack):
        server = processes.Server(["pipewire"], self._env, stack)
        server.wait_until(lambda: os.path.exists(os.path.join(runtime, "pipewire-0")), "its socket")
        processes.Server(["wireplumber"], self._env, stack)

    def _session(self, name, *arguments):
        path = self._get(name, "/" + name.replace(".", "/")).CreateSession(
            *arguments, dbus_interface=name)
        return self._get(name, path)

    def _get(self, name, path):
        return self._connection.get_object(name, path, introspect=False)

    def _cast(self, remote, outputs, stack):
        """Starts both sessions, the second one with a stream of pictures for each output."""
        number = remote.Get(f"{_REMOTE}.Session", "SessionId", dbus_interface=dbus.PROPERTIES_IFACE)
        session = self._session(_CAST, dbus.Dictionary({"remote-desktop-session-id": number},
                                                       signature="sv"))
        options = dbus.Dictionary({"cursor-mode": dbus.UInt32(_HIDDEN_CURSOR)}, signature="sv")
        for output in range(outputs):
            session.RecordMonitor(f"Meta-{output}", options, dbus_interface=f"{_CAST}.Session")
        self.input.start()
        numbers = wait_until(lambda: self._find_streams(outputs), "the streams of the outputs")
        return [_Pictures(number, self._size, self._env, stack) for number in numbers]

    def _find_streams(self, count):
        """The numbers of the streams, in the order of the outputs; None as long as some miss."""
        dump = subprocess.run(["pw-dump", "Node"], env=self._env, check=True, capture_output=True,
                              timeout=20).stdout
        properties = [node["info"]["props"] for node in json.loads(dump)]
        numbers = sorted(each["object.serial"] for each in properties
                         if each.get("node.name") == "mutter")
        return numbers if len(numbers) == count else None

    def capture(self, output=0):
        """What is on an output, as an array of height x width x 3 bytes."""
        return self._pictures[output].latest()


class _Pictures:
    """Reads the pictures of an output, which come when something changes, in a thread."""

    def __init__(self, number, size, env, stack):
        self._size = size
        process = processes.start(
            ["gst-launch-1.0", "-q", "pipewiresrc", f"target-object={number}", "always-copy=true",
             "!", "video/x-raw,format=BGRx,max-framerate=10/1", "!", "fdsink"], env, stack,
            stdout=subprocess.PIPE)
        self._pipe = process.stdout
        self._latest = None
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        size = self._size[0] * self._size[1] * 4
        while len(picture := self._pipe.read(size)) == size:
            self._latest = picture

    def latest(self):
        """The last one; waits for the first."""
        wait_until(lambda: self._latest, "a picture of the output")
        width, height = self._size
        pixels = numpy.frombuffer(self._latest, dtype=numpy.uint8)
        return pixels.reshape(height, width, 4)[:, :, 2::-1]


def _after(lines, text):
    """What a line that has `text` in it has after it; else empty."""
    return next((line.partition(text)[2] for line in lines.text if text in line), "")


class MutterInput:
    """Mouse and keyboard of a session for remote control."""

    def __init__(self, session):
        self._session = session

    def start(self):
        """Starts the session, and makes its devices by their first use."""
        self._session.Start()
        self._move_to(0, 0)
        self.press_key(_SHIFT)

    def _move_to(self, x, y):
        for step in (-10000, -10000), (x, y):
            self._session.NotifyPointerMotionRelative(*map(dbus.Double, step))

    def click(self, x, y):
        """Moves the pointer to a place, in the compositor's units, and clicks the first button."""
        self._move_to(x, y)
        for pressed in (True, False):
            self._session.NotifyPointerButton(dbus.Int32(_LEFT_BUTTON), dbus.Boolean(pressed))

    def press_key(self, code):
        """Presses and releases a key, by the kernel's number."""
        for pressed in (True, False):
            self._session.NotifyKeyboardKeycode(dbus.UInt32(code), dbus.Boolean(pressed))
