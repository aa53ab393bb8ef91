#!/usr/bin/python3
"""What the fan's looped sound costs, compared with `paplay`, and what a held output costs.

Usage: looping_sound_benchmark.py BUILD_FOLDER [TURNS]

All play in turn to one null sink, each for 20 s.
"""

import contextlib
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import rows
from measuring import FAN, argument, costs, memory, print_figures, write_repeated_fan

from virtual_desktop import processes
from virtual_desktop.sound_server import SoundServer

SETTLES = 1.0
LASTS = 20.0


def measure(command, environment):
    """A player's figures, after its first second."""
    with contextlib.ExitStack() as stack:
        player = processes.start(command, environment, stack, stdout=subprocess.DEVNULL)
        time.sleep(SETTLES)
        (milliseconds, wake_ups), = costs(LASTS, [player.pid])
        if player.poll() is not None:
            raise SystemExit(f"{command[0]} has ended")
        return {"processor time (ms/s)": milliseconds, "wake-ups (/s)": wake_ups,
                "memory (MiB)": memory(player.pid)}


def main():
    build = pathlib.Path(sys.argv[1])
    turns = {"file player, looping": [], "paplay": [], "held output, silent": []}
    with contextlib.ExitStack() as stack:
        directory = stack.enter_context(tempfile.TemporaryDirectory())
        environment = processes.base_environment(os.path.join(directory, "home"))
        server = SoundServer(environment, os.path.join(directory, "sound"))
        server.start(stack)
        environment["PULSE_SERVER"] = server.address
        repeated = os.path.join(directory, "repeated.wav")
        write_repeated_fan(repeated, SETTLES + LASTS + 5)
        commands = {"file player, looping": [build / "looping_sound", FAN],
                    "paplay": ["paplay", repeated],
                    "held output, silent": [build / "looping_sound", "hold"]}
        for _ in range(argument(2, 3)):
            for name, command in commands.items():
                turns[name].append(measure(command, environment))
    medians = {name: print_figures(name, figures) for name, figures in turns.items()}
    for key, value in medians["file player, looping"].items():
        name, unit = key.rstrip(")").split(" (")
        rows.print_row(f"looping file player: {name}", value, "paplay", medians["paplay"][key],
                       unit)


if __name__ == "__main__":
    main()
