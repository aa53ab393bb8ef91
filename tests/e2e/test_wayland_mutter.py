"""The panels over a native Wayland window that fills the screen, in Mutter."""

import unittest

from test_wayland import WaylandTest
from virtual_desktop.mutter import Mutter


class MutterTest(WaylandTest):
    desktop_name = "mutter"

    def start_desktop(self):
        return Mutter(self.environment, self.stack)


class StopScreen(MutterTest):
    def test_covers_a_full_screen_window(self):
        self.check_stop_screen()


class StopScreenEnd(MutterTest):
    def test_stays_on_top_until_the_end(self):
        self.check_end()


class Freeze(MutterTest):
    def test_veils_a_full_screen_window(self):
        self.check_freeze()


if __name__ == "__main__":
    unittest.main()
