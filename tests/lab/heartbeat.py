#!/usr/bin/python3
"""Wakes up every 10 ms with real-time priority and logs when that was late.

    heartbeat.py LOG

As no other program can delay it, a late beat means that the whole machine stood still. Prints
"ready" once it beats, and ends with its standard input.

The log has one JSON object a line, with the CLOCK_MONOTONIC seconds at which a beat was due and at
which it came.
"""

import ctypes
import json
import os
import select
import sys
import time

BEAT = 0.01
LATE = 0.005
PRIORITY = 50

MCL_CURRENT, MCL_FUTURE = 1, 2


def beat(out, due):
    """One beat; returns when the next one is due."""
    now = time.monotonic()
    if now - due > LATE:
        out.write(json.dumps({"due": due, "came": now}) + "\n")
    missed = max(0, int((now - due) / BEAT))
    return due + (missed + 1) * BEAT


def main():
    """Beats until standard input ends."""
    # Its pages must not be swapped out when memory is short.
    if ctypes.CDLL(None, use_errno=True).mlockall(MCL_CURRENT | MCL_FUTURE) != 0:
        raise OSError(ctypes.get_errno(), "mlockall")
    os.sched_setscheduler(0, os.SCHED_FIFO, os.sched_param(PRIORITY))
    with open(sys.argv[1], "w", encoding="utf-8", buffering=1) as out:
        print("ready", flush=True)
        due = time.monotonic() + BEAT
        while not select.select([sys.stdin], [], [], max(0, due - time.monotonic()))[0]:
            due = beat(out, due)


if __name__ == "__main__":
    main()
