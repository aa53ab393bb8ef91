#!/usr/bin/python3
"""What one stop screen costs, compared with xscreensaver's bsod in a window of the same size.

Usage: stop_screen_benchmark.py BUILD_FOLDER [TURNS]

Both run in turn on one virtual display of 1280x800, each for the 5 s that a stop screen is up.
"""

import contextlib
import pathlib
import subprocess
import sys
import time

import rows
from measuring import argument, environment_of, memory, print_figures, processor_time, screens

from virtual_desktop import processes
from virtual_desktop.screen_capture import ScreenCapture
from virtual_desktop.session import Session
from virtual_desktop.waiting import wait_until

PROGRAM_BLUE = (0, 120, 212)
OTHER = "/usr/libexec/xscreensaver/bsod"
# The one of its screens that is most like ours: a page of text and a percentage that counts up.
OTHER_SCREEN = "win10"
SHOWN_FOR = 5.0
WAIT = 15.0
AHEAD = 0.3
"""Seconds before the panel is due at which the measuring begins."""
ASLEEP = 0.010
"""Seconds without processor time after which the program counts as asleep: far more than it waits
for a reply of the X server, far less than the time between two of its timers."""


def rest_until(instant):
    time.sleep(max(0.0, instant - time.monotonic()))


def first_pixels(screen, pid, deadline):
    """Polls until a corner is blue; returns how many seconds after the timer fired that was.

    The program sleeps until the timer fires and then works until the panel is there: when it last
    woke up before the first pixels is when the timer fired.
    """
    spent = processor_time(pid)
    woke = worked = time.monotonic()
    while time.monotonic() < deadline:
        now, spent_now = time.monotonic(), processor_time(pid)
        if spent_now > spent:
            if now - worked > ASLEEP:
                woke = now
            spent, worked = spent_now, now
        if screen.pixel(screen.width - 1, screen.height - 1) == PROGRAM_BLUE:
            return time.monotonic() - woke
        time.sleep(0.0001)
    raise SystemExit("no stop screen came")


def measure_program(program, panel, server, screen):
    idle_memory = memory(program.pid)
    panel.toggle(screens.STABILITY)
    begun = time.monotonic()
    rest_until(begun + WAIT - AHEAD - SHOWN_FOR)
    idle = processor_time(program.pid)
    rest_until(begun + WAIT - AHEAD)
    before, server_before = processor_time(program.pid), processor_time(server)
    idle = before - idle
    rest_until(begun + WAIT + SHOWN_FOR / 2)
    shown_memory = memory(program.pid)
    rest_until(begun + WAIT + SHOWN_FOR + AHEAD)
    # The control panel draws before and after, and not while it is covered.
    uncovered = idle * 2 * AHEAD / SHOWN_FOR
    figures = {"processor time (ms)": (processor_time(program.pid) - before - uncovered) * 1000,
               "taken off for the control panel (ms)": uncovered * 1000,
               "display server (ms)": (processor_time(server) - server_before) * 1000,
               "memory (MiB)": shown_memory,
               "of it for the panel (MiB)": shown_memory - idle_memory}
    # Only the next panel is polled for, as that costs the X server time.
    rest_until(begun + 2 * WAIT - AHEAD)
    took = first_pixels(screen, program.pid, begun + 2 * WAIT + 3)
    figures["from the timer to the first pixels (ms)"] = took * 1000
    panel.toggle(screens.STABILITY)
    time.sleep(1)
    return figures


def measure_other(session, environment, server):
    with contextlib.ExitStack() as stack:
        server_before = processor_time(server)
        process = processes.start(
            [OTHER, "--window", "--geometry", "1280x800+0+0", "--only", OTHER_SCREEN],
            environment, stack, stdout=subprocess.DEVNULL)
        window, = wait_until(lambda: session.display.windows("BSOD: .*"), "the other's window")
        shown = time.monotonic()
        start = processor_time(process.pid)
        rest_until(shown + SHOWN_FOR / 2)
        used = memory(process.pid)
        rest_until(shown + SHOWN_FOR)
        total = processor_time(process.pid)
        size = session.display.geometry(window)[2:]
        if process.poll() is not None or size != (1280, 800):
            raise SystemExit(f"the other has ended, or its window is {size}")
        return {"processor time (ms)": total * 1000,
                "of it before its window was there (ms)": start * 1000,
                "display server (ms)": (processor_time(server) - server_before) * 1000,
                "memory (MiB)": used}


def main():
    build = pathlib.Path(sys.argv[1])
    ours, others = [], []
    with contextlib.ExitStack() as stack:
        session = stack.enter_context(Session(1280, 800))
        environment = environment_of(session)
        server = session.display.server_pid
        screen = ScreenCapture(session.display.name, stack)
        program = session.run([str(build / "quorvane")], environment, stack)
        panel = screens.open_control_panel(session.reader, program)
        for _ in range(argument(2, 3)):
            ours.append(measure_program(program, panel, server, screen))
            others.append(measure_other(session, environment, server))
    own = print_figures("one stop screen", ours)
    other = print_figures(f"xscreensaver's bsod ({OTHER_SCREEN}), {SHOWN_FOR:g} s", others)
    for key, unit in (("processor time (ms)", "ms"), ("display server (ms)", "ms"),
                      ("memory (MiB)", "MiB")):
        rows.print_row(f"stop screen: {key.split(' (')[0]}", own[key],
                       f"xscreensaver's bsod ({OTHER_SCREEN})", other[key], unit)


if __name__ == "__main__":
    main()
