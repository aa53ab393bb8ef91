"""The start-up sound when the machine wakes up and when the program was opened at login."""

import contextlib
import pathlib
import statistics
import subprocess
import sys
import time
import unittest

import numpy

from harness import REPOSITORY, EndToEndTest
from virtual_desktop import clips, processes
from virtual_desktop.screens import CHECK, ENTER, STARTUP, TITLE

TRACTOR = REPOSITORY / "resources" / "tractor.mp3"

LOADED = "✅ [STARTUP] tractor.mp3 loaded"
GENERATED = "✅ [RUMBLE] Buffer generated: 25.0Hz + 12.5Hz sub"
PLAYING = "🚜 [STARTUP] Playing tractor + rumble + haptic!"
BEGINNING = [PLAYING, "🔊 [RUMBLE] Started with 3.0s ramp-up", "📳 [HAPTIC] Started with ramp-up"]
COMPLETE = "🚜 [STARTUP] Sequence complete"
ENDING = ["🔊 [RUMBLE] Stopped", "📳 [HAPTIC] Stopped", COMPLETE]

RAMP = 3.0
STEPS = 30
LATE = 1.0
"""Seconds that a busy machine may be late."""

EARLY = 0.1
"""Seconds by which the time of a console line or a sound may be too early."""


class StartupTest(EndToEndTest):
    """The base of the tests of the sequence."""

    def wake(self, services):
        """Wakes the machine up once; returns the instant at which the sequence began."""
        before = len(self.times(PLAYING))
        self.wait_until_sleep_is_watched()
        services.sleep_and_wake()
        return self.wait_until(lambda: self.times(PLAYING)[before:], PLAYING, 1.0)[0]

    def startup_lines(self):
        return [line for line in self.program.console.text if line in BEGINNING + ENDING]

    def times(self, text):
        return self.program.console.times(text)

    def resources_with_silence(self, seconds):
        """Resources with a silent clip, so that only the rumble is heard."""
        folder = self.resources_without("tractor.mp3")
        clips.write_silence(folder / "tractor.mp3", seconds)
        return str(folder)

    def write_autostart_entry(self):
        folder = pathlib.Path(self.environment["XDG_CONFIG_HOME"], "autostart")
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "org.quorvane.Quorvane.desktop").write_text(
            "[Desktop Entry]\nType=Application\nName=Quorvane\nExec=quorvane\n", encoding="utf-8")


