"""The fan runs until it is switched off.

QUORVANE_FAN_SECONDS is for how many seconds the fan is recorded (by default 11).
"""

import os
import time
import unittest

import numpy

from harness import REPOSITORY, EndToEndTest
from virtual_desktop import clips
from virtual_desktop.screens import LEAVE, THERMALS

FAN = REPOSITORY / "resources" / "fanmac.mp3"
SECONDS = float(os.environ.get("QUORVANE_FAN_SECONDS", "11"))

WINDOW = 0.01
LATE = 1.0
"""Seconds that a busy machine may be late."""


class Endless(EndToEndTest):
    listens = True

    def test_the_fan_runs_without_a_gap_or_a_click(self):
        panel = self.launch_into_control_panel(creak=False)
        self.assertIn("✅ [FAN] fanmac.mp3 loaded", self.program.console.text)
        pressed = time.monotonic()
        panel.switch(THERMALS, True)
        started = self.recording.wait_for_sound(pressed - 0.1, 3.0)
        self.assertLess(started - pressed, LATE)
        time.sleep(0.5)
        self.hear(self._check_rounds)
        off = time.monotonic()
        panel.toggle(THERMALS)
        self.assert_silent(off + LATE, off + LATE + 1.0, "after the fan")
        self.leave()

    def _check_rounds(self):
        begin = time.monotonic()
        end = begin + SECONDS
        samples = self.recording.samples(begin, end)
        rate = self.session.sound.RATE
        size = round(WINDOW * rate)
        windows = samples[:len(samples) // size * size].reshape(-1, size)
        levels = numpy.sqrt(numpy.mean(numpy.square(windows), axis=1))
        quietest = levels.min() / levels.mean()
        steps = numpy.abs(numpy.diff(samples))
        largest = self._largest_step_of_the_clip(rate)
        print(f"fan: quietest 10 ms at {quietest:.2f} of the mean, largest step "
              f"{steps.max():.4f}, the clip's own {largest:.4f}, {len(samples) / rate:.1f} s with "
              f"{(end - begin) / clips.length(FAN):.1f} rounds")
        self.assertGreater(quietest, 0.1, f"a gap at {levels.argmin() * WINDOW:.2f} s")
        # A tenth more, for the resampling.
        self.assertLess(steps.max(), 1.1 * largest, f"a click at {steps.argmax() / rate:.3f} s")
        self._check_order(samples, rate)

    def _check_order(self, samples, rate):
        """The clip is played in order, and its end is followed by its beginning."""
        loop = clips.Loop(FAN, rate)
        size = rate // 2
        places, likenesses = zip(*(loop.locate(samples[first:first + size])
                                   for first in range(0, len(samples) - size, size)))
        self.assertGreater(min(likenesses), 0.97, "not the clip")
        seams = 0
        for earlier, later in zip(places, places[1:]):
            seams += later < earlier
            off = (later - earlier - size + loop.period // 2) % loop.period - loop.period // 2
            self.assertLess(abs(off), 0.005 * rate, f"from {earlier} to {later}, of {loop.period}")
        print(f"fan: {seams} seams, the least likeness is {min(likenesses):.3f}")
        self.assertGreaterEqual(seams, SECONDS * rate // loop.period)

    @staticmethod
    def _largest_step_of_the_clip(rate):
        """The largest difference between two samples as played, away from the clip's ends."""
        samples, own_rate = clips.decode(FAN)
        inner = samples[own_rate // 10:-own_rate // 10]
        count = len(inner)
        wanted = round(count * rate / own_rate)
        spectrum = numpy.fft.rfft(inner)
        resampled = numpy.fft.irfft(spectrum, wanted) * wanted / count
        # FFT resampling rings at the ends, as this is no loop. 0.6 is the fan's volume.
        edge = rate // 20
        return 0.6 * float(numpy.abs(numpy.diff(resampled[edge:-edge])).max())


class Switch(EndToEndTest):
    listens = True

    def test_the_fan_starts_again_each_time(self):
        panel = self.launch_into_control_panel(creak=False)
        for _ in range(2):
            pressed = time.monotonic()
            panel.switch(THERMALS, True)
            self.recording.wait_for_sound(pressed - 0.1, 3.0)
            off = time.monotonic()
            panel.switch(THERMALS, False)
            self.assert_silent(off + LATE, off + LATE + 0.5, "after the fan")
        self.leave()

    def test_the_stop_button_stops_the_fan(self):
        panel = self.launch_into_control_panel(creak=False)
        pressed = time.monotonic()
        panel.switch(THERMALS, True)
        self.recording.wait_for_sound(pressed - 0.1, 3.0)
        panel.press(LEAVE)
        off = time.monotonic()
        self.assert_silent(off + LATE, off + LATE + 0.5, "after the stop button")
        self.leave()

    def test_without_the_sound_file_the_switch_stays_off(self):
        folder = self.resources_without("fanmac.mp3")
        panel = self.launch_into_control_panel(creak=False, QUORVANE_RESOURCES=str(folder))
        self.assertIn("⚠️ [FAN] fanmac.mp3 not found", self.program.console.text)
        self._check_that_it_stays_off(panel)
        self.leave()

    def test_with_a_damaged_sound_file_the_switch_stays_off(self):
        folder = self.resources_with_damaged("fanmac.mp3")
        panel = self.launch_into_control_panel(creak=False, QUORVANE_RESOURCES=str(folder))
        self.assertIn("✅ [FAN] fanmac.mp3 loaded", self.program.console.text)
        self._check_that_it_stays_off(panel)
        # The decoder's library writes to standard error.
        self.leave("")

    def _check_that_it_stays_off(self, panel):
        pressed = time.monotonic()
        panel.toggle(THERMALS)
        self.assert_silent(pressed, pressed + 1.0, "a fan without its sound")
        self.assertFalse(panel.is_on(THERMALS))

    def test_without_a_sound_device_the_switch_stays_on(self):
        panel = self.launch_into_control_panel(creak=False,
                                               PULSE_SERVER=f"unix:{self.home}/no-server",
                                               ALSA_CONFIG_PATH="/nonexistent")
        panel.switch(THERMALS, True)
        time.sleep(1)
        self.assertTrue(panel.is_on(THERMALS))
        panel.switch(THERMALS, False)
        self.leave("")


if __name__ == "__main__":
    unittest.main()
