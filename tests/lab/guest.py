"""Plays the scenarios inside the lab machine; the host tests what they leave.

    guest.py BUILD_DIRECTORY RESULTS_DIRECTORY [SCENARIO ...]

Each scenario leaves a folder below the results: the program's console with times and its exit
status, the logs of its devices, the recorded sound. All times are CLOCK_MONOTONIC. Without a
SCENARIO all are played.
"""

import contextlib
import pathlib
import sys
import time

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tools"))

from virtual_desktop import waiting  # noqa: E402 (found through the line above)

import force_feedback  # noqa: E402
import key_reader  # noqa: E402
import key_traces  # noqa: E402
import keyboard_rights  # noqa: E402
import keyboards  # noqa: E402
import lid_faults  # noqa: E402
import lids  # noqa: E402
import machine_sleep  # noqa: E402
from player import Player, TooManyRetries  # noqa: E402
from lab_desktop import Lab  # noqa: E402
from seat import Seat  # noqa: E402


def file_lookups(lab, name):
    """Looks up files of the host, one after the other, while timed."""
    count = 0
    with lab.watch.timed():
        until = time.monotonic() + 1
        while time.monotonic() < until:
            pathlib.Path(f"/usr/no-such-file-{count}").exists()
            count += 1
    lab.save(name, "lookups.json", {"count": count})


def play_all(lab, play):
    """Plays every scenario."""
    lids.play_all(play)
    play("file_lookups", file_lookups)
    with contextlib.ExitStack() as stack:
        seat = Seat(lab, stack)
        lid_faults.play_all(play)
        machine_sleep.play_all(play)
        for scenarios in (keyboards, key_reader, key_traces, keyboard_rights):
            scenarios.play_all(play, seat)
    force_feedback.play_all(play)


def main():
    """Plays all scenarios, or those named."""
    build, results = map(pathlib.Path, sys.argv[1:3])
    waiting.slowness = 6.0
    with contextlib.ExitStack() as stack:
        lab = Lab(build, results, stack)
        play = Player(lab, sys.argv[3:])
        try:
            play_all(lab, play)
            print(f"lab: {play.finish()}", flush=True)
        except TooManyRetries as error:
            sys.exit(f"lab: {error}")


if __name__ == "__main__":
    main()
