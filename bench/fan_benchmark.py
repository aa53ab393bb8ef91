#!/usr/bin/python3
"""What the running fan costs, its pulses and its sound, compared with paplay playing the same sound.

Usage: fan_benchmark.py BUILD_FOLDER [TURNS] [SECONDS]

In turn on one virtual display and one sound server: the program's control panel with the fan off
and on, the same without a sound server, which leaves the pulses, and paplay with the fan's sound.
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


class Panel:
    """The program's control panel."""

    def __init__(self, session, build, environment, stack):
        program = session.run([str(build / "quorvane")], environment, stack)
        self._panel = screens.open_control_panel(session.reader, program)
        self._pid = program.pid

    def measure(self, seconds):
        """What it takes with the fan off, and with the fan on."""
        off = percent(self._pid, seconds)
        self._panel.toggle(screens.THERMALS)
        on = percent(self._pid, seconds)
        self._panel.toggle(screens.THERMALS)
        return off, on


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
        panel = Panel(session, build, environment, stack)
        silent = Panel(session, build, dict(
            environment, PULSE_SERVER=f"unix:{session.directory}/no-server"), stack)
        for _ in range(count):
            off, on = panel.measure(seconds)
            silent_off, silent_on = silent.measure(seconds)
            turns.append({"control panel, fan off": off, "control panel, fan on": on,
                          "the fan itself": on - off, "its pulses": silent_on - silent_off,
                          "its sound": on - off - (silent_on - silent_off),
                          "paplay": measure_paplay(environment, sound, seconds)})
    medians = print_figures("percent of a core", turns)
    for what, key in (("fan", "the fan itself"), ("fan without its pulses", "its sound")):
        rows.print_row(f"{what}: processor", medians[key], "paplay", medians["paplay"],
                       "% of a core")


if __name__ == "__main__":
    main()