class Waking(StartupTest):
    listens = True

    def test_a_wake_up_plays_the_sequence_as_long_as_the_clip(self):
        clip = clips.length(TRACTOR)
        services = self.start_system_bus("login")
        self.skip_hardware_check()
        self.launch()
        self.screens()
        self.assert_silent(self.started, time.monotonic(), "before the machine wakes")
        begun = self.wake(services)
        sounded = self.recording.wait_for_sound(begun - EARLY, 2.0)
        self.assertLess(sounded - begun, 0.1 + LATE)
        # A second wake-up meanwhile changes nothing.
        services.sleep_and_wake()
        completed = self.program.wait_for_line(COMPLETE, clip + 10)
        self.assertGreater(completed - begun, clip - EARLY)
        self.assertLess(completed - begun, clip + LATE)
        self.assertEqual(self.startup_lines(), BEGINNING + ENDING)
        self.assert_roars(begun + LATE, completed - LATE)
        self.assert_silent(completed + LATE, completed + LATE + 1.0, "after the sequence")

        services.sleep_and_wake()
        self.wait_until(lambda: len(self.times(PLAYING)) == 2, "the next sequence")
        self.leave()

    def assert_roars(self, begin, end):
        """Both are heard: the clip above 300 Hz, where the rumble has nothing, and the rumble."""
        samples = self.recording.samples(begin, end)
        spectrum = numpy.square(numpy.abs(numpy.fft.rfft(samples)))
        frequencies = numpy.fft.rfftfreq(len(samples), 1 / self.session.sound.RATE)
        power = 2 * spectrum / len(samples) ** 2
        engine = 10 * numpy.log10(power[frequencies > 300].sum())
        rumble = 10 * numpy.log10(power[(frequencies > 8) & (frequencies < 80)].sum())
        self.assertGreater(engine, -50, "the engine")
        self.assertGreater(rumble, -30, "the rumble")

    def test_the_rumble_rises_evenly_over_three_seconds(self):
        services = self.start_system_bus("login")
        self.skip_hardware_check()
        self.launch(QUORVANE_RESOURCES=self.resources_with_silence(6))
        self.screens()
        self.hear(lambda: self._check_rise(services))
        self.leave()

    def _check_rise(self, services):
        """Each step but the first ones, which are too soft, is recorded at its volume.

        A delay that all share, from the console line to the recording, is no error.
        """
        before = len(self.times(COMPLETE))
        begun = self.wake(services)
        self.wait_until(lambda: len(self.times(COMPLETE)) > before, "the end of the sequence", 20)
        length = RAMP / STEPS
        gains = [self._gain(begun + i * length, length) for i in range(round(5.5 / length))]
        steady = [gain for gain in gains[STEPS + 5:] if gain is not None]
        self.assertGreater(len(steady), 15, "the rumble at full volume")
        full = statistics.median(steady)
        errors = [(step, gain / full - step / STEPS) for step, gain in enumerate(gains[:STEPS])
                  if gain is not None]
        self.assertGreater(len(errors), STEPS - 7, "the steps that are heard")
        common = statistics.median(error for _, error in errors)
        self.assertLess(-common * RAMP, LATE)
        self.assertGreater(-common * RAMP, -EARLY)
        self.assertLess(max(abs(error - common) for _, error in errors), 0.12)

    def _gain(self, begin, length):
        """The volume of the rumble for `length` seconds; None if it has gaps or is too soft."""
        rate = self.session.sound.RATE
        heard = self.recording.samples(begin, begin + length)
        # Anywhere in its loop, which is a second long.
        _, correlation, gain = clips.find(heard, rumble(numpy.arange(2 * rate) / rate), rate)
        return gain if correlation >= 0.98 else None

    def test_switched_off_a_wake_up_is_silent(self):
        services = self.start_system_bus("login")
        panel = self.launch_into_control_panel(creak=False)
        self.wait_until(lambda: panel.is_on(STARTUP), "the switch, which is on at first")
        panel.switch(STARTUP, False)
        self.wait_until_sleep_is_watched()
        off = time.monotonic()
        services.sleep_and_wake()
        self.assert_silent(off, off + 2.0, "a machine that wakes with the switch off")
        self.assertEqual(self.startup_lines(), [])
        panel.switch(STARTUP, True)
        self.wake(services)
        self.leave()


