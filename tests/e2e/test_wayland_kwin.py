"""The panels over a native Wayland window that fills the screen, in KWin."""

import unittest

from test_wayland import WaylandTest
from virtual_desktop.kwin import KWin


class KWinTest(WaylandTest):
    desktop_name = "kwin"

    def start_desktop(self):
        return KWin(self.environment, self.stack)


class StopScreen(KWinTest):
    def test_covers_a_full_screen_window(self):
        self.check_stop_screen()


class StopScreenEnd(KWinTest):
    def test_stays_on_top_until_the_end(self):
        self.check_end()


class Freeze(KWinTest):
    def test_veils_a_full_screen_window(self):
        self.check_freeze()


if __name__ == "__main__":
    unittest.main()
