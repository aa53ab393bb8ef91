"""Nothing is drawn while the window is hidden or motion is reduced."""

import contextlib
import os
import pathlib
import re
import time
import unittest

from harness import OWN_LINES, EndToEndTest
from virtual_desktop.other_window import OtherWindow
from virtual_desktop.screens import ENTER, TITLE

# Qt logs each frame to standard error.
LOG_FRAMES = {"QT_LOGGING_RULES": "qt.scenegraph.time.renderloop.debug=true"}
FRAME = "frame rendered"
GRAPHICS_DRIVER = r"_dri\.so|libgallium|libnvidia-glcore"
LOOK = 1.5
"""Seconds for which frames are counted; an animation draws dozens."""


class Frames(EndToEndTest):
    waits = True

    def _launch(self, **environment):
        self.skip_hardware_check()
        self.launch(**LOG_FRAMES, **environment)
        self.screens().find(ENTER)
        self.window, = self.wait_until(lambda: self.session.display.windows(TITLE), "the window")

    def _graphics_drivers(self):
        """The graphics drivers among the libraries that the program has loaded."""
        loaded = pathlib.Path("/proc", str(self.program.pid), "maps").read_text()
        return set(re.findall(GRAPHICS_DRIVER, loaded))

    def _count(self):
        return sum(FRAME in line.lower() for line in self.program.errors.text)

    def _wait_for_frames(self, why):
        before = self._count()
        self.wait_until(lambda: self._count() >= before + 10, f"frames: {why}", 15)

    def _wait_for_no_frames(self, why):
        """Waits for LOOK seconds without a frame; the last frames may still come before."""
        def none():
            before = self._count()
            time.sleep(LOOK)
            return self._count() == before
        self.wait_until(none, f"no frames: {why}", 15)

    def test_frames_are_drawn_while_the_glow_is_visible(self):
        self._launch()
        self._wait_for_frames("glow and particles")
        self.leave(OWN_LINES)

    def test_a_graphics_driver_is_loaded_only_with_a_graphics_card(self):
        devices = pathlib.Path("/dev")
        cards = [card for card in (*devices.glob("dri/renderD*"), *devices.glob("nvidiactl"))
                 if os.access(card, os.R_OK | os.W_OK)]
        self._launch()
        self.assertEqual(bool(self._graphics_drivers()), bool(cards), self._graphics_drivers())
        self.leave(OWN_LINES)

    def test_the_environment_chooses_another_renderer(self):
        self._launch(QT_QUICK_BACKEND="rhi")
        self.assertTrue(self._graphics_drivers())
        self.leave(OWN_LINES)

    def test_no_frames_are_drawn_while_the_window_is_minimised(self):
        self._launch()
        self._wait_for_frames("it is visible")
        self.session.display.minimise(self.window)
        self._wait_for_no_frames("it is minimised")
        self.session.display.restore(self.window)
        self._wait_for_frames("it is back")
        self.leave(OWN_LINES)

    def test_no_frames_are_drawn_while_another_window_covers_it(self):
        self._launch()
        self._wait_for_frames("it is visible")
        with contextlib.ExitStack() as stack:
            OtherWindow("204060", env=self.environment, stack=stack)
            self._wait_for_no_frames("a full-screen window covers it")
        self._wait_for_frames("it is uncovered")
        self.leave(OWN_LINES)

    def test_no_frames_are_drawn_with_reduced_motion(self):
        portal = self.session.settings_portal(self.stack)
        self._launch()
        self._wait_for_no_frames("reduced motion is requested")
        portal.ask_for_usual_motion()
        self._wait_for_frames("the usual motion is requested")
        portal.ask_for_less_motion()
        self._wait_for_no_frames("reduced motion is requested again")
        self.leave(OWN_LINES)

    def test_without_a_portal_gtk_settings_ask_for_reduced_motion(self):
        folder = pathlib.Path(self.environment["XDG_CONFIG_HOME"], "gtk-3.0")
        folder.mkdir(parents=True)
        (folder / "settings.ini").write_text("[Settings]\ngtk-enable-animations=0\n")
        self._launch()
        self._wait_for_no_frames("reduced motion is requested")
        self.leave(OWN_LINES)


if __name__ == "__main__":
    unittest.main()
