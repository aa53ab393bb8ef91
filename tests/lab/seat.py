"""The seat of the lab machine: udev, logind's state, polkit, and the installed program's user."""

import contextlib
import os
import pathlib
import shutil
import socket
import subprocess
import threading

from virtual_desktop import processes, screens
from virtual_desktop.buses import Bus
from virtual_desktop.waiting import wait_until

import polkit
from logins import USER, Logins, in_session

SYSTEM_BUS = pathlib.Path("/run/dbus")
READER = pathlib.Path("/usr/libexec/quorvane-key-reader")
PROGRAM = "/usr/bin/quorvane"
COMM = "quorvane-key-re"
"""The reader's name in /proc, which has 15 characters at most."""


def settle():
    """Waits until udev has announced every device that was added or removed."""
    # The machine runs in a chroot, where udevadm ignores udev by default.
    subprocess.run(["udevadm", "settle", "--timeout=60"], check=True,
                   env=dict(os.environ, SYSTEMD_IGNORE_CHROOT="1"))


def open_files(pid):
    """What the files are that a process has open."""
    files = []
    for entry in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        with contextlib.suppress(FileNotFoundError):
            files.append(os.readlink(entry))
    return files


def reads(pid, keyboard):
    """Whether the process has the keyboard open."""
    return keyboard.path in open_files(pid)


def readers():
    """The process ids of all key readers."""
    found = []
    for name in pathlib.Path("/proc").glob("[0-9]*/comm"):
        with contextlib.suppress(OSError):
            if name.read_text().strip() == COMM:
                found.append(int(name.parent.name))
    return found


class SystemLog:
    """Stands in for the system's log: what programs send to it."""

    def __init__(self, stack):
        self.lines = []
        self._socket = stack.enter_context(socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM))
        self._socket.bind("/dev/log")
        threading.Thread(target=self._listen, daemon=True).start()

    def _listen(self):
        while True:
            self.lines.append(self._socket.recv(8192).decode())


class Seat:
    """Everything is real but logind, and the agent, which answers by itself.

    `env` is the environment of the user's programs, in a session that looks like Wayland.
    """

    def __init__(self, lab, stack):
        self._lab = lab
        self.env = dict(lab.desktop.user_env, WAYLAND_DISPLAY="no-such-compositor")
        self._system_env = lab.desktop.env.copy()
        for env in (self.env, self._system_env):
            del env["DBUS_SYSTEM_BUS_ADDRESS"]
        SYSTEM_BUS.mkdir(mode=0o755)
        self._bus = Bus(self._system_env, str(SYSTEM_BUS), "system", stack)
        (SYSTEM_BUS / "system_bus_socket").symlink_to("system-bus")
        self._install()
        self.logins = Logins(self._system_env, self._bus, stack)
        polkit.start(self._system_env, self._bus, stack)
        self._start_device_manager(stack)
        self.log = SystemLog(stack)

    def _install(self):
        subprocess.run(["cmake", "--install", self._lab.build, "--prefix", "/usr"], check=True,
                       stdout=subprocess.DEVNULL)
        for test in ("keyboard_probe", "contract_uinput"):
            shutil.copy(self._lab.build / test, "/usr/bin")

    def _start_device_manager(self, stack):
        processes.start(["/lib/systemd/systemd-udevd"], self._system_env, stack)
        wait_until(lambda: os.path.exists("/run/udev/control"), "udev")

    def agent(self, name, stack):
        """A polkit agent in the user's session; leaves agent.log for the scenario."""
        return polkit.Agent(self._system_env, self._bus, self._lab.folder(name) / "agent.log",
                            stack)

    @contextlib.contextmanager
    def program(self, name, stack, groups=()):
        """The installed program, run by the user with these groups; see Lab.program."""
        screens.skip_hardware_check(self.env)
        subprocess.run(["chown", "-R", str(USER.pw_uid), self.env["HOME"]], check=True)
        command = in_session([PROGRAM], groups)
        with self._lab.program(name, stack, command, self.env) as running:
            yield running
