"""Missing and broken files and services never stop the program."""

import contextlib
import pathlib
import time
import unittest

from harness import ANY_LINES, CREAK, FINISHED, MONITORING, NO_SENSOR, OWN_LINES, EndToEndTest
from virtual_desktop.screens import BUILD_QUALITY, ENTER, LEAVE


class Faults(EndToEndTest):
    listens = True

    def _check_that_it_goes_on(self, complaints=None):
        screens = self.screens()
        screens.press(LEAVE)
        screens.press(ENTER)
        screens.find(BUILD_QUALITY)
        self.leave(complaints)

    def _check_that_lid_is_silent(self, services):
        closed = time.monotonic()
        services.close_lid()
        self.assert_silent(closed, closed + 1.2, "a lid that closes")

    def _sound_lines(self):
        return [line for line in self.lid_lines() if line not in (NO_SENSOR, MONITORING)]

    def test_a_config_folder_that_cannot_be_written_is_survived(self):
        # Even for root: there can be no folder inside a file.
        file = pathlib.Path(self.home, "file")
        file.write_text("in the way")
        self.launch(XDG_CONFIG_HOME=str(file))
        screens = self.screens()
        self.pass_hardware_check(screens)
        screens.press(ENTER)
        screens.find(BUILD_QUALITY)
        self.leave(OWN_LINES)
        complaints = [line for line in self.program.errors.text
                      if line.startswith("quorvane: the settings are not saved")]
        self.assertEqual(len(complaints), 1, complaints)
        self.assertEqual(file.read_text(), "in the way")

    def test_a_damaged_config_file_counts_as_empty_and_is_kept(self):
        folder = pathlib.Path(self.environment["XDG_CONFIG_HOME"], "quorvane")
        folder.mkdir()
        damaged = b"\x00\xff[[hardwareChecked=true\n\x80"
        (folder / "quorvane.ini").write_bytes(damaged)
        self.launch()
        screens = self.screens()
        self.pass_hardware_check(screens)
        self.leave(OWN_LINES)
        self.assertIn(damaged, [file.read_bytes() for file in folder.iterdir()])
        self.assertIn("hardwareChecked=true", (folder / "quorvane.ini").read_text())

    def test_a_missing_sound_is_reported_and_silent(self):
        services = self.start_system_bus("login", "power")
        folder = self.resources_without("creaking.mp3")
        self.launch_into_control_panel(creak=True, QUORVANE_RESOURCES=str(folder))
        self._check_that_lid_is_silent(services)
        self._check_that_it_goes_on()
        self.assertEqual(self._sound_lines(), ["⚠️ Δεν βρέθηκε: creaking.mp3"])

    def _check_that_it_is_reported_and_silent(self, folder):
        services = self.start_system_bus("login", "power")
        self.launch_into_control_panel(creak=True, QUORVANE_RESOURCES=str(folder))
        self._check_that_lid_is_silent(services)
        # The decoder's library writes to standard error.
        self._check_that_it_goes_on(ANY_LINES)
        line, = self._sound_lines()
        self.assertRegex(line, "^⚠️ Σφάλμα: .")

    def test_a_truncated_sound_is_reported_and_silent(self):
        folder = self.resources_without("creaking.mp3")
        whole = CREAK.read_bytes()
        (folder / "creaking.mp3").write_bytes(whole[:len(whole) // 2])
        self._check_that_it_is_reported_and_silent(folder)

    def test_a_damaged_sound_is_reported_and_silent(self):
        self._check_that_it_is_reported_and_silent(self.resources_with_damaged("creaking.mp3"))

    def test_it_is_silent_until_a_sound_server_starts(self):
        services = self.start_system_bus("login", "power")
        late = self.session.sound_server("late")
        self.launch_into_control_panel(creak=True, PULSE_SERVER=late.address)
        services.close_lid()
        # No update of the burst finds a device; with one, the clip would reach its end.
        time.sleep(3.5)
        self.assertNotIn(FINISHED, self.program.console.text)
        self.assertTrue(self.program.is_running)

        with contextlib.ExitStack() as stack:
            late.start(stack)
            recording = late.record(stack)
            recording.wait_for_start()
            opened = time.monotonic()
            services.open_lid()
            recording.wait_for_sound(opened, 2.5)
            self._check_that_it_goes_on()

    def test_a_sound_server_that_dies_is_survived(self):
        services = self.start_system_bus("login", "power")
        short_lived = self.session.sound_server("short_lived")
        with contextlib.ExitStack() as stack:
            short_lived.start(stack)
            recording = short_lived.record(stack)
            recording.wait_for_start()
            self.launch_into_control_panel(creak=True, PULSE_SERVER=short_lived.address)
            closed = time.monotonic()
            services.close_lid()
            recording.wait_for_sound(closed, 2.0)
        self._check_that_it_goes_on()

    def test_no_system_bus_is_no_error(self):
        self.launch_into_control_panel(creak=True)
        self.program.wait_for_line(MONITORING)
        self._check_that_it_goes_on()
        self.assertEqual(self.lid_lines()[1:], [NO_SENSOR, MONITORING])

    def test_a_system_bus_without_services_is_no_error(self):
        self.start_system_bus()
        self.launch_into_control_panel(creak=True)
        self.program.wait_for_line(MONITORING)
        self._check_that_it_goes_on()
        self.assertEqual(self.lid_lines()[1:], [NO_SENSOR, MONITORING])


if __name__ == "__main__":
    unittest.main()
