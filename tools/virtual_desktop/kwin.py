"""KWin, the compositor of KDE, without a screen."""

import os
import shutil
import subprocess
import threading

import dbus
import dbus.bus
import numpy

from . import processes
from .wayland_input import KWinInput

_SCREENSHOTS = "org.kde.KWin.ScreenShot2"


class KWin:
    """A KWin and its Xwayland on the session bus of `env`, until `stack` is closed.

    The outputs are side by side; `size` is that of each in units of `scale` pixels.
    """

    def __init__(self, env, stack, size=(1280, 800), outputs=1, scale=1):
        self._bus_address = env["DBUS_SESSION_BUS_ADDRESS"]
        runtime = env["XDG_RUNTIME_DIR"]
        installed = shutil.which("kwin_wayland")
        if not installed:
            raise processes.NotStarted("kwin_wayland", "it is not installed")
        # The installed file has a capability, and where that may not be had it cannot be executed.
        program = os.path.join(runtime, "kwin_wayland")
        shutil.copyfile(installed, program)
        os.chmod(program, 0o700)
        own = {name: value for name, value in env.items() if name != "DISPLAY"} | {
            "LIBGL_ALWAYS_SOFTWARE": "1", "EGL_PLATFORM": "surfaceless", "KWIN_COMPOSE": "O2",
            "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1", "KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1"}
        self._let_xwayland_scale(env, scale)
        # KWin runs the last command when it is ready.
        ready = os.path.join(runtime, "kwin-ready")
        server = processes.Server(
            [program, "--virtual", "--width", str(size[0]), "--height", str(size[1]),
             "--output-count", str(outputs), "--scale", str(scale), "--xwayland", "--no-lockscreen",
             "--socket", "kwin", f"sh -c 'echo \"$DISPLAY\" >{ready}'"], own, stack)
        display = server.wait_until(lambda: _line(ready), "the compositor").strip()
        socket = os.path.join(runtime, "kwin")
        self.environment = {"DISPLAY": display, "WAYLAND_DISPLAY": socket}
        """The variables by which a program connects to it."""
        self.input = KWinInput(socket, stack)
        # As the desktop's own start does.
        subprocess.run(["xrdb", "-nocpp", "-merge", "-"], env=own | self.environment, check=True,
                       input=f"Xft.dpi: {96 * scale}\n".encode(), timeout=10)

    @staticmethod
    def _let_xwayland_scale(env, scale):
        """X11 programs scale themselves, as is usual with KDE; else KWin enlarges their pixels."""
        with open(os.path.join(env["XDG_CONFIG_HOME"], "kwinrc"), "w", encoding="utf-8") as file:
            file.write(f"[Xwayland]\nScale={scale}\n")

    def capture(self, output=0):
        """What is on an output, as an array of height x width x 3 bytes."""
        connection = dbus.bus.BusConnection(self._bus_address)
        read_end, write_end = os.pipe()
        data = []
        with os.fdopen(read_end, "rb") as pipe:
            reader = threading.Thread(target=lambda: data.append(pipe.read()))
            reader.start()
            try:
                screenshots = connection.get_object(_SCREENSHOTS, "/org/kde/KWin/ScreenShot2",
                                                    introspect=False)
                options = dbus.Dictionary({"native-resolution": True}, signature="sv")
                answer = screenshots.CaptureScreen(f"Virtual-{output}", options,
                                                   dbus.types.UnixFd(write_end),
                                                   dbus_interface=_SCREENSHOTS)
            finally:
                os.close(write_end)
                reader.join()
                connection.close()
        width, height, stride = (int(answer[key]) for key in ("width", "height", "stride"))
        rows = numpy.frombuffer(data[0], dtype=numpy.uint8).reshape(height, stride)
        return rows[:, :width * 4].reshape(height, width, 4)[:, :, 2::-1]


def _line(path):
    try:
        with open(path, encoding="utf-8") as file:
            text = file.read()
    except FileNotFoundError:
        return None
    return text if text.endswith("\n") else None
