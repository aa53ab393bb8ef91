"""The program on simulated machines, with its real screens and its real sound."""

import pathlib
import subprocess
import time
import unittest
import wave

import numpy

from harness import BUILD, CHECK, CREAK_SWITCH, ENTER, EVIDENCE, OWN_WORDS, REPOSITORY, EndToEndTest

# A lid that moves once, between two instants after the start.
SWING = """{
    "model": "MacBookPro18,3",
    "defaults": { "hardwareChecked": true },
    "hid": [{ "product": "0x8104", "lid": [[0, 90], [%(begin)s, 90], [%(end)s, 30]] }]
}"""


class Demo(EndToEndTest):
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
        self._check_that_the_lid_rests(files[-1])

    def _check_that_the_lid_rests(self, file):
        with wave.open(str(file), "rb") as recording:
            rate = recording.getframerate()
            samples = numpy.frombuffer(recording.readframes(recording.getnframes()), "<i2")
        loud = numpy.abs(samples.astype(int)) > 100
        edges = numpy.flatnonzero(loud)
        self.assertGreater(edges[0] / rate, 3.0, "silent before the switch is on")
        rests = numpy.diff(edges) / rate
        self.assertGreater(rests.max(), 0.5, "silent while the lid rests")
        # The fan for 3 s and the engine for some 8, beside 3 s of lid.
        self.assertGreater(numpy.count_nonzero(loud.reshape(-1)[:len(loud) // rate * rate]
                                               .reshape(-1, rate).any(axis=1)), 13)

    def test_the_demo_leaves_the_persons_settings_alone(self):
        self.launch("--demo")
        screens = self.screens()
        screens.press(CHECK)
        self.wait_until(lambda: screens.shows(ENTER), "the warning", 15)
        self.leave(OWN_WORDS)
        left = list(pathlib.Path(self.environment["XDG_CONFIG_HOME"]).rglob("*"))
        self.assertEqual([str(path) for path in left if path.is_file()], [])

    def test_a_simulated_machine_says_so_and_plays(self):
        file = pathlib.Path(self.home, "swing.scenario")
        file.write_text(SWING % {"begin": 6.0, "end": 8.0})
        self.launch("--simulated", str(file))
        begun = time.monotonic()
        self.program.errors.wait_for(lambda line: "simulated" in line.lower(), "an announcement")
        screens = self.screens()
        screens.press(ENTER)
        screens.toggle(CREAK_SWITCH)
        self.program.wait_for_line(
            "✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=90°")
        self.assertLess(time.monotonic() - begun, 5.5, "too late for the lid")
        moves = self.recording.wait_for_sound(begun, 8.0)
        self.assertGreater(moves - begun, 5.5)
        self.assert_creaks(moves, moves + 1.5, "while the lid moves")
        self.assert_silent(begun + 9.0, begun + 9.5, "after the lid has come to rest")
        self.leave(OWN_WORDS)


if __name__ == "__main__":
    unittest.main()
