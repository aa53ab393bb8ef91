"""The panels where Qt draws the program's own window through Wayland."""

import unittest

from harness import EndToEndTest
from test_wayland import SwayTest
from test_wayland_kwin import KWinTest
from test_wayland_outputs import Scale
from virtual_desktop.screens import ENTER, LEAVE, PERFORMANCE, STABILITY, THERMALS
from virtual_desktop.sway import Sway

HINT = "X11 or Xwayland needed — enable it in your desktop's settings"


class SwayStopScreen(SwayTest):
    desktop_name = "sway-qt"
    qt_platform = "wayland"

    def test_covers_a_full_screen_window(self):
        self.check_stop_screen()


class SwayFreeze(SwayTest):
    desktop_name = "sway-qt"
    qt_platform = "wayland"

    def test_veils_a_full_screen_window(self):
        self.check_freeze()


class KWinStopScreen(KWinTest):
    desktop_name = "kwin-qt"
    qt_platform = "wayland;xcb"

    def test_covers_a_full_screen_window(self):
        self.check_stop_screen()


class SwayScale(Scale):
    """Qt knows of the scale, but panels are enlarged by sway."""

    desktop_name = "sway-qt"
    qt_platform = "wayland"

    def start_desktop(self):
        return Sway(self.stack, size=(2560, 1600), scales=(2,))

    def test_a_stop_screen_covers_it(self):
        self.check_stop_screen_at_scale_2()


class WithoutXwayland(EndToEndTest):
    """There is no X server that could show a panel."""

    waits = True

    def setUp(self):
        super().setUp()
        self.desktop = Sway(self.stack, xwayland=False)
        self.environment |= self.desktop.environment
        self.panel = self.launch_into_control_panel(creak=False)

    def wait_for_hint(self, row, text):
        self.wait_until(lambda: self.panel.description(row) == text, f"{row} to say: {text}")

    def test_the_rows_of_the_panels_say_so(self):
        for row in (STABILITY, PERFORMANCE):
            with self.subTest(row):
                self.assertEqual(self.panel.description(row), "")
                self.panel.toggle(row)
                self.wait_for_hint(row, HINT)
        self.assertEqual(self.panel.description(THERMALS), "")
        self.panel.press(LEAVE)
        self.panel.press(ENTER)
        self.wait_for_hint(STABILITY, "")
        self.leave()


if __name__ == "__main__":
    unittest.main()
