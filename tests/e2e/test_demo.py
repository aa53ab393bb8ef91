"""The demo and simulated machines, with real screens and real sound."""

import pathlib
import subprocess
import time
import unittest

import numpy

from harness import BUILD, EVIDENCE, OWN_LINES, REPOSITORY, EndToEndTest
from virtual_desktop.clips import read_wave
from virtual_desktop.screens import BUILD_QUALITY, CHECK, ENTER

# A lid that moves once; the times are seconds after the start.
SWING = """{
    "model": "MacBookPro18,3",
    "defaults": { "hardwareChecked": true },
    "hid": [{ "product": "0x8104", "lid": [[0, 90], [%(begin)s, 90], [%(end)s, 30]] }]
}"""


FIRST_SOUND = 15.0
"""Seconds of the demo after which its lid begins to move."""

SOUNDING = (
    ("the lid that closes", 15.1, 16.0), ("the lid that opens", 18.2, 19.2),
    ("the keyboard", 20.6, 22.1), ("the fan", 23.2, 25.2), ("the engine", 32.7, 41.2),
)
SILENT = (
    ("the lid that rests", 17.3, 17.9), ("the fan that is off", 26.5, 31.5),
    ("what has been stopped", 42.5, 43.4),
)
"""Begin and end, in seconds of the demo, of what has to be heard and of what has to be silent."""


class Demo(unittest.TestCase):
    listens = True

    def test_the_demo_without_a_display_leaves_pictures_and_sound(self):
        folder = EVIDENCE / "demo"
        begun = time.monotonic()
        done = subprocess.run(
            [str(REPOSITORY / "tools" / "demo"), str(BUILD), "--output", str(folder)],
            env={"PATH": "/usr/bin:/bin"}, capture_output=True, text=True, timeout=150)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertLess(time.monotonic() - begun, 100)
        files = [pathlib.Path(line) for line in done.stdout.splitlines() if line.startswith("/")]
        self.assertEqual([file.suffix for file in files], [".png"] * 4 + [".wav"])
        self.assertEqual(len({file.read_bytes() for file in files}), 5)
        self._check_sound(files[-1])

    def _check_sound(self, file):
        samples, rate = read_wave(file)
        loud = numpy.flatnonzero(numpy.abs(samples) > 100 / 32768) / rate
        # The lid begins to move at 15 s of the demo, with the first sound.
        start = loud[0] - FIRST_SOUND
        for name, begin, end in SOUNDING:
            for at in numpy.arange(begin, end, 0.5):
                self.assertTrue(((loud >= start + at) & (loud < start + at + 0.5)).any(),
                                f"{name} is silent at {at:.1f} s")
        for name, begin, end in SILENT:
            heard = loud[(loud >= start + begin) & (loud < start + end)]
            self.assertEqual(len(heard), 0, f"{name} is heard: {heard[:1] - start} s")


class Simulated(EndToEndTest):
    listens = True

    def test_the_demo_leaves_the_users_settings_alone(self):
        self.launch("--demo")
        screens = self.screens()
        screens.press(CHECK)
        self.wait_until(lambda: screens.shows(ENTER), "the warning", 15)
        self.leave(OWN_LINES)
        left = list(pathlib.Path(self.environment["XDG_CONFIG_HOME"]).rglob("*"))
        self.assertEqual([str(path) for path in left if path.is_file()], [])

    def test_a_simulated_machine_is_announced_and_creaks(self):
        file = pathlib.Path(self.home, "swing.scenario")
        file.write_text(SWING % {"begin": 6.0, "end": 8.0})
        self.launch("--simulated", str(file))
        begun = time.monotonic()
        self.program.errors.wait_for(lambda line: "simulated" in line.lower(), "an announcement")
        screens = self.screens()
        screens.press(ENTER)
        screens.toggle(BUILD_QUALITY)
        self.program.wait_for_line(
            "✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=90°")
        self.assertLess(time.monotonic() - begun, 5.5, "too late for the lid")
        moves = self.recording.wait_for_sound(begun, 8.0)
        self.assertGreater(moves - begun, 5.5)
        self.assert_creaks(moves, moves + 1.5, "while the lid moves")
        self.assert_silent(begun + 9.0, begun + 9.5, "after the lid has come to rest")
        self.leave(OWN_LINES)


if __name__ == "__main__":
    unittest.main()
