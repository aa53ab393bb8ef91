"""What a user sees, and can still do, while a stop screen or a freeze is up."""

import signal
import subprocess
import time
import unittest

import numpy

from harness import EVIDENCE, EndToEndTest
from virtual_desktop import processes
from virtual_desktop.other_window import OtherWindow
from virtual_desktop.pictures import near, save
from virtual_desktop.screen_capture import ScreenCapture
from virtual_desktop.screens import LEAVE, PERFORMANCE, STABILITY


BLUE = (0, 120, 212)
BENEATH = (200, 40, 120)
# 55 % of white over BENEATH.
VEILED = tuple(round(0.45 * value + 0.55 * 255) for value in BENEATH)
FAINT = (64, 154, 223)
WHITE = (255, 255, 255)

TEXT_LEFT = 100
RING_MIDDLE = TEXT_LEFT + 35
RING_RADIUS = 35

LATE = 0.5
"""Seconds by which a panel may come or go early or late, with the time that a capture takes."""


class OverlayTest(EndToEndTest):
    """The control panel, and a window that the panel to come will cover."""

    waits = True

    composited = False

    def setUp(self):
        super().setUp()
        self.screen = ScreenCapture(self.session.display.name, self.stack)
        self.corner = (self.screen.width - 1, self.screen.height - 1)
        if self.composited:
            self._start_compositor()
        self.panel = self.launch_into_control_panel(creak=False)

    def _start_compositor(self):
        processes.start(
            ["picom", "--backend", "xrender", "--config", "/dev/null"], self.environment,
            self.stack, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.wait_until(self.screen.is_composited, "the compositor")

    def open_window(self, *place):
        """A focused window in the colour BENEATH: full screen, or at WIDTHxHEIGHT+X+Y."""
        self.window = OtherWindow("%02x%02x%02x" % BENEATH, *place, env=self.environment,
                                  stack=self.stack)
        self.wait_until(lambda: self.focus() == self.window.id, "the window to have the keyboard")
        return self.window.id

    def open_full_screen_window(self):
        self.open_window()
        self.wait_until(lambda: self.sees(BENEATH, (0, 0), self.corner), "the window beneath")

    def focus(self):
        return self.session.display.focused()

    def sees(self, color, *places):
        return all(near(self.screen.pixel(*place), color) for place in places)

    def turn_on(self, switch):
        """Turns a switch on; returns the earliest and latest instant of the change."""
        before = time.monotonic()
        self.panel.switch(switch, True)
        return before, time.monotonic()

    def wait_for_color(self, color, place, timeout):
        """Waits until a place has a colour and returns when it was first seen."""
        self.wait_until(lambda: self.sees(color, place), f"{color} at {place}", timeout)
        return time.monotonic()

    def assert_within(self, instant, earliest, latest, what):
        self.assertGreater(instant, earliest - LATE, f"{what} came too early")
        self.assertLess(instant, latest + LATE, f"{what} came too late")

    def presses(self):
        """The presses that the window beneath has received so far."""
        return self.window.presses()

    def assert_takes_clicks_but_no_keys(self):
        focused = self.focus()
        earlier = self.presses()
        self.session.display.click(900, 600)
        # Events keep their order: if the click went to the window, it came before the key.
        self.session.display.press_key("a")
        self.wait_until(lambda: len(self.presses()) > len(earlier), "the key beneath the panel")
        self.assertEqual(self.presses(), [*earlier, "key"])
        self.assertEqual(self.focus(), focused)

    def assert_clicks_arrive(self):
        earlier = self.presses()
        self.session.display.click(900, 600)
        self.wait_until(lambda: self.presses() == [*earlier, "click"], "the click")

    def keep(self, picture, name):
        EVIDENCE.mkdir(parents=True, exist_ok=True)
        save(picture, EVIDENCE / f"{name}.png")


class StopScreen(OverlayTest):
    def _assert_covered(self, picture):
        height, width, _ = picture.shape
        # Nothing is drawn in the padding or to the right of the texts.
        for name, part in {"left": picture[:, :TEXT_LEFT - 4], "top": picture[:80],
                           "right": picture[:, width // 2 + 200:],
                           "bottom": picture[height // 2 + 100:]}.items():
            self.assertTrue(near(part, BLUE).all(), f"something but blue at the {name}")

    def _assert_texts(self, picture):
        drawn = ~near(picture, BLUE)
        rows, columns = drawn.any(axis=1).nonzero()[0], drawn.any(axis=0).nonzero()[0]
        self.assertLess(rows[0], 140)
        self.assertAlmostEqual(columns[0], TEXT_LEFT, delta=3)
        self.assertTrue(near(picture[80:240, TEXT_LEFT:TEXT_LEFT + 120], WHITE, 30).any(),
                        "the face is not there")
        sentence = near(picture[240:320, TEXT_LEFT:TEXT_LEFT + 704], WHITE, 30)
        self.assertLess(sentence.any(axis=0).nonzero()[0][0], 10)
        self.assertGreater(sentence.sum(), 1000)

    def _ring_share(self, picture):
        """The white share of the ring, from the top clockwise; fails if there is no ring."""
        edge = ~near(picture[395:700, TEXT_LEFT - 1:TEXT_LEFT + 2], BLUE)
        rows = edge.any(axis=1).nonzero()[0]
        middle = 395 + (rows[0] + rows[-1]) / 2
        angles = (numpy.arange(100) + 0.5) / 100 * 2 * numpy.pi
        x = numpy.round(RING_MIDDLE - 0.5 + RING_RADIUS * numpy.sin(angles)).astype(int)
        y = numpy.round(middle - RING_RADIUS * numpy.cos(angles)).astype(int)
        ring = picture[y, x]
        white, faint = near(ring, WHITE, 60), near(ring, FAINT, 60)
        self.assertTrue(white[5:40].all(), f"the right half is not white: {ring.tolist()}")
        self.assertTrue(faint[60:95].all(), f"the left half is not faint: {ring.tolist()}")
        return white.mean()

    def test_comes_after_15_seconds_and_stays_for_5(self):
        self.open_full_screen_window()
        focused = self.focus()
        before, after = self.turn_on(STABILITY)
        self.assertEqual(self.focus(), focused)

        shown = self.wait_for_color(BLUE, self.corner, 17)
        self.assert_within(shown, before + 15, after + 15, "the first stop screen")
        self.assert_takes_clicks_but_no_keys()

        time.sleep(max(0, shown + 2.5 - time.monotonic()))
        asked = time.monotonic()
        picture = self.screen.capture()
        seen = time.monotonic()
        name = "stop-screen-composited" if self.composited else "stop-screen"
        self.keep(picture, name)
        self._assert_covered(picture)
        self._assert_texts(picture)
        share = self._ring_share(picture)
        self.assertGreater(share, (asked - shown) / 5 - 0.06)
        self.assertLess(share, (seen - shown) / 5 + 0.06)

        gone = self.wait_for_color(BENEATH, self.corner, 4)
        self.assert_within(gone, before + 20, after + 20, "the end of the stop screen")
        self.assertEqual(self.focus(), focused)
        self.assert_clicks_arrive()
        self.leave()


class StopScreenComposited(StopScreen):
    composited = True


class Freeze(OverlayTest):
    def test_comes_within_20_to_40_seconds_and_stays_for_3_to_4(self):
        self.open_full_screen_window()
        focused = self.focus()
        before, after = self.turn_on(PERFORMANCE)

        corners = [(0, 0), (self.corner[0], 0), (0, self.corner[1]), self.corner]
        shown = self.wait_for_color(VEILED, self.corner, 43)
        self.assert_within(shown, before + 20, after + 40, "the freeze")
        self.wait_until(lambda: (~near(self.screen.capture(), VEILED)).any(), "the freeze's text")
        picture = self.screen.capture()
        self.assertTrue(self.sees(VEILED, *corners))
        self.assert_takes_clicks_but_no_keys()

        gone = self.wait_for_color(BENEATH, self.corner, 5)
        self.assert_within(gone, shown + 3, shown + 4, "the end of the freeze")
        self.assertEqual(self.focus(), focused)
        self.assertTrue(self.sees(BENEATH, *corners))
        self.assert_clicks_arrive()

        self.keep(picture, "freeze-composited" if self.composited else "freeze")
        height, width, _ = picture.shape
        drawn = ~near(picture, VEILED)
        rows, columns = drawn.any(axis=1).nonzero()[0], drawn.any(axis=0).nonzero()[0]
        self.assertAlmostEqual((columns[0] + columns[-1]) / 2, width / 2, delta=3)
        self.assertAlmostEqual((rows[0] + rows[-1]) / 2, height / 2, delta=20)
        self.assertLess(columns[-1] - columns[0], 300)
        self.leave()


class FreezeComposited(Freeze):
    composited = True


class Monitors(OverlayTest):
    def _split_display(self):
        half, height = self.screen.width // 2, self.screen.height
        for name, x, output in (("left", 0, "screen"), ("right", half, "none")):
            subprocess.run(["xrandr", "--setmonitor", name, f"{half}/170x{height}/270+{x}+0",
                            output], env=self.environment, check=True)

    def test_the_focused_windows_monitor_is_covered_every_15_seconds(self):
        self._split_display()
        half = self.screen.width // 2
        left, right = (half - 1, self.corner[1]), (half, self.corner[1])
        window = self.open_window(f"300x200+{half + 100}+400")
        before, after = self.turn_on(STABILITY)

        shown = self.wait_for_color(BLUE, right, 17)
        self.assert_within(shown, before + 15, after + 15, "the stop screen")
        self.assertTrue(self.sees(BLUE, (half, 0), self.corner))
        self.assertFalse(near(self.screen.capture(0, 0, half), BLUE).any())
        self.wait_until(lambda: not self.sees(BLUE, right), "the stop screen to go", 6)

        self.session.display.xdotool("windowmove", window, 100, 400)
        shown = self.wait_for_color(BLUE, left, 12)
        self.assert_within(shown, before + 30, after + 30, "the second stop screen")
        self.assertTrue(self.sees(BLUE, (0, 0), (half - 1, 0), (0, self.corner[1])))
        self.assertFalse(near(self.screen.capture(half, 0, half), BLUE).any())
        self.leave()


class Clearing(OverlayTest):
    """What removes a panel that is shown."""

    def await_stop_screen(self):
        """Waits until a stop screen has been up for a second; returns what `turn_on` does."""
        switched = self.turn_on(STABILITY)
        shown = self.wait_for_color(BLUE, self.corner, 17)
        # It would go by itself only 5 s after it has come.
        time.sleep(max(0, shown + 1 - time.monotonic()))
        self.assertTrue(self.sees(BLUE, (0, self.corner[1]), self.corner))
        return switched

    def wait_until_cleared(self, timeout):
        """Waits until the corner is no longer blue and returns when that was seen."""
        self.wait_until(lambda: not self.sees(BLUE, self.corner), "the panel to go", timeout)
        return time.monotonic()

    def assert_cleared(self, asked, within):
        self.assertLess(self.wait_until_cleared(10) - asked, within)
        self.assertFalse(near(self.screen.capture(), BLUE).all(axis=1).any(),
                         "a row of blue is left")


class ClearedByUser(Clearing):
    def test_with_the_stop_button(self):
        press = self.panel.presser(LEAVE)
        self.await_stop_screen()
        asked = time.monotonic()
        press()
        self.assert_cleared(asked, 0.5)
        self.leave()

    def test_by_closing_the_window(self):
        self.await_stop_screen()
        self.session.display.close_window()
        # Counted from here: xdotool has to start first.
        self.assert_cleared(time.monotonic(), 0.5)
        self.assertEqual(self.program.wait_for_exit()[0], 0)


class ClearedBySignal(Clearing):
    def test_sigterm(self):
        self.await_stop_screen()
        asked = time.monotonic()
        self.program.terminate()
        self.assert_cleared(asked, 0.5)
        self.assertEqual(self.program.wait_for_exit()[0], 0)

    def test_sigkill(self):
        self.await_stop_screen()
        asked = time.monotonic()
        self.program.kill()
        # The X server removes the panel. Teardown can be slow under load.
        self.assert_cleared(asked, 10)
        self.assertEqual(self.program.wait_for_exit()[0], -signal.SIGKILL)


if __name__ == "__main__":
    unittest.main()
