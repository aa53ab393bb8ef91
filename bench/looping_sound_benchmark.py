#!/usr/bin/python3
"""What the fan's endless sound costs, beside `paplay` with the same sound, and what a held output.

Usage: looping_sound_benchmark.py BUILD_FOLDER [TURNS]

All play in turn to one null sink, each for 20 s. Prints figures, and judges none of them.
"""

import contextlib
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import rows
from stop_screen_benchmark import memory, print_figures, processor_time

from virtual_desktop import processes
from virtual_desktop.sound import SoundServer

SOUND = pathlib.Path(__file__).resolve().parents[1] / "resources/fanmac.mp3"
SETTLES = 1.0
LASTS = 20.0


def measure(command, environment):
    """A player's figures, from its second second on."""
    with contextlib.ExitStack() as stack:
        player = processes.start(command, environment, stdout=subprocess.DEVNULL)
        stack.callback(processes.end, player)
        time.sleep(SETTLES)
        begun, before = time.monotonic(), processor_time(player.pid)
        time.sleep(LASTS)
        spent, elapsed = processor_time(player.pid) - before, time.monotonic() - begun
        if player.poll() is not None:
            raise SystemExit(f"{command[0]} has ended")
        return {"processor time (ms in 20 s)": spent / elapsed * LASTS * 1000,
                "memory (MiB)": memory(player.pid)}


def main():
    build = pathlib.Path(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    turns = {"file player, looping": [], "paplay": [], "held output, silent": []}
    with contextlib.ExitStack() as stack:
        directory = stack.enter_context(tempfile.TemporaryDirectory())
        environment = processes.base_environment(os.path.join(directory, "home"))
        server = SoundServer(environment, os.path.join(directory, "sound"))
        server.start(stack)
        environment["PULSE_SERVER"] = server.address
        # paplay knows no loops, so it gets the repetitions in one file, decoded already.
        once, long = (os.path.join(directory, name) for name in ("once.wav", "long.wav"))
        subprocess.run(["lame", "--quiet", "--decode", SOUND, once], check=True)
        subprocess.run(["sox", "-D", once, long, "repeat", "5"], check=True)
        commands = {"file player, looping": [build / "looping_sound", SOUND],
                    "paplay": ["paplay", long],
                    "held output, silent": [build / "looping_sound", "hold"]}
        for _ in range(count):
            for name, command in commands.items():
                turns[name].append(measure(command, environment))
    medians = {name: print_figures(name, figures) for name, figures in turns.items()}
    for key, value in medians["file player, looping"].items():
        name, unit = key.rstrip(")").split(" (")
        rows.print_row(f"looping file player: {name}", value, "paplay", medians["paplay"][key], unit)


if __name__ == "__main__":
    main()
