"""Which output a panel covers, and how sharp it is there."""

import unittest

import numpy

from test_overlays import BENEATH, BLUE
from test_wayland import LATE, WaylandTest
from virtual_desktop.kwin import KWin
from virtual_desktop.mutter import Mutter
from virtual_desktop.other_window import OtherWindow
from virtual_desktop.pictures import near
from virtual_desktop.screens import STABILITY
from virtual_desktop.sway import Sway
from virtual_desktop.waiting import wait_until


def is_covered(picture):
    """Whether a stop screen fills the picture to its edges."""
    blue = near(picture, BLUE)
    return blue.mean() > 0.9 and all(edge.all() for edge in (blue[0], blue[-1], blue[:, 0],
                                                             blue[:, -1]))


def is_free(picture):
    """Whether no part of a stop screen is in the picture."""
    return not near(picture, BLUE).any()


class Outputs(WaylandTest):
    """Two outputs; the native window fills the second one."""

    window_output = 1

    def shows_stop_screen(self):
        """Whether there is one, by some of the pixels, as this is asked often."""
        return not all(is_free(self.desktop.capture(output)[::20, ::20]) for output in (0, 1))

    def covered(self):
        """For each output whether a stop screen covers it; fails if one is covered in part."""
        pictures = [self.desktop.capture(output) for output in (0, 1)]
        covered = list(map(is_covered, pictures))
        self.assertEqual([not is_free(picture) for picture in pictures], covered)
        return covered

    def wait_for_stop_screen(self, name):
        self.turn_on(STABILITY)
        wait_until(self.shows_stop_screen, "a stop screen", 17, interval=0.1)
        self.keep(numpy.hstack([self.desktop.capture(output) for output in (0, 1)]), name)

    def check_one_is_covered(self):
        """Which one does not matter here: a native window's place is not known to X11 programs."""
        self.wait_for_stop_screen("native-window-right")
        self.assertEqual(sorted(self.covered()), [False, True])
        wait_until(lambda: not self.shows_stop_screen(), "its end", 7, interval=0.1)
        self.assertEqual(self.covered(), [False, False])
        self.assertGreater(near(self.desktop.capture(1), BENEATH).mean(), 0.99)
        self.assertNotIn("no focus", self.window.events())
        self.leave()

    def check_that_of_an_x11_window_is_covered(self):
        OtherWindow("336699", "300x200+1380+300", env=self.environment, stack=self.stack)
        self.wait_until(lambda: self.window.events()[-1] == "no focus", "the other window's focus")
        self.wait_for_stop_screen("x11-window-right")
        self.assertEqual(self.covered(), [False, True])
        self.leave()


class KWinOutputs(Outputs):
    desktop_name = "kwin"

    def start_desktop(self):
        return KWin(self.environment, self.stack, outputs=2)

    def test_one_of_two_is_covered_exactly(self):
        self.check_one_is_covered()

    def test_that_of_a_focused_x11_window_is_covered(self):
        self.check_that_of_an_x11_window_is_covered()


class MutterOutputs(Outputs):
    desktop_name = "mutter"

    def start_desktop(self):
        return Mutter(self.environment, self.stack, outputs=2)

    def test_one_of_two_is_covered_exactly(self):
        self.check_one_is_covered()

    def test_that_of_a_focused_x11_window_is_covered(self):
        self.check_that_of_an_x11_window_is_covered()


class SwayOutputs(Outputs):
    desktop_name = "sway"

    def start_desktop(self):
        return Sway(self.stack, scales=(1, 2))

    def test_one_of_two_is_covered_exactly(self):
        self.check_one_is_covered()


class Scale(WaylandTest):
    """An output at scale 2."""

    def check_stop_screen_at_scale_2(self):
        """It covers the output exactly, its texts are twice as large; returns the picture."""
        self.turn_on(STABILITY)
        self.wait_for_corners(BLUE, 17)
        self.wait_until(lambda: not near(self.desktop.capture(), BLUE).all(), "the texts", LATE)
        picture = self.desktop.capture()
        self.keep(picture, "scale-2")
        self.assertEqual(picture.shape, (1600, 2560, 3))
        self.assertTrue(is_covered(picture))
        left = (~near(picture, BLUE)).any(axis=0).nonzero()[0][0]
        self.assertAlmostEqual(left, 200, delta=8)
        self.wait_for_corners(BENEATH, 7)
        self.leave()
        return picture


class KWinScale(Scale):
    desktop_name = "kwin"

    def start_desktop(self):
        return KWin(self.environment, self.stack, scale=2)

    def test_a_stop_screen_covers_it_and_is_sharp(self):
        picture = self.check_stop_screen_at_scale_2()
        # Enlarged texts have steps of half the contrast at most, which is 255 in red.
        steps = numpy.abs(numpy.diff(picture[:, :, 0].astype(int), axis=1))
        self.assertGreater((steps > 200).sum(), 500)


class SwayScale(Scale):
    """X11 programs know nothing of it: sway enlarges their windows."""

    desktop_name = "sway"

    def start_desktop(self):
        return Sway(self.stack, size=(2560, 1600), scales=(2,))

    def test_a_stop_screen_covers_it(self):
        self.check_stop_screen_at_scale_2()


if __name__ == "__main__":
    unittest.main()
