"""What is played inside the lab machine; what it leaves behind is judged outside.

    guest.py BUILD_DIRECTORY RESULTS_DIRECTORY [SCENARIO ...]

Every scenario has a folder of its own below the results: the program's console with the time of
each line, its end, the log of the lid device, the recorded sound. All times are CLOCK_MONOTONIC.
Without a SCENARIO all of them are played.
"""

import contextlib
import pathlib
import sys
import traceback

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tools"))

from desktop import waiting  # noqa: E402 (found through the line above)

import force_feedback  # noqa: E402
import keyboard_rights  # noqa: E402
import keyboards  # noqa: E402
import lids  # noqa: E402
from stage import Lab  # noqa: E402

ATTEMPTS = 4


class Player:
    """Plays scenarios, one after the other: each owns the machine's HID devices and sound."""

    def __init__(self, lab, wanted):
        self._lab = lab
        self._wanted = wanted

    def __call__(self, name, scenario, *arguments, **options):
        """Plays one; its failure is left in its folder and does not stop the others.

        A scenario in which the machine stood still says nothing about the program and is played
        again; the last attempt counts whatever it was.
        """
        self._play(ATTEMPTS, name, scenario, *arguments, **options)

    def rehearse(self, name, scenario, *arguments, **options):
        """Plays one that nobody judges: once will do."""
        self._play(1, name, scenario, *arguments, **options)

    def _play(self, attempts, name, scenario, *arguments, **options):
        if self._wanted and name not in self._wanted:
            return
        for attempt in range(1, attempts + 1):
            self._play_once(name, scenario, *arguments, **options)
            spans, complaint = self._lab.watch.take()
            self._lab.leave(name, "standstill.json", {"spans": spans, "complaint": complaint})
            if not complaint:
                break
            print(f"lab: {name}, attempt {attempt} of {attempts}: {complaint}", flush=True)
        self._lab.hand_over(name)

    def _play_once(self, name, scenario, *arguments, **options):
        print(f"lab: {name}", flush=True)
        self._lab.forget(name)
        try:
            scenario(self._lab, name, *arguments, **options)
        except Exception:  # pylint: disable=broad-except
            (self._lab.folder(name) / "failure").write_text(traceback.format_exc(),
                                                            encoding="utf-8")
            traceback.print_exc()


def main():
    """All scenarios, or those that are asked for."""
    build, results = map(pathlib.Path, sys.argv[1:3])
    waiting.slowness = 6.0
    with contextlib.ExitStack() as stack:
        lab = Lab(build, results, stack)
        play = Player(lab, sys.argv[3:])
        lids.play_all(play)
        with keyboards.device_manager(lab.desktop.env):
            keyboards.play_all(play)
            keyboard_rights.play_all(play)
        force_feedback.play_all(play)


if __name__ == "__main__":
    main()
