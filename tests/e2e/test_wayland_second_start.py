"""A second start takes the focus from a native Wayland window that fills the screen.

Not in sway, which by default marks a window as urgent instead.
"""

import unittest

from harness import PROGRAM
from test_wayland_kwin import KWinTest
from test_wayland_mutter import MutterTest


def check_second_start(test):
    second = test.session.run([str(PROGRAM)], test.environment, test.stack)
    test.assertEqual(second.wait_for_exit(3)[0], 0)
    test.assertEqual(second.errors.text, [])
    test.wait_until(lambda: "no focus" in test.window.events(), "the focus to go")
    test.leave()


class SecondStartInMutter(MutterTest):
    def test_takes_the_focus(self):
        check_second_start(self)


class SecondStartInKWin(KWinTest):
    def test_takes_the_focus(self):
        check_second_start(self)


if __name__ == "__main__":
    unittest.main()
