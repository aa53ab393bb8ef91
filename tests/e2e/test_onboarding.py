"""The way from a first launch to the warning."""

import time
import unittest

from harness import EndToEndTest
from virtual_desktop.screens import CHECK, CONTINUE, ENTER, settings_file

ROWS = {
    "Lid creak": "Lid sensor not found — this feature won't be available",
    "Keyboard crack": None,
    "Trackpad vibration": None,
    "Fan noise": "Ready",
    "Startup sound": "Ready",
    "Launch at login": "Ready",
}


class Onboarding(EndToEndTest):
    def test_first_launch_checks_the_hardware_and_goes_on_to_the_warning(self):
        self.launch()
        screens = self.screens()
        screens.find(CHECK)
        self.assertFalse(screens.shows(ENTER))

        pressed = time.monotonic()
        screens.press(CHECK)
        screens.find("Scanning hardware...", timeout=1.4)
        screens.find(CONTINUE)
        waited = time.monotonic() - pressed
        self.assertGreater(waited, 1.45)
        self.assertLess(waited, 3.0)
        for feature, text in ROWS.items():
            screens.find(feature)
            if text is not None:
                screens.find(text)

        screens.press(CONTINUE)
        screens.find(ENTER)
        screens.wait_until_gone(CONTINUE)
        self.leave()

    def test_a_later_launch_opens_on_the_warning(self):
        self.launch()
        self.pass_hardware_check(self.screens())
        self.leave()
        self.assertTrue(self._stored_flag())

        self.launch()
        screens = self.screens()
        screens.find(ENTER)
        self.assertFalse(screens.shows(CHECK))
        self.leave()

    def test_a_check_that_was_not_confirmed_is_shown_again(self):
        self.launch()
        screens = self.screens()
        screens.press(CHECK)
        screens.find(CONTINUE)
        self.leave()
        self.assertFalse(self._stored_flag())

        self.launch()
        self.screens().find(CHECK)
        self.leave()

    def _stored_flag(self):
        file = settings_file(self.environment)
        return file.exists() and "hardwareChecked=true" in file.read_text()


if __name__ == "__main__":
    unittest.main()
