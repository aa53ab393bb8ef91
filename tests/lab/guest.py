"""What is played inside the lab machine; what it leaves behind is judged outside.

    guest.py BUILD_DIRECTORY RESULTS_DIRECTORY [SCENARIO ...]

Every scenario has a folder of its own below the results: the program's console with the time of
each line, its end, the log of the lid device, the recorded sound. All times are CLOCK_MONOTONIC.
Without a SCENARIO all of them are played.
"""

import contextlib
import pathlib
import sys
import time

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tools"))

from virtual_desktop import waiting  # noqa: E402 (found through the line above)

import force_feedback  # noqa: E402
import keyboard_rights  # noqa: E402
import keyboards  # noqa: E402
import lids  # noqa: E402
from player import Player, TooManyRetries  # noqa: E402
from stage import Lab  # noqa: E402


def asking(lab, name):
    """Somebody asks the host for files, one after the other, while something is timed."""
    asked = 0
    with lab.watch.timed():
        until = time.monotonic() + 1
        while time.monotonic() < until:
            pathlib.Path(f"/usr/no-such-file-{asked}").exists()
            asked += 1
    lab.leave(name, "asked.json", {"asked": asked})


def play_all(lab, play):
    """Every scenario there is."""
    lids.play_all(play)
    play("asking", asking)
    with keyboards.device_manager(lab.desktop.env):
        keyboards.play_all(play)
        keyboard_rights.play_all(play)
    force_feedback.play_all(play)


def main():
    """All scenarios, or those that are asked for."""
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
