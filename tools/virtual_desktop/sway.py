"""sway, a tiling compositor, without a screen."""

import glob
import os
import pwd
import shutil
import subprocess
import tempfile

import numpy

from . import processes
from .waiting import wait_until
from .wayland_input import WlrootsInput

_CONFIGURATION = """default_border none
xwayland {xwayland}
exec {admit} echo "$WAYLAND_DISPLAY $DISPLAY" > "$XDG_RUNTIME_DIR/ready"
"""


class Sway:
    """A sway and, unless `xwayland` is False, its Xwayland, until `stack` is closed.

    The outputs are side by side; each has `size` in pixels and one of the `scales`. sway refuses to
    run as root; for root it runs as the user nobody.
    """

    def __init__(self, stack, size=(1280, 800), scales=(1,), xwayland=True):
        self._directory = tempfile.mkdtemp(prefix="quorvane-wayland-")
        stack.callback(shutil.rmtree, self._directory, ignore_errors=True)
        as_user = []
        if os.getuid() == 0:
            user = pwd.getpwnam("nobody")
            os.chown(self._directory, user.pw_uid, user.pw_gid)
            # Changing the user resets the parent-death signal.
            as_user = ["setpriv", f"--reuid={user.pw_uid}", f"--regid={user.pw_gid}",
                       "--clear-groups", "--pdeathsig=TERM"]
        self._env = {
            "PATH": "/usr/local/bin:/usr/bin:/bin", "LANG": "C.UTF-8", "HOME": self._directory,
            "XDG_RUNTIME_DIR": self._directory, "WLR_BACKENDS": "headless",
            "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1",
            "WLR_HEADLESS_OUTPUTS": str(len(scales))}
        configuration = os.path.join(self._directory, "configuration")
        with open(configuration, "w", encoding="utf-8") as file:
            client = pwd.getpwuid(os.getuid()).pw_name
            file.write(_CONFIGURATION.format(
                xwayland="force" if xwayland else "disable",
                admit=f"xhost +si:localuser:{client} &&" if xwayland else ""))
            file.writelines(_placed(size, scales))
        processes.start([*as_user, "sway", "-c", configuration], self._env, stack,
                        cwd=self._directory, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        socket, *display = wait_until(self._ready, "the compositor", 20).split()
        control, = glob.glob(os.path.join(self._directory, "sway-ipc.*.sock"))
        self._env |= {"WAYLAND_DISPLAY": socket, "SWAYSOCK": control}
        socket = os.path.join(self._directory, socket)
        self.environment = {"DISPLAY": "".join(display), "WAYLAND_DISPLAY": socket}
        """The variables by which a program connects to it."""
        desktop = sum(size[0] // scale for scale in scales), size[1] // min(scales)
        self.input = WlrootsInput(socket, desktop, stack)

    def _ready(self):
        try:
            with open(os.path.join(self._directory, "ready"), encoding="utf-8") as file:
                answer = file.read()
        except FileNotFoundError:
            return None
        return answer if answer.endswith("\n") else None

    def capture(self, output=0):
        """What is on an output, as an array of height x width x 3 bytes."""
        picture = subprocess.run(["grim", "-o", f"HEADLESS-{output + 1}", "-t", "ppm", "-"],
                                 env=self._env, check=True, capture_output=True, timeout=20).stdout
        magic, width, height, depth = picture.split(maxsplit=4)[:4]
        if (magic, depth) != (b"P6", b"255"):
            raise RuntimeError("grim wrote no PPM of 24-bit colours")
        width, height = int(width), int(height)
        pixels = numpy.frombuffer(picture[-width * height * 3:], dtype=numpy.uint8)
        return pixels.reshape(height, width, 3)


def _placed(size, scales):
    """The lines of the configuration that place the outputs."""
    left = 0
    for number, scale in enumerate(scales, start=1):
        yield (f"output HEADLESS-{number} mode {size[0]}x{size[1]} scale {scale} "
               f"position {left} 0\n")
        left += size[0] // scale
