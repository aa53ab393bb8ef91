"""Detects standstills of the machine while a program in it is timed.

While the host is slow to wake an idle machine the guest's clock runs on, which in the guest looks
like a program that does nothing. The heartbeat, which no program can delay, tells the two apart.
Waiting for files of the host is no standstill: it counts as the program's time.
"""

import collections
import contextlib
import json
import pathlib
import time

from virtual_desktop import processes

HERE = pathlib.Path(__file__).resolve().parent

SPARE = 0.1
"""The most seconds of standstill within any second that is timed; the verdicts' bounds include
them."""


def late_beats(lines):
    """The (begin, end) of each late beat in a log of heartbeat.py."""
    beats = [json.loads(line) for line in lines]
    return [(entry["due"], entry["came"]) for entry in beats]


def within(spans, begin, end):
    """The parts of the spans that lie between two instants."""
    return [(max(first, begin), min(last, end)) for first, last in spans
            if first < end and last > begin]


def worst_second(spans):
    """The most standstill in any one second; the spans are in order."""
    recent, total, worst = collections.deque(), 0.0, 0.0
    for begin, end in spans:
        recent.append((begin, end))
        total += end - begin
        while recent[0][1] <= end - 1:
            first, last = recent.popleft()
            total -= last - first
        worst = max(worst, total - max(0.0, end - 1 - recent[0][0]))
    return worst


def complaint(spans):
    """Why times measured during these spans are void, or None if they count."""
    worst = worst_second(spans)
    if worst <= SPARE:
        return None
    return f"the machine stood still for {worst:.2f} s within a second"


class Watch:
    """Runs the heartbeat, until `stack` is closed, with its log in the file `log`."""

    def __init__(self, env, log, stack):
        self._log = log
        self._heart = processes.start_script(HERE / "heartbeat.py", log, env=env, stack=stack)
        self._complaint = None
        self._spans = []

    @contextlib.contextmanager
    def timed(self):
        """The context in which something is timed."""
        begin = time.monotonic()
        try:
            yield
        finally:
            end = time.monotonic()
            if self._heart.poll() is not None:
                raise RuntimeError("the heartbeat has ended")
            beats = self._log.read_text(encoding="utf-8").splitlines()
            self._spans = within(late_beats(beats), begin, end)
            self._complaint = complaint(self._spans)

    def take(self):
        """The standstills and the complaint of what was timed last; resets both."""
        taken = self._spans, self._complaint
        self._spans, self._complaint = [], None
        return taken
