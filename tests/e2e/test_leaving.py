"""Every way to end the program silences it at once, with status 0."""

import time
import unittest

from harness import EndToEndTest


class Leaving(EndToEndTest):
    listens = True

    def _leave_in_mid_creak(self, leave):
        services = self.start_system_bus("login", "power")
        self.launch_into_control_panel(creak=True)
        closed = time.monotonic()
        services.close_lid()
        self.recording.wait_for_sound(closed, 2.0)
        asked = time.monotonic()
        self.assertLess(asked - closed, 1.5, "the test was too slow")
        leave()
        status, ended = self.program.wait_for_exit()
        self.assertEqual(status, 0)
        self.assertLess(ended - asked, 1.5)
        self.assert_silent(asked + 0.4, asked + 1.0, "after leaving")

    def test_by_closing_the_window(self):
        self._leave_in_mid_creak(self.session.display.close_window)

    def test_by_the_terminate_signal(self):
        self._leave_in_mid_creak(lambda: self.program.terminate())

    def test_by_the_interrupt_signal(self):
        self._leave_in_mid_creak(lambda: self.program.interrupt())


if __name__ == "__main__":
    unittest.main()