class OpenedAtLogin(StartupTest):
    """On a desktop that does not give a new window the keyboard focus."""

    waits = True

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        config = pathlib.Path(cls.session.directory, "no-focus.xml")
        config.write_text("""<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc"><focus><focusNew>no</focusNew></focus>
</openbox_config>""", encoding="utf-8")
        processes.start(
            ["openbox", "--sm-disable", "--replace", "--config-file", config],
            cls.session.environment(cls.session.directory),
            cls.enterClassContext(contextlib.ExitStack()),
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def test_in_the_background_it_plays_once_after_half_a_second(self):
        self.write_autostart_entry()
        self.launch(QUORVANE_RESOURCES=self.resources_with_silence(2))
        loaded, _ = self.program.console.wait_for(lambda line: line == GENERATED, GENERATED)
        playing = self.program.wait_for_line(PLAYING)
        self.assertGreater(playing - loaded, 0.5 - EARLY)
        self.program.wait_for_line(COMPLETE)
        time.sleep(1)
        self.assertEqual(self.startup_lines(), BEGINNING + ENDING)
        self.leave()

    def test_without_an_autostart_entry_it_stays_silent(self):
        self.launch()
        screens = self.screens()
        screens.find(CHECK)
        time.sleep(1.5)
        self.assertEqual(self.startup_lines(), [])
        self.leave()


class OpenedByHand(StartupTest):
    """On a desktop that gives a new window the keyboard focus."""

    waits = True

    STARTS = 5
    MOST_LATE = 3
    """The most starts that may not count because the window was not in front in time."""

    def test_in_front_it_stays_silent(self):
        self.write_autostart_entry()
        resources = self.resources_with_silence(1)
        delays = []
        while sum(delay < 0.5 - EARLY for delay in delays) < self.STARTS:
            self.launch(QUORVANE_RESOURCES=resources)
            delays.append(self._wait_until_it_is_in_front())
            self.assertLessEqual(sum(delay >= 0.5 - EARLY for delay in delays), self.MOST_LATE,
                                 f"in front after {delays} s")
            time.sleep(1)
            if delays[-1] < 0.5 - EARLY:
                self.assertEqual(self.startup_lines(), [], f"in front after {delays[-1]:.2f} s")
            self.leave()
        print("in front after", *(f"{delay:.2f}" for delay in delays), "s", file=sys.stderr)

    def _wait_until_it_is_in_front(self):
        """Returns how long after loading its sounds the program's window has the keyboard focus."""
        display = self.session.display
        self.wait_until(lambda: (found := display.windows(TITLE))
                        and display.focused() == found[0], "the window")
        focused = time.monotonic()
        loaded, = self.times(GENERATED)
        return focused - loaded


def rumble(times):
    """The rumble at full volume, at these seconds since its loop began."""
    tau = 2 * numpy.pi * times
    partials = 0.5 * numpy.sin(25 * tau) + 0.3 * numpy.sin(50 * tau) + 0.2 * numpy.sin(12.5 * tau)
    return numpy.abs(numpy.sin(4 * tau)) * partials


class Faults(StartupTest):
    listens = True

    def _wake_twice(self, services):
        self.wait_until_sleep_is_watched()
        for _ in range(2):
            services.sleep_and_wake()
            time.sleep(0.5)

    def test_without_the_clip_a_wake_up_does_nothing(self):
        services = self.start_system_bus("login")
        folder = self.resources_without("*.mp3")
        screens = self.launch_into_control_panel(creak=False, QUORVANE_RESOURCES=str(folder))
        begun = time.monotonic()
        self._wake_twice(services)
        self.assert_silent(begun, begun + 1.5, "a wake-up without a clip")
        self.assertEqual(self.startup_lines(), [])
        self.assertNotIn(LOADED, self.program.console.text)
        self.assertIn(GENERATED, self.program.console.text)
        self.assertTrue(screens.is_on(STARTUP))
        self.leave()

    def test_with_a_damaged_clip_a_wake_up_does_nothing(self):
        services = self.start_system_bus("login")
        folder = self.resources_with_damaged("creaking.mp3", "fanmac.mp3", "keyboard.mp3",
                                             "tractor.mp3")
        self.launch_into_control_panel(creak=False, QUORVANE_RESOURCES=str(folder))
        begun = time.monotonic()
        self._wake_twice(services)
        self.assert_silent(begun, begun + 1.5, "a wake-up with a damaged clip")
        self.assertEqual(self.startup_lines(), [])
        self.assertIn(LOADED, self.program.console.text)
        # The decoder's library writes to standard error.
        self.leave("")

    def test_without_a_sound_device_the_sequence_takes_as_long(self):
        services = self.start_system_bus("login")
        self.skip_hardware_check()
        folder = self.resources_with_silence(3)
        self.launch(QUORVANE_RESOURCES=folder, PULSE_SERVER=f"unix:{self.home}/no-server",
                    ALSA_CONFIG_PATH="/nonexistent")
        self.screens().find(ENTER)
        begun = self.wake(services)
        completed = self.program.wait_for_line(COMPLETE, 20)
        self.assertGreater(completed - begun, 3 - EARLY)
        self.assertLess(completed - begun, 3 + 3 * LATE)
        self.leave("")


if __name__ == "__main__":
    unittest.main()
