"""A Wayland compositor without a screen, and an X server within it."""

import glob
import json
import os
import pwd
import shutil
import subprocess
import tempfile

import numpy

from . import processes
from .waiting import wait_until

_CONFIGURATION = """output * mode {width}x{height} position 0 0
default_border none
xwayland force
exec xhost +si:localuser:{client} && echo "$DISPLAY $WAYLAND_DISPLAY" > "$XDG_RUNTIME_DIR/ready"
"""


class WaylandDisplay:
    """A sway and its Xwayland, for as long as `stack` is open.

    It refuses to run as root. There it runs as nobody, and so do the windows of `start`.
    """

    def __init__(self, stack, width=1280, height=800):
        directory = tempfile.mkdtemp(prefix="quorvane-wayland-")
        stack.callback(shutil.rmtree, directory, ignore_errors=True)
        self._as_user = []
        if os.getuid() == 0:
            user = pwd.getpwnam("nobody")
            os.chown(directory, user.pw_uid, user.pw_gid)
            # A change of user makes the kernel forget that the process is to end with its parent.
            self._as_user = ["setpriv", f"--reuid={user.pw_uid}", f"--regid={user.pw_gid}",
                             "--clear-groups", "--pdeathsig=TERM"]
        self._directory = directory
        self._env = {
            "PATH": "/usr/local/bin:/usr/bin:/bin", "LANG": "C.UTF-8", "HOME": directory,
            "XDG_RUNTIME_DIR": directory, "WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman",
            "WLR_LIBINPUT_NO_DEVICES": "1"}
        configuration = os.path.join(directory, "configuration")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(_CONFIGURATION.format(width=width, height=height,
                                             client=pwd.getpwuid(os.getuid()).pw_name))
        self.start(["sway", "-c", configuration], stack)
        display, socket = wait_until(self._ready, "the compositor", 20).split()
        control, = glob.glob(os.path.join(directory, "sway-ipc.*.sock"))
        self._env |= {"WAYLAND_DISPLAY": socket, "SWAYSOCK": control}
        self.environment = {"DISPLAY": display,
                            "WAYLAND_DISPLAY": os.path.join(directory, socket)}
        """What a program needs to find it."""

    def _ready(self):
        try:
            with open(os.path.join(self._directory, "ready"), encoding="utf-8") as file:
                answer = file.read()
        except FileNotFoundError:
            return None
        return answer if answer.endswith("\n") else None

    def start(self, command, stack):
        """Starts one of its own programs, which is ended when `stack` is closed."""
        processes.start([*self._as_user, *command], self._env, stack, cwd=self._directory,
                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def capture(self):
        """What is on the screen, as an array of height x width x 3 bytes."""
        picture = subprocess.run(["grim", "-t", "ppm", "-"], env=self._env, check=True,
                                 capture_output=True, timeout=20).stdout
        magic, width, height, depth = picture.split(maxsplit=4)[:4]
        if (magic, depth) != (b"P6", b"255"):
            raise RuntimeError("this is no picture of 24-bit colours")
        width, height = int(width), int(height)
        pixels = numpy.frombuffer(picture[-width * height * 3:], dtype=numpy.uint8)
        return pixels.reshape(height, width, 3)

    def focused(self):
        """The id, in the compositor's own numbering, of what has the keyboard."""
        tree = subprocess.run(["swaymsg", "-r", "-t", "get_tree"], env=self._env, check=True,
                              capture_output=True, timeout=20).stdout
        nodes = [json.loads(tree)]
        while nodes:
            node = nodes.pop()
            if node["focused"]:
                return node["id"]
            nodes += node["nodes"] + node["floating_nodes"]
        return None
