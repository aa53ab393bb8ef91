"""The panels over a native Wayland window that fills the screen."""

import time
import unittest

from harness import EVIDENCE, EndToEndTest
from test_overlays import BENEATH, BLUE, VEILED
from virtual_desktop.pictures import near, save
from virtual_desktop.screens import PERFORMANCE, STABILITY
from virtual_desktop.sway import WaylandDisplay

LATE = 1.0
"""Seconds by which a panel may be seen early or late: a capture takes some tenths of one."""


class WaylandTest(EndToEndTest):
    waits = True

    def setUp(self):
        super().setUp()
        self.desktop = WaylandDisplay(self.stack)
        self.environment |= self.desktop.environment
        self.panel = self.launch_into_control_panel(creak=False)
        # The terminal's cursor is within its margins and touches no corner.
        self.desktop.start(
            ["foot", "--fullscreen", "--override", "colors.background=%02x%02x%02x" % BENEATH,
             "sleep", "300"], self.stack)
        self.wait_for_corners(BENEATH, 10)
        self.focused = self.desktop.focused()

    def corners(self):
        picture = self.desktop.capture()
        return picture[[0, 0, -1, -1], [0, -1, 0, -1]]

    def wait_for_corners(self, color, timeout):
        """Waits until all four have a colour and returns when that was seen."""
        self.wait_until(lambda: near(self.corners(), color).all(), f"{color} in the corners",
                        timeout)
        return time.monotonic()

    def check(self, switch, color, name, delays, lengths):
        before = time.monotonic()
        self.panel.switch(switch, True)
        after = time.monotonic()
        shown = self.wait_for_corners(color, delays[1] + 2)
        self.assertGreater(shown, before + delays[0] - LATE)
        self.assertLess(shown, after + delays[1] + LATE)
        picture = self.desktop.capture()
        EVIDENCE.mkdir(parents=True, exist_ok=True)
        save(picture, EVIDENCE / f"{name}.png")
        self.assertEqual(self.desktop.focused(), self.focused)
        gone = self.wait_for_corners(BENEATH, lengths[1] + 2)
        self.assertGreater(gone, shown + lengths[0] - LATE)
        self.assertLess(gone, shown + lengths[1] + LATE)
        self.assertEqual(self.desktop.focused(), self.focused)
        self.leave()
        return picture


class StopScreen(WaylandTest):
    def test_is_shown_above_a_full_screen_window(self):
        picture = self.check(STABILITY, BLUE, "stop-screen-wayland", (15, 15), (5, 5))
        self.assertGreater(near(picture, BLUE).mean(), 0.95)
        self.assertGreater(near(picture[240:320, 100:804], (255, 255, 255), 30).sum(), 1000)


class Freeze(WaylandTest):
    def test_is_shown_above_a_full_screen_window_and_translucent(self):
        picture = self.check(PERFORMANCE, VEILED, "freeze-wayland", (20, 40), (3, 4))
        veiled = near(picture, VEILED)
        self.assertGreater(veiled.mean(), 0.95)
        middle = veiled[picture.shape[0] // 2 - 150:, :][:300, 490:790]
        self.assertLess(middle.mean(), 0.98)


if __name__ == "__main__":
    unittest.main()
