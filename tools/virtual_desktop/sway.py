"""A headless Wayland compositor with Xwayland."""

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
    """A sway and its Xwayland, until `stack` is closed.

    sway refuses to run as root; for root it and the programs of `start` run as the user nobody.
    """

    def __init__(self, stack, width=1280, height=800):
        directory = tempfile.mkdtemp(prefix="quorvane-wayland-")
        stack.callback(shutil.rmtree, directory, ignore_errors=True)
        self._as_user = []
        if os.getuid() == 0:
            user = pwd.getpwnam("nobody")
            os.chown(directory, user.pw_uid, user.pw_gid)
            # Changing the user resets the parent-death signal.
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
        """The variables by which a program connects to it."""

    def _ready(self):
        try:
            with open(os.path.join(self._directory, "ready"), encoding="utf-8") as file:
                answer = file.read()
        except FileNotFoundError:
            return None
        return answer if answer.endswith("\n") else None

    def start(self, command, stack):
        """Starts a Wayland client, which is ended when `stack` is closed."""
        processes.start([*self._as_user, *command], self._env, stack, cwd=self._directory,
                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def capture(self):
        """What is on the screen, as an array of height x width x 3 bytes."""
        picture = subprocess.run(["grim", "-t", "ppm", "-"], env=self._env, check=True,
                                 capture_output=True, timeout=20).stdout
        magic, width, height, depth = picture.split(maxsplit=4)[:4]
        if (magic, depth) != (b"P6", b"255"):
            raise RuntimeError("grim wrote no PPM of 24-bit colours")
        width, height = int(width), int(height)
        pixels = numpy.frombuffer(picture[-width * height * 3:], dtype=numpy.uint8)
        return pixels.reshape(height, width, 3)

    def focused(self):
        """The compositor's id of the window with the keyboard focus."""
        tree = subprocess.run(["swaymsg", "-r", "-t", "get_tree"], env=self._env, check=True,
                              capture_output=True, timeout=20).stdout
        nodes = [json.loads(tree)]
        while nodes:
            node = nodes.pop()
            if node["focused"]:
                return node["id"]
            nodes += node["nodes"] + node["floating_nodes"]
        return None
