"""How the virtual desktop measures sound and reads screens, for the other end-to-end tests."""

import os
import pathlib
import signal
import subprocess
import tempfile
import time
import unittest

import numpy

from harness import EndToEndTest
from virtual_desktop import pictures
from virtual_desktop.recording import LiveRecording
from virtual_desktop.screens import ENTER

RATE = 8000


def _record(samples, test):
    """A recording of samples at full scale 1 that ended just now."""
    read_end, write_end = os.pipe()
    source = test.enterContext(os.fdopen(read_end, "rb"))
    with os.fdopen(write_end, "wb") as pipe:
        recording = LiveRecording(source, RATE)
        pipe.write((samples * 32767).astype("<i2").tobytes())
    recording.wait_for_start()
    return recording


class Sound(unittest.TestCase):
    def setUp(self):
        # A second of silence, half a second of tone, a second of silence.
        tone = numpy.sin(numpy.arange(RATE // 2) * 2 * numpy.pi * 440 / RATE) / 2
        quiet = numpy.zeros(RATE)
        self.recording = _record(numpy.concatenate([quiet, tone, quiet]), self)
        self.begin = self.recording.end - 2.5

    def test_the_recording_ends_at_the_present_instant(self):
        self.assertLess(abs(self.recording.end - time.monotonic()), 1.0)

    def test_a_level_is_measured_between_two_instants(self):
        self.assertAlmostEqual(self.recording.level(self.begin + 1.1, self.begin + 1.4), -9.03, 1)
        self.assertLess(self.recording.level(self.begin + 0.1, self.begin + 0.9), -90)

    def test_sound_is_found_where_it_begins_and_ends(self):
        begun = self.recording.wait_for_sound(self.begin, 1.0)
        self.assertAlmostEqual(begun - self.begin, 1.0, delta=0.021)
        ended = self.recording.last_sound(self.begin, self.recording.end)
        self.assertAlmostEqual(ended - self.begin, 1.5, delta=0.021)

    def test_silence_has_no_sound(self):
        self.assertIsNone(self.recording.last_sound(self.begin + 1.6, self.recording.end))
        with self.assertRaises(AssertionError):
            self.recording.wait_for_sound(self.begin + 1.6, 0.2)


class Pictures(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def _draw(self, *what):
        path = self.folder / "picture.png"
        subprocess.run(["/usr/bin/convert", "-size", "550x780", *what, str(path)], check=True)
        return path

    def test_an_empty_window_has_no_detail(self):
        self.assertEqual(pictures.detail(self._draw("xc:black")), 0)
        self.assertEqual(pictures.detail(self._draw("gradient:navy-black")), 0)

    def test_the_edges_of_a_rectangle_are_detail(self):
        path = self._draw("gradient:navy-black", "-fill", "white", "-draw",
                          "rectangle 100,100 449,400")
        self.assertAlmostEqual(pictures.detail(path), 2 * 301 / (780 * 549), 4)

    def test_a_change_is_the_share_of_pixels_that_differ(self):
        before = pictures.pixels(self._draw("xc:black"))
        after = pictures.pixels(self._draw("xc:black", "-fill", "white", "-draw",
                                           "rectangle 0,0 54,77"))
        self.assertEqual(pictures.change(before, before), 0)
        self.assertAlmostEqual(pictures.change(before, after), 0.01)


class Screens(EndToEndTest):
    def test_reading_the_screen_of_an_ended_program_is_an_error(self):
        self.skip_hardware_check()
        self.launch()
        screens = self.screens()
        screens.find(ENTER)
        self.program.kill()
        self.program.wait_for_exit()
        for look in (screens.shows, screens.wait_until_gone, screens.find, screens.is_focused):
            with self.subTest(look=look.__name__):
                asked = time.monotonic()
                with self.assertRaisesRegex(AssertionError, "the program has ended"):
                    look(ENTER)
                self.assertLess(time.monotonic() - asked, 1.0)

    def test_reading_the_screen_of_a_program_that_hangs_is_an_error(self):
        self.skip_hardware_check()
        self.launch()
        screens = self.screens()
        screens.find(ENTER)
        os.kill(self.program.pid, signal.SIGSTOP)
        try:
            for look in (screens.shows, screens.wait_until_gone):
                with self.subTest(look=look.__name__), self.assertRaisesRegex(AssertionError,
                                                                              "cannot be read"):
                    look(ENTER)
        finally:
            os.kill(self.program.pid, signal.SIGCONT)
        self.assertTrue(screens.shows(ENTER))
        self.leave()


if __name__ == "__main__":
    unittest.main()
