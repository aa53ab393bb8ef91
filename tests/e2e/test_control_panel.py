"""The control panel, used through the accessibility bus, the mouse and the keyboard."""

import unittest

from harness import MONITORING, EndToEndTest
from virtual_desktop.screens import BUILD_QUALITY, ENTER, LEAVE, TITLE


class ControlPanel(EndToEndTest):
    def setUp(self):
        super().setUp()
        self.skip_hardware_check()
        self.launch()
        self.panel = self.screens()
        self.panel.find(ENTER)

    def _check_panel(self):
        self.panel.find(LEAVE)
        self.panel.find("SIMULATION ACTIVE")
        self.assertFalse(self.panel.is_on(BUILD_QUALITY))

    def _check_warning(self):
        self.panel.find(ENTER)
        self.panel.wait_until_gone(LEAVE)

    def test_works_through_the_accessibility_bus(self):
        self.panel.press(ENTER)
        self._check_panel()
        self.panel.switch(BUILD_QUALITY, True)
        self.panel.press(LEAVE)
        self._check_warning()
        self.panel.press(ENTER)
        self._check_panel()
        self.assertEqual(self.program.console.text.count(MONITORING), 1,
                         "the sensor keeps running behind the warning")
        self.leave()

    def test_works_with_the_mouse(self):
        self.click(self.panel, ENTER)
        self._check_panel()
        self.click(self.panel, BUILD_QUALITY)
        self.wait_until(lambda: self.panel.is_on(BUILD_QUALITY), "the switch to be on")
        self.click(self.panel, BUILD_QUALITY)
        self.wait_until(lambda: not self.panel.is_on(BUILD_QUALITY), "the switch to be off")
        self.click(self.panel, LEAVE)
        self._check_warning()
        self.leave()

    def test_works_with_the_keyboard(self):
        self.press_space_on(self.panel, ENTER)
        self._check_panel()
        self.press_space_on(self.panel, BUILD_QUALITY)
        self.wait_until(lambda: self.panel.is_on(BUILD_QUALITY), "the switch to be on")
        self.press_space_on(self.panel, LEAVE)
        self._check_warning()
        self.leave()

    def test_an_info_button_explains_its_row(self):
        self.panel.press(ENTER)
        self.panel.press("About Build quality")
        self.panel.find("Build Quality")
        self.panel.find("Premium hinge quality simulation. Experience the authentic build quality "
                        "of a real Windows laptop.\n\nTry moving your laptop lid to feel the "
                        "difference.")
        self.panel.press("OK")
        self.panel.wait_until_gone("OK")
        self.panel.find(LEAVE)
        self.leave()

    def test_the_window_cannot_be_resized(self):
        display = self.session.display
        window, = self.wait_until(lambda: display.windows(TITLE), "the window")
        self.assertEqual(display.geometry(window)[2:], (550, 780))
        left, top, width, height = self.panel.settled_place(ENTER)
        display.drag_with_alt(3, (left + width - 5, top + height - 5), (60, 50))
        # A resize would have come before the focus moves.
        self.focus(self.panel, ENTER)
        self.assertEqual(display.geometry(window)[2:], (550, 780))
        self.leave()


if __name__ == "__main__":
    unittest.main()
