#!/usr/bin/python3
"""How long a key takes to be heard, compared with bucklespring.

Usage: keyboard_latency_benchmark.py BUILD_FOLDER [pulseaudio|pipewire [TURNS [KEYS [RESTS [REST]]]]]

In TURNS (5) turns each of the two is started, gets KEYS (10) keys 0.6 s apart, and is ended. Then
each gets RESTS (20) more keys, each after a rest of 5 s and REST (10) s in which its processor time
and wake-ups are counted, with those of the sound server. Both run on one display and one sound
server, whose output a recorder takes that leaves the server its own latency. The program's window
is minimised, as its user types in another. A latency is from the key event to the first loud sample
of the sound server's output, on that server's clock.
"""

import contextlib
import ctypes
import pathlib
import statistics
import subprocess
import sys
import time

import numpy

import rows
from measuring import argument, costs, environment_of, screens

from virtual_desktop import processes
from virtual_desktop.key_sender import KeySender
from virtual_desktop.pipewire_server import PipeWireServer
from virtual_desktop.session import Session
from virtual_desktop.sound_server import SoundServer
from virtual_desktop.waiting import wait_until

SERVERS = {"pulseaudio": SoundServer, "pipewire": PipeWireServer}
RECORDER_LATENCY = 100
"""In milliseconds. A shorter one would make the server play sooner than it does by itself."""

OTHER = "/usr/games/buckle"
CLICKS = 14
UNSETTLED = 7
"""The first clicks: PipeWire reports exact delays only after some seconds."""

STARTED = "⌨️ [KEYBOARD] Event tap started — global monitoring active"
RATE = 48000
LOUD = 0.01
"""Share of full scale; the null sink has no noise."""

EARLY = 0.4
"""The most seconds by which the recording's times may be too early: the server mixes ahead, and a
recorder that loses samples falls behind."""

AT_ONCE = 0.0005
APART = 0.6
HOLD = 0.08
SETTLED = 2.0
IN_A_ROW = 5
"""Rests before the recording's clock is measured again."""

COMES_TO_REST = 5.0
"""Seconds after a key in which a program may still do something about it."""

KEY = "a"


class _SampleFormat(ctypes.Structure):
    _fields_ = [("format", ctypes.c_int), ("rate", ctypes.c_uint32), ("channels", ctypes.c_uint8)]


class _BufferSizes(ctypes.Structure):
    _fields_ = [(name, ctypes.c_uint32)
                for name in ("maximum", "target", "ahead", "least", "fragment")]


