#!/usr/bin/python3
"""What the running fan costs, with its pulses, compared with paplay playing the same sound.

Usage: fan_benchmark.py BUILD_FOLDER [TURNS] [SECONDS]

In turn on one virtual display and one sound server: the program's control panel with the fan off,
with the fan on, and paplay with the fan's sound.
"""

import contextlib
import pathlib
import subprocess
import sys
import time

import rows
from measuring import argument, environment_of, print_figures, screens, shares, write_repeated_fan

from virtual_desktop import processes
from virtual_desktop.session import Session

SETTLING = 3.0
"""Seconds after a change that are left out."""


def percent(pid, seconds):
    """Percent of one core that a process takes once it has settled."""
    time.sleep(SETTLING)
    return 100 * shares(seconds, pid)[0]


def measure_paplay(environment, sound, seconds):
    with contextlib.ExitStack() as stack:
        process = processes.start(["paplay", str(sound)], environment, stack,
                                  stdout=subprocess.DEVNULL)
        return percent(process.pid, seconds)


def main():
    build = pathlib.Path(sys.argv[1])
    count, seconds = argument(2, 3), argument(3, 20.0)
    turns = []
    with contextlib.ExitStack() as stack:
        session = stack.enter_context(Session(1280, 800))
        environment = environment_of(session)
        sound = pathlib.Path(session.directory, "fan.wav")
        write_repeated_fan(sound, seconds + 2 * SETTLING)
        program = session.run([str(build / "quorvane")], environment, stack)
        panel = screens.open_control_panel(session.reader, program)
        for _ in range(count):
            off = percent(program.pid, seconds)
            panel.toggle(screens.THERMALS)
            on = percent(program.pid, seconds)
            panel.toggle(screens.THERMALS)
            turns.append({"control panel, fan off": off, "control panel, fan on": on,
                          "the fan itself": on - off,
                          "paplay": measure_paplay(environment, sound, seconds)})
    medians = print_figures("percent of a core", turns)
    rows.print_row("fan: processor", medians["the fan itself"], "paplay", medians["paplay"],
                   "% of a core")


if __name__ == "__main__":
    main()
