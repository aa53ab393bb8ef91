"""Scenarios in which the installed program hears uinput keyboards, in what looks like Wayland.

Each leaves its actions, with times, for keyboards_test.py.
"""

import contextlib
import os
import shutil
import time

from virtual_desktop import screens
from virtual_desktop.waiting import wait_until

from keyboard_device import EV_KEY, KEY_A, KEY_B, KEY_C, KEY_LEFTSHIFT, KEYS, Keyboard
from lab_desktop import TIMEOUT
from logins import in_session
from seat import open_files, readers, reads, settle

# Letters, digits and function keys, without modifiers and locks.
BURST = [key for key in KEYS if key not in (29, 42, 54, 56, 58, 69, 70)][:64]

PAUSE = 0.7
"""Seconds between two actions; a crack is much shorter."""

HOLD = 1.0
STROKES = 6
STROKE = 0.5


class ActionLog:
    """Runs actions at the keyboards and logs when each began and ended."""

    def __init__(self, reader, actions):
        self._reader = reader
        self._actions = actions

    def do(self, name, *actions, pause=PAUSE):
        """Each of `actions` is a function to call, or a time to wait."""
        begin = time.monotonic()
        for action in actions:
            action() if callable(action) else time.sleep(action)
        time.sleep(pause)
        self._actions.append({"action": name, "begin": begin, "end": time.monotonic()})

    def wait_until_heard(self, keyboard):
        wait_until(lambda: reads(self._reader, keyboard), "the reader to open a keyboard")


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


def arm(lab, program):
    """Switches the cracks on and waits until keys are heard; the control panel and the reader."""
    app = screens.open_control_panel(lab.reader, program, TIMEOUT)
    app.toggle(screens.KEYBOARD)
    program.console.wait_for(lambda line: "Event tap started" in line, "armed", TIMEOUT)
    reader, = readers()
    return app, reader


def devices(*processes):
    """The input devices that the processes have open."""
    files = [file for process in processes for file in open_files(process)]
    return [file for file in files if file.startswith("/dev/input/")]


def typing(lab, name, seat):
    """Typing on two keyboards, one of which is unplugged and plugged in again."""
    with contextlib.ExitStack() as stack:
        recording = lab.desktop.record(lab.folder(name) / "recorder.log", stack)
        agent = seat.agent(name, stack)
        one = Keyboard("lab keyboard one", stack)
        other = Keyboard("lab keyboard two", stack)
        settle()
        with seat.program(name, stack, ["input"]) as (program, facts):
            app, reader = arm(lab, program)
            facts["actions"] = []
            log = ActionLog(reader, facts["actions"])
            log.wait_until_heard(one)
            log.wait_until_heard(other)
            time.sleep(PAUSE)
            facts["devices_of_the_program"] = devices(program.pid)
            with lab.watch.timed():
                _type(log, one, other, stack)
                app.toggle(screens.KEYBOARD)
                wait_until(lambda: not any(reads(pid, one) for pid in readers()),
                           "the keyboard to be closed")
                log.do("switched off", lambda: one.stroke(KEY_A))
            facts["devices_when_off"] = devices(program.pid, *readers())
            facts["asked"] = agent.log()
            lab.save_sound(name, recording, facts)


def uinput_contract(lab, name, seat):
    """The contract test of the event taps, on uinput keyboards."""
    # It makes them itself.
    shutil.chown("/dev/uinput", group="input")
    os.chmod("/dev/uinput", 0o660)
    lab.run_contract(name, *in_session(["/usr/bin/contract_uinput"], ["input"]), env=seat.env)


def play_all(play, seat):
    """Calls `play(name, scenario, seat)` for every scenario of this file."""
    play("typing", typing, seat)
    play("uinput_contract", uinput_contract, seat)
