"""Scenarios with keyboards that the program may not read, or not yet.

Each leaves the output of the probe for keyboards_test.py.
"""

import contextlib
import os
import pathlib
import pwd
import shutil
import subprocess
import time

from virtual_desktop import processes
from virtual_desktop.waiting import wait_until

from keyboards import KEY_A, KEY_B, Keyboard, reads, settle
from lab_desktop import TIMEOUT

RETRY = 3.0
"""Seconds after which the effect checks its permission once more."""

NOBODY = pwd.getpwnam("nobody")
CRACK = pathlib.Path(__file__).resolve().parents[2] / "resources/keyboard.mp3"


class Probe:
    """The probe program, run as a user without rights, with a fake polkit prompt."""

    def __init__(self, lab, home, stack, what):
        self.asked = home / "asked"
        pkexec = home / "pkexec"
        pkexec.write_text(f'#!/bin/sh\necho "$@" >>{self.asked}\n')
        pkexec.chmod(0o755)
        env = dict(processes.base_environment(str(home)), WAYLAND_DISPLAY="wayland-0",
                   DBUS_SYSTEM_BUS_ADDRESS=lab.desktop.env["DBUS_SYSTEM_BUS_ADDRESS"])
        env["PATH"] = f"{home}:{env['PATH']}"
        for folder in (home, *filter(pathlib.Path.is_dir, home.iterdir())):
            os.chown(folder, NOBODY.pw_uid, NOBODY.pw_gid)
        # This user may lack access to the build folder.
        env["QUORVANE_RESOURCES"] = str(home)
        for file in (CRACK, lab.build / "keyboard_probe", lab.build / "quorvane-keyboard-access"):
            shutil.copy(file, home)
        self._process = processes.start(
            ["setpriv", f"--reuid={NOBODY.pw_uid}", f"--regid={NOBODY.pw_gid}", "--clear-groups",
             str(home / "keyboard_probe"), what],
            env, stack, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.lines = processes.Lines(self._process.stdout)
        self._errors = processes.Lines(self._process.stderr)

    @property
    def pid(self):
        return self._process.pid

    def finish(self, lab, name):
        """Ends the probe and leaves its output."""
        self._process.stdin.close()
        status = self._process.wait(TIMEOUT)
        self.lines.wait_for_end()
        self._errors.wait_for_end()
        asked = self.asked.read_text().splitlines() if self.asked.exists() else []
        lab.save(name, "probe.json", {"status": status, "lines": self.lines.text,
                                      "errors": self._errors.text, "asked": asked})


@contextlib.contextmanager
def _home():
    # The user has no access to the temporary folder of the scenarios.
    home = pathlib.Path("/run/probe-home")
    home.mkdir(mode=0o755)
    try:
        yield home
    finally:
        subprocess.run(["rm", "-rf", home], check=True)


def _run_probe(lab, name, what, scenario, *, is_readable=False):
    """Plays `scenario(lab, keyboard, probe, stack)` with the probe and one keyboard."""
    with contextlib.ExitStack() as stack:
        keyboard = Keyboard("lab keyboard one", stack)
        settle()
        if is_readable:
            _allow(keyboard)
        home = stack.enter_context(_home())
        probe = Probe(lab, home, stack, what)
        scenario(lab, keyboard, probe, stack)
        probe.finish(lab, name)


def _refused(_lab, keyboard, probe, _stack):
    probe.lines.wait_for(lambda line: line == "started", "the start", TIMEOUT)
    wait_until(lambda: probe.lines.text.count("trusted no") == 2, "the retry")
    # Too late: there is only one retry.
    _allow(keyboard)
    time.sleep(RETRY + 1)


def _allow(keyboard):
    subprocess.run(["setfacl", "-m", f"u:{NOBODY.pw_uid}:r", keyboard.path], check=True)


def _agree(lab):
    """Makes the user the active one at the seat; runs the helper, as polkit does after consent."""
    users = pathlib.Path("/run/systemd/users")
    users.mkdir(parents=True, exist_ok=True)
    (users / str(NOBODY.pw_uid)).write_text("ACTIVE_SEATS=seat0\nSEATS=seat0\n")
    subprocess.run([lab.build / "quorvane-keyboard-access"], check=True,
                   env={"PKEXEC_UID": str(NOBODY.pw_uid)})


def _permitted(lab, _keyboard, probe, _stack):
    # The permission has to be there before the retry.
    with lab.watch.timed():
        wait_until(probe.asked.exists, "the prompt")
        _agree(lab)
        probe.lines.wait_for(lambda line: line == "active yes", "the retry", TIMEOUT)


def _readable_later(_lab, one, probe, stack):
    """A keyboard becomes readable only after the tap was started."""
    probe.lines.wait_for(lambda line: line == "tap yes", "the tap", TIMEOUT)
    other = Keyboard("lab keyboard two", stack)
    settle()
    other.stroke(KEY_A)
    one.stroke(KEY_A)
    probe.lines.wait_for(lambda line: line == "key", "the first key", TIMEOUT)
    _allow(other)
    wait_until(lambda: reads(probe.pid, other), "the other keyboard to be opened")
    other.stroke(KEY_B)
    wait_until(lambda: probe.lines.text.count("key") == 2, "the second key")


def play_all(play):
    """Calls `play(name, scenario, *arguments, **options)` for every scenario of this file."""
    play("refused", _run_probe, "effect", _refused)
    play("permitted", _run_probe, "effect", _permitted)
    play("readable_later", _run_probe, "tap", _readable_later, is_readable=True)
