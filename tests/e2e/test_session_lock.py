"""No panel is seen while the session is locked, and the effects go on after it."""

import time
import unittest

from test_overlays import BLUE, VEILED, Clearing, OverlayTest
from virtual_desktop.screens import PERFORMANCE


class LockedByLogind(Clearing):
    def launch(self, *arguments, **environment):
        self.services = self.start_system_bus("login")
        return super().launch(*arguments, **environment)

    def test_stop_screens_hide_meanwhile(self):
        before, after = self.await_stop_screen()
        asked = time.monotonic()
        self.services.lock()
        self.assert_cleared(asked, 0.5)
        # The second one would be up from 30 to 35 s.
        while time.monotonic() < after + 36:
            self.assertFalse(self.sees(BLUE, self.corner), "a stop screen over the lock")
            time.sleep(0.05)
        self.services.unlock()
        shown = self.wait_for_color(BLUE, self.corner, 12)
        self.assert_within(shown, before + 45, after + 45, "the stop screen after the lock")
        gone = self.wait_until_cleared(7)
        self.assert_within(gone, before + 50, after + 50, "its end")
        self.leave()


class FreezeWhileLocked(OverlayTest):
    def launch(self, *arguments, **environment):
        self.services = self.start_system_bus("login")
        return super().launch(*arguments, **environment)

    def test_freezes_go_on_afterwards(self):
        self.open_full_screen_window()
        _, after = self.turn_on(PERFORMANCE)
        self.services.lock()
        # The first one begins after 40 s at most, and takes 4 s at most.
        while time.monotonic() < after + 45:
            self.assertFalse(self.sees(VEILED, self.corner), "a freeze over the lock")
            time.sleep(0.05)
        self.services.unlock()
        self.wait_for_color(VEILED, self.corner, 40)
        self.leave()


class LockedByScreenSaver(Clearing):
    def test_a_stop_screen_hides(self):
        saver = self.session.screen_saver(self.stack)
        switched = self.await_stop_screen()
        asked = time.monotonic()
        saver.lock()
        self.assert_cleared(asked, 0.5)
        saver.unlock()
        # This one lasts until 20 s.
        time.sleep(max(0, switched[1] + 21 - time.monotonic()))
        shown = self.wait_for_color(BLUE, self.corner, 12)
        self.assert_within(shown, switched[0] + 30, switched[1] + 30, "the next stop screen")
        self.leave()


if __name__ == "__main__":
    unittest.main()
