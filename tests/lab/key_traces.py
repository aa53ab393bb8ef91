"""Scenarios about what the key reader costs, and what of the keys stays in its memory.

Each leaves its facts for key_traces_test.py.
"""

import contextlib
import os
import pathlib
import statistics
import time

from virtual_desktop import processes

import memory
from key_reader import armed
from keyboard_device import KEY_A, PASSWORD

HERE = pathlib.Path(__file__).resolve().parent

REST = 10.0
TURNS, STROKES = 10, 20
APART = 0.03
EVENTS = 64 * 24
"""The size of 64 events, as many as the reader reads at once."""


def _wake_ups(pid):
    count = 0
    for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status"):
        fields = dict(line.split(":\t", 1) for line in status.read_text().splitlines())
        count += int(fields["voluntary_ctxt_switches"])
    return count


def at_rest(lab, name, _seat):
    """A reader with a keyboard that nobody touches, and then somebody does."""
    with contextlib.ExitStack() as stack:
        reader, keyboard = armed(stack)
        time.sleep(1)
        first = _wake_ups(reader.pid)
        time.sleep(REST)
        rested = _wake_ups(reader.pid)
        reader.keys_of(lambda: keyboard.stroke(KEY_A))
        lab.save(name, "facts.json", {"at rest": rested - first,
                                      "by a key": _wake_ups(reader.pid) - rested})


def kept(lab, name, _seat):
    """What of "hunter2" is in the reader's memory, and in that of a process that keeps it."""
    wanted = memory.forms(PASSWORD, "hunter2")
    searched = []
    with contextlib.ExitStack() as stack:
        reader, keyboard = armed(stack)
        keeper = processes.start_script(HERE / "key_keeper.py", keyboard.path, env=os.environ,
                                        stack=stack)

        def search():
            searched.append(memory.search(reader.pid, wanted))

        # All at once, so that they are read at once, and as somebody types.
        keyboard.press(*PASSWORD)
        search()
        keyboard.release(*PASSWORD)
        for key in PASSWORD:
            keyboard.stroke(key)
            search()
            time.sleep(0.1)
        search()
        lab.save(name, "facts.json", {"reader": searched, "forms": sorted(wanted),
                                      "keeper": memory.search(keeper.pid, wanted),
                                      "keys": len(reader.heard) - 1})


def _time_strokes(keyboard, read, after=lambda: None):
    """How long each of some keys takes until `read` returns; calls `after` after its release."""
    taken = []
    for _ in range(STROKES):
        began = time.monotonic()
        keyboard.press(KEY_A)
        read()
        taken.append(time.monotonic() - began)
        keyboard.release(KEY_A)
        time.sleep(APART)
        after()
    return taken


def latency(lab, name, _seat):
    """From the write of a key until the reader's byte is there, and until the node's event is."""
    times = {"reader": [], "node": []}
    with contextlib.ExitStack() as stack:
        reader, keyboard = armed(stack, listens=False)
        reader.close()
        with lab.watch.timed():
            for _ in range(TURNS):
                reader.open(keyboard)
                times["reader"] += _time_strokes(keyboard, reader.read)
                reader.close()
                with open(keyboard.path, "rb", 0) as node:
                    def read(node=node):
                        node.read(EVENTS)
                    times["node"] += _time_strokes(keyboard, read, after=read)
    reader, node = (statistics.median(taken) * 1000 for taken in times.values())
    print(f"lab: {name}: until the reader's byte {reader:.3f} ms, until the node's event "
          f"{node:.3f} ms: ratio {reader / node:.2f}, {reader - node:.3f} ms added", flush=True)
    lab.save(name, "facts.json", {side: len(taken) for side, taken in times.items()})


def play_all(play, seat):
    """Calls `play(name, scenario, seat)` for every scenario of this file."""
    for scenario in (at_rest, kept, latency):
        play(scenario.__name__, scenario, seat)
