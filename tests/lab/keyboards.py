"""Scenarios with uinput keyboards, in a session that looks like Wayland.

Each leaves its actions, with times, for keyboards_test.py.
"""

import contextlib
import os
import pathlib
import struct
import subprocess
import time

from virtual_desktop import processes, screens
from virtual_desktop.waiting import wait_until

from input_device import EV_KEY, InputDevice
from lab_desktop import TIMEOUT

EV_SYN, EV_REP = 0x00, 0x14
KEY_A, KEY_B, KEY_C, KEY_LEFTSHIFT = 30, 48, 46, 42
KEYS = tuple(range(1, 89))
# Letters, digits and function keys, without modifiers and locks.
BURST = [key for key in KEYS if key not in (29, 42, 54, 56, 58, 69, 70)][:64]

PAUSE = 0.7
"""Seconds between two actions; a crack is much shorter."""

HOLD = 1.0
STROKES = 6
STROKE = 0.5


class Keyboard(InputDevice):
    """A keyboard whose held keys the kernel repeats."""

    def __init__(self, name, stack):
        super().__init__(name, {EV_KEY: KEYS, EV_REP: ()})
        self.path = f"/dev/input/{self.node.name}"
        self._is_plugged = True
        stack.callback(self.unplug)

    def write(self, *events):
        """Sends (type, code, value) events in one write."""
        os.write(self._file, b"".join(struct.pack("llHHi", 0, 0, *event) for event in events))

    def press(self, *keys):
        self.write(*(event for key in keys for event in ((EV_KEY, key, 1), (EV_SYN, 0, 0))))

    def release(self, *keys):
        self.write(*(event for key in keys for event in ((EV_KEY, key, 0), (EV_SYN, 0, 0))))

    def stroke(self, key):
        self.press(key)
        self.release(key)

    def unplug(self):
        if self._is_plugged:
            self._is_plugged = False
            self.close()


@contextlib.contextmanager
def device_manager(env):
    """A running udev, which names and announces the devices."""
    with contextlib.ExitStack() as stack:
        processes.start(["/lib/systemd/systemd-udevd"], env, stack)
        wait_until(lambda: os.path.exists("/run/udev/control"), "udev")
        yield


def settle():
    """Waits until udev has announced every device that was added or removed."""
    # The machine runs in a chroot, where udevadm ignores udev by default.
    subprocess.run(["udevadm", "settle", "--timeout=60"], check=True,
                   env=dict(os.environ, SYSTEMD_IGNORE_CHROOT="1"))


def reads(pid, keyboard):
    """Whether the process has the keyboard open."""
    return keyboard.path in _open_files(pid)


def _open_files(pid):
    files = []
    for entry in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        with contextlib.suppress(FileNotFoundError):
            files.append(os.readlink(entry))
    return files


class ActionLog:
    """Runs actions at the keyboards and logs when each began and ended."""

    def __init__(self, program, actions):
        self._program = program
        self._actions = actions

    def do(self, name, *actions, pause=PAUSE):
        """Each of `actions` is a function to call, or a time to wait."""
        begin = time.monotonic()
        for action in actions:
            action() if callable(action) else time.sleep(action)
        time.sleep(pause)
        self._actions.append({"action": name, "begin": begin, "end": time.monotonic()})

    def wait_until_heard(self, keyboard):
        wait_until(lambda: reads(self._program.pid, keyboard), "the program to open a keyboard")


def _unplug_and_replug_while_typing(log, one, other, stack):
    """Types on `one` meanwhile; returns the keyboard that replaces `other`."""
    for number in range(STROKES):
        log.do(f"stroke {number}", lambda: one.stroke(KEY_A), pause=STROKE)
        if number == 1:
            # With a key down, which may or may not be heard.
            log.do("unplugging", lambda: other.press(KEY_C), other.unplug, pause=STROKE)
        if number == 3:
            other = Keyboard("lab keyboard two", stack)
    settle()
    log.wait_until_heard(other)
    return other


def _type(log, one, other, stack):
    log.do("stroke on the first", lambda: one.stroke(KEY_A))
    log.do("stroke on the second", lambda: other.stroke(KEY_A))
    log.do("shift alone", lambda: one.stroke(KEY_LEFTSHIFT))
    log.do("held key", lambda: one.press(KEY_B), HOLD, lambda: one.release(KEY_B))
    other = _unplug_and_replug_while_typing(log, one, other, stack)
    log.do("stroke on the replugged", lambda: other.stroke(KEY_A))
    log.do("burst", lambda: one.press(*BURST), lambda: one.release(*BURST))
    log.do("vanishing in mid-event", lambda: other.write((EV_KEY, KEY_A, 1)), other.unplug)
    log.do("stroke after all that", lambda: one.stroke(KEY_A))


@contextlib.contextmanager
def _wayland_session(env):
    env["WAYLAND_DISPLAY"] = "no-such-compositor"
    try:
        yield
    finally:
        del env["WAYLAND_DISPLAY"]


def _arm(lab, program, facts):
    """Switches the cracks on and waits until keys are heard."""
    app = screens.open_control_panel(lab.reader, program, TIMEOUT)
    facts["files_before"] = _open_files(program.pid)
    app.toggle(screens.KEYBOARD)
    program.console.wait_for(lambda line: "Event tap started" in line, "armed", TIMEOUT)
    time.sleep(PAUSE)
    return app


def typing(lab, name):
    """Typing on two keyboards, one of which is unplugged and plugged in again."""
    lab.set_first_launch(False)
    with contextlib.ExitStack() as stack:
        stack.enter_context(_wayland_session(lab.desktop.env))
        recording = lab.desktop.record(lab.folder(name) / "recorder.log", stack)
        one = Keyboard("lab keyboard one", stack)
        other = Keyboard("lab keyboard two", stack)
        settle()
        with lab.program(name, stack) as (program, facts):
            app = _arm(lab, program, facts)
            facts["actions"] = []
            log = ActionLog(program, facts["actions"])
            with lab.watch.timed():
                _type(log, one, other, stack)
                app.toggle(screens.KEYBOARD)
                wait_until(lambda: not reads(program.pid, one), "the keyboard to be closed")
                log.do("switched off", lambda: one.stroke(KEY_A))
            facts["files_after"] = _open_files(program.pid)
            lab.save_sound(name, recording, facts)


def uinput_contract(lab, name):
    """The contract test of the event taps, on uinput keyboards."""
    lab.run_contract(name, lab.build / "contract_uinput")


def play_all(play):
    """Calls `play(name, scenario)` for every scenario of this file."""
    play("typing", typing)
    play("uinput_contract", uinput_contract)
