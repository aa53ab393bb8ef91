"""Scenarios with the installed key reader alone: what it says of keys, and when.

Each leaves its facts for key_reader_test.py.
"""

import contextlib
import os
import subprocess
import threading
import time

from virtual_desktop import processes
from virtual_desktop.waiting import wait_until

from keyboard_device import (ALL_KEYS, KEY_A, KEY_B, KEY_C, KEY_LEFTSHIFT, KEYS, PASSWORD,
                             Keyboard)
from logins import USER, in_session
from seat import READER, open_files, reads, settle

SOON = 0.5
"""Seconds after which the reader has to have gone silent."""

PAUSE = 0.02


class KeyReader:
    """The reader, run by the user, or as root as pkexec runs it after a question."""

    def __init__(self, stack, *, as_root, listens=True):
        env = {"PATH": os.environ["PATH"]}
        command = [READER] if as_root else in_session([READER], ["input"])
        if as_root:
            env["PKEXEC_UID"] = str(USER.pw_uid)
        self._process = processes.start(command, env, stack, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.heard = []
        """The bytes so far; the first says that it runs."""
        if listens:
            threading.Thread(target=self._listen, daemon=True).start()
            wait_until(lambda: self.heard, "the reader")
        else:
            self.read()

    def _listen(self):
        while data := self.read():
            self.heard += data

    def read(self):
        """The next bytes, for who listens himself."""
        return os.read(self._process.stdout.fileno(), 4096)

    @property
    def pid(self):
        return self._process.pid

    def open(self, *keyboards):
        """Has it open the devices, and waits until it has opened these."""
        self._write(b"o")
        self.wait_until_open(*keyboards)

    def wait_until_open(self, *keyboards):
        for keyboard in keyboards:
            wait_until(lambda k=keyboard: reads(self.pid, k), "the reader to open a keyboard")

    def close(self):
        self._write(b"c")
        wait_until(lambda: not self.devices(), "the reader to close its devices")

    def _write(self, command):
        os.write(self._process.stdin.fileno(), command)

    def devices(self):
        """The input devices that it has open."""
        return [file for file in open_files(self.pid) if file.startswith("/dev/input/")]

    def keys_of(self, action, pause=PAUSE):
        """How many bytes come from an action until shortly after it."""
        before = len(self.heard)
        action()
        time.sleep(max(pause, 0.2))
        return len(self.heard) - before


def armed(stack, *, as_root=True, keys=KEYS, listens=True):
    """A reader that has opened a keyboard, and that."""
    keyboard = Keyboard("lab keyboard one", stack, keys)
    settle()
    reader = KeyReader(stack, as_root=as_root, listens=listens)
    reader.open(keyboard)
    return reader, keyboard


def every_key(lab, name, _seat):
    """Every key code that there is."""
    with contextlib.ExitStack() as stack:
        reader, keyboard = armed(stack, as_root=False, keys=ALL_KEYS)
        count = reader.keys_of(lambda: keyboard.type(ALL_KEYS, 0.005))
        values = sorted(set(reader.heard))
        lab.save(name, "facts.json", {"keys": count, "values": values})


def plugging(lab, name, _seat):
    """Keyboards that are plugged in, unplugged with a key down, and re-enumerated."""
    counts = {}
    with contextlib.ExitStack() as stack:
        reader, one = armed(stack)
        counts["stroke"] = reader.keys_of(lambda: one.stroke(KEY_A))
        counts["shift"] = reader.keys_of(lambda: one.stroke(KEY_LEFTSHIFT))
        # The kernel repeats a held key after 0.25 s.
        counts["held"] = reader.keys_of(lambda: one.press(KEY_B), 1)
        one.release(KEY_B)
        other = Keyboard("lab keyboard two", stack)
        reader.wait_until_open(other)
        counts["plugged in"] = reader.keys_of(lambda: other.stroke(KEY_A))
        counts["unplugged with a key down"] = reader.keys_of(
            lambda: (other.press(KEY_C), time.sleep(0.2), other.unplug()))
        counts["the one left"] = reader.keys_of(lambda: one.stroke(KEY_A))
        # As after a suspend during which the ports had no power.
        one.unplug()
        settle()
        again = [Keyboard(f"lab keyboard {number}", stack) for number in ("one", "two")]
        reader.wait_until_open(*again)
        counts["re-enumerated"] = [reader.keys_of(lambda k=k: k.stroke(KEY_A)) for k in again]
        reader.close()
        counts["closed"] = reader.keys_of(lambda: again[0].stroke(KEY_A))
        reader.open(*again)
        counts["opened again"] = reader.keys_of(lambda: again[0].stroke(KEY_A))
    lab.save(name, "facts.json", counts)


def _away(reader, keyboard, leave, come_back):
    """What is heard while the user's session is away, and how soon nothing is open any more."""
    facts = {"before": reader.keys_of(lambda: keyboard.stroke(KEY_A))}
    left = time.monotonic()
    leave()
    wait_until(lambda: not reader.devices(), "the devices to be closed", interval=0.005)
    facts["closed after"] = time.monotonic() - left
    time.sleep(max(0, left + SOON - time.monotonic()))
    facts["away"] = reader.keys_of(lambda: keyboard.type(PASSWORD, PAUSE))
    come_back()
    reader.wait_until_open(keyboard)
    facts["back"] = reader.keys_of(lambda: keyboard.stroke(KEY_A))
    return facts


def away(lab, name, seat):
    """Another user's session comes to the front, none is, and the user's own is locked."""
    logins = seat.logins
    causes = {
        "other user": (lambda: logins.activate("c2"), lambda: logins.activate("c1")),
        "nobody": (lambda: logins.activate(None), lambda: logins.activate("c1")),
        "locked": (lambda: logins.lock("c1"), lambda: logins.unlock("c1")),
    }
    facts = {}
    for who in ("root", "user"):
        with contextlib.ExitStack() as stack:
            reader, keyboard = armed(stack, as_root=who == "root")
            with lab.watch.timed():
                for cause, (leave, come_back) in causes.items():
                    facts[f"{cause}, as {who}"] = _away(reader, keyboard, leave, come_back)
    lab.save(name, "facts.json", facts)


def play_all(play, seat):
    """Calls `play(name, scenario, seat)` for every scenario of this file."""
    for scenario in (every_key, plugging, away):
        play(scenario.__name__, scenario, seat)
