"""All steps of a new user, with the mouse, the keyboard and a screen reader."""

import unittest

from harness import EndToEndTest
from virtual_desktop.accessibility import Announcements
from virtual_desktop.screens import BUILD_QUALITY, CHECK, CONTINUE, ENTER, KEYBOARD, LEAVE, STARTUP

INFOS = {
    "Build quality": ("Build Quality", "Premium hinge quality simulation. Experience the authentic "
                      "build quality of a real Windows laptop.\n\nTry moving your laptop lid to "
                      "feel the difference."),
    "Keyboard": ("Tactile Feedback", "Genuine keyboard feedback. Feel the premium tactile response "
                 "of original Windows hardware.\n\nJust start typing anything."),
    "Thermals": ("Thermal Performance", "Original Windows fan acoustics. Authentic thermal "
                 "management at its finest.\n\nEnable and enjoy. Trackpad vibration included."),
    "Stability": ("System Stability", "Experience the legendary Windows stability. Random crashes "
                  "included at no extra cost.\n\nSit back and wait. It will happen."),
    "Performance": ("Multitasking Performance", "Advanced multitasking optimization. Your Mac will "
                    "occasionally take a moment to think.\n\nJust keep using your Mac normally. "
                    "Freezes will come to you."),
    "Startup": ("Boot Experience", "The iconic startup experience. Relive the classic moment of "
                "booting a real Windows machine.\n\nClose the lid and open it again to hear it."),
}


class NewUser(EndToEndTest):
    def _arrive(self):
        """From a first launch to the control panel; returns the rows that can be switched."""
        self.launch()
        self.panel = self.screens()
        self.panel.press(CHECK)
        self.panel.find(CONTINUE)
        is_trusted = self.panel.shows("Accessibility granted")
        self.panel.press(CONTINUE)
        self.panel.press(ENTER)
        self.panel.find(LEAVE)
        self.panel.wait_until_gone(ENTER)
        for row in INFOS:
            self.assertEqual(self.panel.is_on(row), row == STARTUP, row)
        return [row for row in INFOS if row != KEYBOARD or is_trusted]

    def _turn_over_twice(self, row, act):
        """Toggles a switch and back: left on, a stop screen would cover the window."""
        before = self.panel.is_on(row)
        for expected in (not before, before):
            act(row)
            self.wait_until(lambda: self.panel.is_on(row) == expected, f"{row}: {expected}", 10)

    def _click(self, name):
        self.click(self.panel, name)

    def _press_space_on(self, name):
        self.press_space_on(self.panel, name)

    def _read(self, row, act):
        title, text = INFOS[row]
        act(f"About {row}")
        self.panel.find(title)
        self.panel.find(text)
        self.panel.find("OK")

    def test_everything_can_be_used_with_a_screen_reader(self):
        rows = self._arrive()
        for row in rows:
            self._read(row, self.panel.press)
            self.panel.press("OK")
            self.panel.wait_until_gone("OK")
            with Announcements() as announcements:
                before = self.panel.is_on(row)
                self._turn_over_twice(row, self.panel.toggle)
                announcements.wait_for(row, not before)
                announcements.wait_for(row, before)
        self.panel.press(LEAVE)
        self.panel.find(ENTER)
        self.leave()

        self.launch()
        screens = self.screens()
        screens.find(ENTER)
        self.assertFalse(screens.shows(CHECK))
        self.leave()

    def test_everything_can_be_used_with_the_mouse(self):
        rows = self._arrive()
        for row in rows:
            self._read(row, self._click)
            self._click("OK")
            self.panel.wait_until_gone("OK")
            self._turn_over_twice(row, self._click)
        self._click(LEAVE)
        self.panel.find(ENTER)
        self.leave()

    def test_everything_can_be_used_with_the_keyboard(self):
        rows = self._arrive()
        for row, key in zip(rows, ("Return", "Escape") * len(rows)):
            self._read(row, self._press_space_on)
            self.session.display.press_key(key)
            self.panel.wait_until_gone("OK")
            self._turn_over_twice(row, self._press_space_on)
        self._press_space_on(LEAVE)
        self.panel.find(ENTER)
        self.leave()

    def test_the_stop_button_announces_that_switches_are_off(self):
        self._arrive()
        self.panel.switch(BUILD_QUALITY, True)
        with Announcements() as announcements:
            self.panel.press(LEAVE)
            announcements.wait_for("Build quality", False)
        self.panel.press(ENTER)
        self.panel.find(LEAVE)
        for row in INFOS:
            self.assertFalse(self.panel.is_on(row), row)
        self.leave()

    def test_an_info_button_pressed_under_a_popup_opens_its_popup_afterwards(self):
        rows = self._arrive()
        later = rows[-1]
        press_later = self.panel.presser(f"About {later}")
        self._read("Build quality", self.panel.press)
        press_later()
        self.panel.find("Build Quality")
        self.panel.press("OK")
        self.panel.find(INFOS[later][0])
        self.panel.press("OK")
        self.panel.wait_until_gone("OK")
        self.leave()


if __name__ == "__main__":
    unittest.main()
