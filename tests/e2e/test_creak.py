"""The creak on lid, sleep and wake-up events, without a lid sensor."""

import re
import time
import unittest

from harness import FINISHED, LOADED, MONITORING, NO_SENSOR, EndToEndTest
from virtual_desktop.screens import BUILD_QUALITY, LEAVE, STARTUP

BURST = 3.0
"""Seconds of creak after a lid event."""

REACTION = 0.5
"""Seconds until an event is heard, or silence begins; generous for a busy machine."""


class Creak(EndToEndTest):
    listens = True

    def _hear_burst(self, event):
        """Calls `event` and checks the burst of creak that it causes."""
        happened = time.monotonic()
        quiet_since = max(happened - 0.5, self.started)
        self.assert_silent(quiet_since, happened, "before the event")
        event()
        begun = self.recording.wait_for_sound(happened, 2.0)
        self.assertLess(begun - happened, REACTION)
        clip = self._clip_length()
        self.assert_creaks(begun, happened + min(BURST, clip) - 0.2, "the burst")
        over = happened + BURST + REACTION
        self.assert_silent(over, over + 0.5, "after the burst")
        return happened

    def _clip_length(self):
        loaded, = (re.fullmatch(LOADED, line) for line in self.program.console.text
                   if line.startswith("✅ Φορτώθηκε"))
        return float(loaded[1])

    def test_closing_and_opening_the_lid_makes_it_creak(self):
        services = self.start_system_bus("login", "power")
        self.launch_into_control_panel(creak=True)
        self._hear_burst(services.close_lid)
        self._hear_burst(services.open_lid)
        self.leave()
        self._check_console()

    def _check_console(self):
        lines = self.lid_lines()
        self.assertRegex(lines[0], f"^{LOADED}$")
        self.assertEqual(lines[1:3], [NO_SENSOR, MONITORING])
        self.assertLessEqual(set(lines[3:]), {FINISHED})

    def test_sleep_and_wake_up_make_it_creak(self):
        services = self.start_system_bus("login")
        panel = self.launch_into_control_panel(creak=True)
        # Its sound would be recorded, too.
        panel.switch(STARTUP, False)
        self._hear_burst(services.prepare_for_sleep)
        self._hear_burst(services.wake_up)
        self.leave()

    def test_a_repeated_lid_state_is_silent(self):
        services = self.start_system_bus("login", "power")
        self.launch_into_control_panel(creak=True)
        repeated = time.monotonic()
        services.repeat_lid()
        self.assert_silent(repeated, repeated + 1.0, "an open lid announced as open")
        self.leave()

    def test_the_creak_is_heard_only_while_switched_on(self):
        services = self.start_system_bus("login", "power")
        panel = self.launch_into_control_panel(creak=False)
        closed = time.monotonic()
        services.close_lid()
        self.assert_silent(closed, closed + 0.7, "with the switch off")
        panel.toggle(BUILD_QUALITY)
        self.recording.wait_for_sound(closed, 1.0)
        off = time.monotonic()
        panel.toggle(BUILD_QUALITY)
        self.assert_silent(off + REACTION, off + REACTION + 0.4, "with the switch off again")
        self.leave()

    def test_the_stop_button_ends_a_creak_at_once(self):
        services = self.start_system_bus("login", "power")
        panel = self.launch_into_control_panel(creak=True)
        closed = time.monotonic()
        services.close_lid()
        self.recording.wait_for_sound(closed, 2.0)
        panel.press(LEAVE)
        pressed = time.monotonic()
        self.assertLess(pressed - closed, BURST - REACTION - 0.5, "the test was too slow")
        self.assert_silent(pressed + REACTION, pressed + REACTION + 0.4, "after the stop button")
        self.leave()


if __name__ == "__main__":
    unittest.main()
