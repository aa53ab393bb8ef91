"""The panels over a native Wayland window that fills the screen, in sway."""

import contextlib
import signal
import time
import unittest

from harness import EVIDENCE, EndToEndTest
from test_overlays import BENEATH, BLUE, VEILED, WHITE
from virtual_desktop.other_window import NativeWindow
from virtual_desktop.pictures import near, save
from virtual_desktop.screens import LEAVE, PERFORMANCE, STABILITY
from virtual_desktop.sway import Sway
from virtual_desktop.waiting import wait_until

LATE = 1.0
"""Seconds by which a panel may be seen early or late: a capture takes some tenths of one."""

A_KEY = 30

LATER = (30, 140, 60)
"""The colour of a window that is opened while a stop screen is up."""


class WaylandTest(EndToEndTest):
    """The base for every compositor: the control panel, and a focused native window over it."""

    waits = True

    window_output = 0

    desktop_name = None

    qt_platform = None
    """The user's QT_QPA_PLATFORM."""

    def start_desktop(self):
        raise NotImplementedError

    def setUp(self):
        super().setUp()
        self.desktop = self.start_desktop()
        self.environment |= self.desktop.environment
        self.panel = self.launch_into_control_panel(
            creak=False, QT_QPA_PLATFORM=self.qt_platform)
        self.window = NativeWindow("%02x%02x%02x" % BENEATH, self.environment, self.stack,
                                   self.window_output)
        self.wait_for_corners(BENEATH, 10, self.window_output)
        # Not every compositor gives a new window the keyboard if it is on another output.
        self.desktop.input.click(self.window_output * 1280 + 300, 300)
        self.wait_until(lambda: {"focus", "click"} <= set(self.window.events()), "the focus")

    def evidence(self):
        # The failure may be that there is no desktop.
        with contextlib.suppress(Exception):
            for output in range(self.window_output + 1):
                self.keep(self.desktop.capture(output), f"{self._testMethodName}-{output}")
        return super().evidence()

    def keep(self, picture, name):
        EVIDENCE.mkdir(parents=True, exist_ok=True)
        save(picture, EVIDENCE / f"{name}-{self.desktop_name}.png")

    def wait_for_corners(self, color, timeout, output=0):
        """Waits until all four of an output have a colour and returns when that was seen."""
        def seen():
            picture = self.desktop.capture(output)
            return near(picture[[0, 0, -1, -1], [0, -1, 0, -1]], color).all()
        wait_until(seen, f"{color} in the corners", timeout, interval=0.1)
        return time.monotonic()

    def turn_on(self, switch):
        """Turns a switch on; returns the earliest and latest instant of the change."""
        before = time.monotonic()
        self.panel.switch(switch, True)
        return before, time.monotonic()

    def assert_within(self, instant, earliest, latest, what):
        self.assertGreater(instant, earliest - LATE, f"{what} came too early")
        self.assertLess(instant, latest + LATE, f"{what} came too late")

    def assert_takes_clicks_but_no_keys(self):
        earlier = self.window.events()
        self.desktop.input.click(900, 600)
        # Events keep their order: if the click went to the window, it came before the key.
        self.desktop.input.press_key(A_KEY)
        self.wait_until(lambda: len(self.window.events()) > len(earlier), "the key")
        self.assertEqual(self.window.events(), [*earlier, "key"])

    def assert_clicks_arrive(self):
        earlier = self.window.events()
        self.desktop.input.click(900, 600)
        self.wait_until(lambda: self.window.events() == [*earlier, "click"], "the click")

    def check_stop_screen(self):
        """It is there from 15 to 20 s, has no focus, takes the clicks; the button removes one."""
        press = self.panel.presser(LEAVE)
        before, after = self.turn_on(STABILITY)
        shown = self.wait_for_corners(BLUE, 17)
        self.assert_within(shown, before + 15, after + 15, "the stop screen")
        self.assertEqual(self.panel.description(STABILITY), "")
        # The window's background may be seen a frame earlier than what is drawn in it.
        self.wait_until(lambda: near(self.desktop.capture()[240:320, 100:804], WHITE, 30).sum() >
                        1000, "the sentence", LATE)
        picture = self.desktop.capture()
        self.keep(picture, "stop-screen")
        self.assertGreater(near(picture, BLUE).mean(), 0.95)
        self.assert_takes_clicks_but_no_keys()
        gone = self.wait_for_corners(BENEATH, 7)
        self.assert_within(gone, before + 20, after + 20, "the end of the stop screen")
        self.assertTrue(near(self.desktop.capture(), BENEATH).mean() > 0.99)
        self.assert_clicks_arrive()

        self.wait_for_corners(BLUE, 12)
        asked = time.monotonic()
        press()
        self.assertLess(self.wait_for_corners(BENEATH, 7), asked + LATE)
        self.assertNotIn("no focus", self.window.events())
        self.leave()

    def check_end(self):
        """It stays above a new window, and goes with the program even if that is killed."""
        self.turn_on(STABILITY)
        self.wait_for_corners(BLUE, 17)
        window = NativeWindow("%02x%02x%02x" % LATER, self.environment, self.stack)
        self.wait_until(lambda: "shown" in window.events(), "the new window", 2)
        # Until it is drawn.
        time.sleep(0.5)
        self.assertTrue(near(self.desktop.capture()[::20, -400:], BLUE).all())
        self.program.kill()
        self.assertEqual(self.program.wait_for_exit()[0], -signal.SIGKILL)
        killed = time.monotonic()
        self.assertLess(self.wait_for_corners(LATER, 7), killed + LATE)

    def check_freeze(self):
        """It is there for 3 to 4 s within 40 s, has no focus and takes the clicks."""
        before, after = self.turn_on(PERFORMANCE)
        shown = self.wait_for_corners(VEILED, 42)
        self.assert_within(shown, before + 20, after + 40, "the freeze")
        middle = slice(250, 550), slice(490, 790)
        self.wait_until(lambda: near(self.desktop.capture()[middle], VEILED).mean() < 0.98,
                        "the spinner and the words", LATE)
        picture = self.desktop.capture()
        self.keep(picture, "freeze")
        self.assertGreater(near(picture, VEILED).mean(), 0.95)
        self.assert_takes_clicks_but_no_keys()
        gone = self.wait_for_corners(BENEATH, 6)
        self.assert_within(gone, shown + 3, shown + 4, "the end of the freeze")
        self.assert_clicks_arrive()
        self.assertNotIn("no focus", self.window.events())
        self.leave()


class SwayTest(WaylandTest):
    desktop_name = "sway"

    def start_desktop(self):
        return Sway(self.stack)


class StopScreen(SwayTest):
    def test_covers_a_full_screen_window(self):
        self.check_stop_screen()


class StopScreenEnd(SwayTest):
    def test_stays_on_top_until_the_end(self):
        self.check_end()


class Freeze(SwayTest):
    def test_veils_a_full_screen_window(self):
        self.check_freeze()


if __name__ == "__main__":
    unittest.main()
