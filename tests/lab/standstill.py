"""Whether the machine stood still while a program in it was being timed.

The guest's clock runs on while the host is slow to wake the machine. Inside that looks like a
program that does nothing. A heartbeat that no program can hold up tells the two apart. Waiting for
the host's files does not count: a program that reads while it is timed has to answer for that.
"""

import collections
import contextlib
import json
import pathlib
import time

from virtual_desktop import processes

HERE = pathlib.Path(__file__).resolve().parent

SPARE = 0.1
"""Seconds that may be missing of any one second that is timed: the verdicts' bounds have as much to
spare, whether it is missing in one go or in many."""


def late_beats(lines):
    """The (begin, end) of each beat that was late, of a log of heartbeat.py."""
    beats = [json.loads(line) for line in lines]
    return [(entry["due"], entry["came"]) for entry in beats]


def within(spans, begin, end):
    """What of the spans lies between two instants."""
    return [(max(first, begin), min(last, end)) for first, last in spans
            if first < end and last > begin]


def worst_second(spans):
    """How much of any one second was missing at the most; the spans come as `within` gives them."""
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
    """What is wrong with what was measured meanwhile, in a few words; none if it stands."""
    worst = worst_second(spans)
    if worst <= SPARE:
        return None
    return f"the machine stood still for {worst:.2f} s within a second"


class Watch:
    """The heartbeat, from now until the end of `stack`; `log` is where it writes."""

    def __init__(self, env, log, stack):
        self._log = log
        self._heart = processes.start_script(HERE / "heartbeat.py", log, env=env, stack=stack)
        self._complaint = None
        self._spans = []

    @contextlib.contextmanager
    def timed(self):
        """Around what is timed."""
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
        """What was seen while something was last timed, told once.

        The spans of time in which the machine stood still, and what is wrong with what was measured
        meanwhile, which is none if it stands.
        """
        told = self._spans, self._complaint
        self._spans, self._complaint = [], None
        return told