def clicks(server, count):
    """Plays clicks; returns when each is heard, by the delay that the sound server reports."""
    library = ctypes.CDLL("libpulse-simple.so.0")
    library.pa_simple_new.restype = ctypes.c_void_p
    library.pa_simple_get_latency.restype = ctypes.c_uint64
    library.pa_simple_get_latency.argtypes = [ctypes.c_void_p, ctypes.c_void_p]
    library.pa_simple_write.argtypes = [
        ctypes.c_void_p, ctypes.c_char_p, ctypes.c_size_t, ctypes.c_void_p]
    library.pa_simple_free.argtypes = [ctypes.c_void_p]
    little_endian_16, playback, default = 3, 1, 0xFFFFFFFF
    sizes = _BufferSizes(default, RATE * 2 // 10, default, default, default)
    stream = library.pa_simple_new(
        server.encode(), b"clicks", playback, None, b"clicks",
        ctypes.byref(_SampleFormat(little_endian_16, RATE, 1)), None, ctypes.byref(sizes), None)
    if not stream:
        raise SystemExit("the sound server cannot be connected to")
    silence = bytes(RATE // 100 * 2)
    click = (numpy.ones(RATE // 100) * 16000).astype("<i2").tobytes()
    heard = []
    for _ in range(count):
        for _ in range(50):
            library.pa_simple_write(stream, silence, len(silence), None)
        asked = time.monotonic()
        delay = library.pa_simple_get_latency(stream, None) / 1e6
        # Otherwise the process was preempted and the instant is inexact.
        if time.monotonic() - asked < AT_ONCE:
            heard.append(asked + delay)
        library.pa_simple_write(stream, click, len(click), None)
    for _ in range(50):
        library.pa_simple_write(stream, silence, len(silence), None)
    library.pa_simple_free(stream)
    return heard


def onset(recording, since, until):
    """When the first loud sample between two instants is recorded, or None."""
    loud = numpy.flatnonzero(abs(recording.samples(since, until)) > LOUD)
    return since + loud[0] / RATE if len(loud) else None


class Bench:
    """The desktop, and the two programs on it."""

    def __init__(self, build, server, stack):
        self._build = build
        self._session = stack.enter_context(
            Session(sound_server=SERVERS[server], recorder_latency=RECORDER_LATENCY))
        self._keys = KeySender(self._session.display.name, stack)
        self._recording = self._session.recording
        self._recording.wait_for_start()
        self.environment = environment_of(self._session)
        self.errors = []
        self.unheard = 0

    @contextlib.contextmanager
    def ours(self):
        """Runs the program with the switch on; gives its process id."""
        with contextlib.ExitStack() as stack:
            program = self._session.run([str(self._build / "quorvane")], self.environment, stack)
            screens.open_control_panel(self._session.reader, program).toggle(screens.KEYBOARD)
            program.wait_for_line(STARTED)
            self._minimise()
            yield program.pid
            program.terminate()
            program.wait_for_exit()

    def _minimise(self):
        """Minimises the window: its user types in another one."""
        display = self._session.display
        for window in wait_until(lambda: display.windows(screens.TITLE), "the window"):
            display.minimise(window)
        wait_until(lambda: not display.windows(screens.TITLE), "the window to go")

    @contextlib.contextmanager
    def other(self):
        """Runs bucklespring, ready to sound; gives its process id."""
        with contextlib.ExitStack() as stack:
            process = processes.start([OTHER], dict(self.environment, ALSOFT_DRIVERS="pulse"),
                                      stack, stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL)
            wait_until(self._is_heard, "bucklespring to make a sound", 20)
            yield process.pid

    def _is_heard(self):
        earliest = self._stroke()
        return onset(self._recording, earliest - EARLY, earliest + 0.4) is not None

    def _stroke(self):
        earliest, _ = self._keys.press(KEY)
        time.sleep(HOLD)
        self._keys.release(KEY)
        return earliest

    def type(self, count):
        """Types `count` keys and returns their instants."""
        time.sleep(SETTLED)
        instants = []
        for _ in range(count):
            instants.append(self._stroke())
            time.sleep(max(0.0, instants[-1] + APART - time.monotonic()))
        return instants

    def rest(self, pid, count, seconds):
        """Returns the instants of `count` keys, each after a rest, and what the rests cost.

        A cost is that of the process and that of the sound server, as `costs` has them.
        """
        instants, spent = [], []
        for _ in range(count):
            time.sleep(COMES_TO_REST)
            spent.append(costs(seconds, [pid], self._session.sound.pids))
            instants.append(self._stroke())
        time.sleep(APART)
        return instants, spent

    def clock_error(self):
        """By how much the recording's times are later than the sound server's; mostly below 0.

        It changes when the recorder loses samples, so it is measured in every turn.
        """
        errors = []
        for heard in clicks(self._session.sound.address, CLICKS)[UNSETTLED:]:
            at = onset(self._recording, heard - EARLY, heard + 0.1)
            if at is not None:
                errors.append(at - heard)
        error = statistics.median(errors)
        self.errors.append(error)
        return error

    def latencies(self, instants, error):
        """The latencies in milliseconds; keys that were not heard are left out and counted."""
        found = []
        for instant in instants:
            # From 0.1 s earlier on: with a wrong clock error there would be latencies below zero.
            at = onset(self._recording, instant + error - 0.1, instant + error + 0.4)
            if at is None:
                self.unheard += 1
            else:
                found.append((at - error - instant) * 1000)
        return found


def percentile(values, share):
    return sorted(values)[min(len(values) - 1, round(share * (len(values) - 1)))]


def main():
    build = pathlib.Path(sys.argv[1])
    server, turns, keys = argument(2, "pulseaudio"), argument(3, 5), argument(4, 10)
    rests, rest = argument(5, 20), argument(6, 10.0)
    typed, rested, spent = ({"ours": [], "other": []} for _ in range(3))
    with contextlib.ExitStack() as stack:
        bench = Bench(build, server, stack)
        sides = {"ours": bench.ours, "other": bench.other}
        for _ in range(turns):
            for name, side in sides.items():
                with side():
                    instants = bench.type(keys)
                typed[name] += bench.latencies(instants, bench.clock_error())
        for name, side in sides.items():
            with side() as pid:
                for done in range(0, rests, IN_A_ROW):
                    instants, cost = bench.rest(pid, min(IN_A_ROW, rests - done), rest)
                    rested[name] += bench.latencies(instants, bench.clock_error())
                    spent[name] += cost
        print("clock of the recording, by clicks (ms): "
              + " ".join(f"{error * 1000:.0f}" for error in bench.errors)
              + f"; keys that were not heard: {bench.unheard}")
        report(server, typed, rested, spent)


def summary(values):
    """Some figures in milliseconds as text."""
    return (f"median {statistics.median(values):.1f}, 90th percentile "
            f"{percentile(values, 0.9):.1f}, {min(values):.1f} to {max(values):.1f}")


def report(server, typed, rested, spent):
    """Prints the results."""
    if not all([*typed.values(), *rested.values()]):
        raise SystemExit("too few keys were heard: the machine is too busy")
    for name, title in (("ours", "Quorvane"), ("other", "bucklespring")):
        print(f"== {title}\n{len(typed[name])} keys (ms): {summary(typed[name])}")
        print(f"{len(rested[name])} keys after a rest (ms): {summary(rested[name])}")
    for what, found in (("key to sound", typed), ("key to sound after a rest", rested)):
        print_row(server, f"{what}: median", found, "ms")
    for owner, place in (("", 0), (" of the sound server", 1)):
        for what, unit, kind in (("processor", "ms/s", 0), ("wake-ups", "/s", 1)):
            print_row(server, f"keys armed, at rest: {what}{owner}",
                      {name: [cost[place][kind] for cost in each]
                       for name, each in spent.items()}, unit)


def print_row(server, what, found, unit):
    """Prints a row with the median of each side."""
    rows.print_row(f"{server}: {what}", statistics.median(found["ours"]), "bucklespring",
                   statistics.median(found["other"]), unit)


if __name__ == "__main__":
    main()
