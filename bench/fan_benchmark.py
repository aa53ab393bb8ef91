#!/usr/bin/python3
"""What the running fan, with its pulses, costs: beside paplay with the same sound.

Usage: fan_benchmark.py BUILD_FOLDER [TURNS] [SECONDS]

In turn on one virtual display and one sound server: the program's control panel with the fan off and
with it on, and paplay with the fan's sound as often as it takes. Prints figures, and judges none of
them.
"""

import contextlib
import os
import pathlib
import statistics
import subprocess
import sys
import time
import wave

import rows
from stop_screen_benchmark import processor_time

from virtual_desktop import processes
from virtual_desktop.session import Session

REPOSITORY = pathlib.Path(__file__).resolve().parents[1]
FAN = REPOSITORY / "resources" / "fanmac.mp3"
SWITCH = "Thermals"
SETTLING = 3.0
"""Seconds after a change that are left out."""


def share(pid, seconds):
    """Percent of one core that a process takes in the coming seconds."""
    time.sleep(SETTLING)
    begun, before = time.monotonic(), processor_time(pid)
    time.sleep(seconds)
    return 100 * (processor_time(pid) - before) / (time.monotonic() - begun)


def write_repeated(path, seconds):
    """A WAV of the fan's sound, over and over."""
    once = f"{path}.once"
    subprocess.run(["lame", "--quiet", "--decode", FAN, once], check=True)
    with wave.open(once, "rb") as source, wave.open(str(path), "wb") as target:
        frames = source.readframes(source.getnframes())
        target.setparams(source.getparams())
        for _ in range(1 + int(seconds * source.getframerate() / source.getnframes())):
            target.writeframes(frames)


def measure_paplay(session, environment, sound, seconds):
    with contextlib.ExitStack() as stack:
        process = processes.start(["paplay", str(sound)], environment, stdout=subprocess.DEVNULL)
        stack.callback(processes.end, process)
        return share(process.pid, seconds)


def print_figures(name, figures):
    each = "  ".join(f"{figure:.2f}" for figure in figures)
    print(f"{name}: median {statistics.median(figures):.2f} % of a core  ({each})")


def main():
    build = pathlib.Path(sys.argv[1])
    turns = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    seconds = float(sys.argv[3]) if len(sys.argv) > 3 else 20.0
    off, on, other = [], [], []
    with contextlib.ExitStack() as stack:
        session = stack.enter_context(Session(1280, 800))
        environment = session.environment(os.path.join(session.directory, "home"))
        settings = pathlib.Path(environment["XDG_CONFIG_HOME"], "quorvane", "quorvane.ini")
        settings.parent.mkdir(parents=True)
        settings.write_text("[General]\nhardwareChecked=true\n")
        sound = pathlib.Path(session.directory, "fan.wav")
        write_repeated(sound, seconds + 2 * SETTLING)
        program = session.run([str(build / "quorvane")], environment, stack)
        screens = session.reader.application(program)
        screens.press("MAKE ME SUFFER 😭")
        screens.find(SWITCH)
        for _ in range(turns):
            off.append(share(program.pid, seconds))
            screens.toggle(SWITCH)
            on.append(share(program.pid, seconds))
            screens.toggle(SWITCH)
            other.append(measure_paplay(session, environment, sound, seconds))
    fan = [with_fan - without for with_fan, without in zip(on, off)]
    print_figures("control panel, fan off", off)
    print_figures("control panel, fan on", on)
    print_figures("the fan itself", fan)
    print_figures("paplay", other)
    rows.print_row("fan: processor", statistics.median(fan), "paplay", statistics.median(other),
                   "% of a core")


if __name__ == "__main__":
    main()
