"""Whether the machine stood still while a program in it was being timed.

The guest's clock runs on while the host is slow to wake the machine or to answer for a file. Inside
that looks like a program that does nothing, and is none of its doing. Two witnesses know better: a
heartbeat that no program can hold up, and the kernel's own trace of what it asked the host for.
"""

import collections
import contextlib
import json
import pathlib
import re
import subprocess
import sys
import time

from desktop import processes

HERE = pathlib.Path(__file__).resolve().parent

SPARE = 0.1
"""Seconds that may be missing of any one second that is timed: the verdicts' bounds have as much to
spare, whether it is missing in one go or in many."""

_EVENT = re.compile(r"\s(?P<time>\d+\.\d+): 9p_client_(?P<kind>req|res): client (?P<client>\d+) "
                    r"(?:request|response) P9_\w+ tag +(?P<tag>\d+)")


def late_beats(lines):
    """The (begin, end) of each beat that was late, of a log of heartbeat.py."""
    beats = [json.loads(line) for line in lines]
    return [(entry["due"], entry["came"]) for entry in beats]


def waits(lines):
    """The (begin, end) of each request to the host, of the kernel's trace of 9p."""
    asked, found = {}, []
    for line in lines:
        event = _EVENT.search(line)
        if not event:
            continue
        key = event["client"], event["tag"]
        if event["kind"] == "req":
            asked[key] = float(event["time"])
        elif key in asked:
            found.append((asked.pop(key), float(event["time"])))
    return found + [(begin, float("inf")) for begin in asked.values()]


def within(spans, begin, end):
    """What of the spans lies between two instants, those that overlap made one."""
    merged = []
    for first, last in sorted((max(first, begin), min(last, end)) for first, last in spans):
        if first >= last:
            continue
        if merged and first <= merged[-1][1]:
            merged[-1] = merged[-1][0], max(last, merged[-1][1])
        else:
            merged.append((first, last))
    return merged


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


class _Trace:
    """The kernel's own account of what it asks the host for."""

    FOLDER = pathlib.Path("/sys/kernel/tracing")

    def __init__(self):
        if not (self.FOLDER / "trace").exists():
            subprocess.run(["mount", "-t", "tracefs", "nodev", self.FOLDER], check=True)
        self._write("trace_clock", "mono")
        self._write("buffer_size_kb", "8192")
        for event in ("9p_client_req", "9p_client_res"):
            self._write(f"events/9p/{event}/enable", "1")

    def _write(self, name, text):
        (self.FOLDER / name).write_text(text, encoding="ascii")

    def clear(self):
        self._write("trace", "")

    def lines(self):
        return (self.FOLDER / "trace").read_text(encoding="ascii").splitlines()


class Watch:
    """Both witnesses, from now until the end of `stack`; `log` is where the heartbeat writes."""

    def __init__(self, env, log, stack):
        self._trace = _Trace()
        self._log = log
        self._heart = processes.start([sys.executable, HERE / "heartbeat.py", log], env,
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        stack.callback(processes.end, self._heart)
        if self._heart.stdout.readline() != b"ready\n":
            raise RuntimeError("the heartbeat did not start")
        self._complaint = None
        self._spans = []

    @contextlib.contextmanager
    def timed(self):
        """Around what is timed."""
        self._trace.clear()
        begin = time.monotonic()
        try:
            yield
        finally:
            end = time.monotonic()
            if self._heart.poll() is not None:
                raise RuntimeError("the heartbeat has ended")
            beats = self._log.read_text(encoding="utf-8").splitlines()
            self._spans = within(late_beats(beats) + waits(self._trace.lines()), begin, end)
            self._complaint = complaint(self._spans)

    def take(self):
        """What was seen while something was last timed, told once.

        The spans of time in which the machine stood still, and what is wrong with what was measured
        meanwhile, which is none if it stands.
        """
        told = self._spans, self._complaint
        self._spans, self._complaint = [], None
        return told
