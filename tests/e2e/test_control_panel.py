"""The control panel, entered and left in each of the ways that a person has."""

import unittest

from harness import CREAK_SWITCH, ENTER, LEAVE, MONITORING, EndToEndTest

WINDOW = "Quorvane"


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
        self.assertFalse(self.panel.is_on(CREAK_SWITCH))

    def _check_warning(self):
        self.panel.find(ENTER)
        self.panel.wait_until_gone(LEAVE)

    def test_works_through_the_accessibility_bus(self):
        self.panel.press(ENTER)
        self._check_panel()
        self.panel.toggle(CREAK_SWITCH)
        self.wait_until(lambda: self.panel.is_on(CREAK_SWITCH), "the switch to be on")
        self.panel.press(LEAVE)
        self._check_warning()
        self.panel.press(ENTER)
        self._check_panel()
        self.assertEqual(self.program.console.text.count(MONITORING), 1,
                         "the sensor keeps running behind the warning")
        self.leave()

    def _click(self, name):
        left, top, width, height = self.panel.settled_place(name)
        self.session.display.click(left + width // 2, top + height // 2)

    def test_works_with_the_mouse(self):
        self._click(ENTER)
        self._check_panel()
        self._click(CREAK_SWITCH)
        self.wait_until(lambda: self.panel.is_on(CREAK_SWITCH), "the switch to be on")
        self._click(CREAK_SWITCH)
        self.wait_until(lambda: not self.panel.is_on(CREAK_SWITCH), "the switch to be off")
        self._click(LEAVE)
        self._check_warning()
        self.leave()

    def _focus(self, name, tabs=20):
        for _ in range(tabs):
            if self.panel.is_focused(name):
                return
            self.session.display.press_key("Tab")
            # The key goes through the display server; the next look may come before it has landed.
            try:
                self.wait_until(lambda: self.panel.is_focused(name), name, 0.3)
            except AssertionError:
                continue
        self.fail(f'Tab does not reach "{name}"\n{self.panel.describe()}')

    def test_works_with_the_keyboard(self):
        self._focus(ENTER)
        self.session.display.press_key("space")
        self._check_panel()
        self._focus(CREAK_SWITCH)
        self.session.display.press_key("space")
        self.wait_until(lambda: self.panel.is_on(CREAK_SWITCH), "the switch to be on")
        self._focus(LEAVE)
        self.session.display.press_key("space")
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
        window, = self.wait_until(lambda: display.windows(WINDOW), "the window")
        self.assertEqual(display.geometry(window)[2:], (550, 780))
        left, top, width, height = self.panel.settled_place(ENTER)
        display.drag_with_alt(3, (left + width - 5, top + height - 5), (60, 50))
        # A resize would have been asked for before the next key reaches the program.
        self._focus(ENTER)
        self.assertEqual(display.geometry(window)[2:], (550, 780))
        self.leave()


if __name__ == "__main__":
    unittest.main()
