"""Environments that lack something: descriptors, folders, the usual locale."""

import os
import pathlib
import re
import resource
import subprocess
import time
import unittest

from harness import ANY_LINES, LOADED, OWN_LINES, PROGRAM, EndToEndTest
from virtual_desktop import screens

SWITCHES = ("Build quality", "Keyboard", "Thermals", "Stability", "Performance", "Startup")


class FewDescriptors(EndToEndTest):
    waits = True

    def test_too_few_at_the_start_are_said(self):
        for count in (5, 8, 12, 20, 40):
            program = self.session.run(
                ["/bin/sh", "-c", f'ulimit -n {count}; exec "$0"', str(PROGRAM)],
                self.environment, self.stack)
            self.assertEqual(program.wait_for_exit()[0], 1, f"{count} descriptors")
            self.assertEqual(program.errors.text, [
                'quorvane: too few file descriptors ("ulimit -n" tells how many there are)'])

    def test_none_left_while_it_runs_is_survived(self):
        panel = self.launch_into_control_panel(creak=False)
        used = max(int(name) for name in os.listdir(f"/proc/{self.program.pid}/fd"))
        resource.prlimit(self.program.pid, resource.RLIMIT_NOFILE, (used + 1, used + 1))
        for name in SWITCHES:
            panel.toggle(name)
        # The first stop screen comes after 15 s.
        time.sleep(17)
        panel.press(screens.LEAVE)
        panel.find(screens.ENTER)
        self.leave(ANY_LINES)


class Folders(EndToEndTest):
    waits = True

    def test_relative_config_folders_are_ignored(self):
        inside = pathlib.Path(self.home, "inside")
        inside.mkdir()
        self.program = self.session.run(
            ["/bin/sh", "-c", f'cd "{inside}" && exec "$0"', str(PROGRAM)],
            self.environment | {"XDG_CONFIG_HOME": "config", "XDG_DATA_HOME": "data"}, self.stack)
        self.pass_hardware_check(self.screens())
        self.leave()
        settings = pathlib.Path(self.home, ".config", "quorvane", "quorvane.ini")
        self.assertEqual(settings.read_text(), "[General]\nhardwareChecked=true\n")
        self.assertEqual(list(inside.iterdir()), [])

    def test_no_runtime_folder_is_survived(self):
        self.launch_into_control_panel(creak=True, XDG_RUNTIME_DIR=None)
        self.leave(OWN_LINES)

    def test_no_home_folder_is_survived(self):
        self.launch(HOME=None, XDG_CONFIG_HOME=None, XDG_DATA_HOME=None, XDG_CACHE_HOME=None)
        self.screens()
        self.leave(ANY_LINES)


class Locales(EndToEndTest):
    waits = True

    def _lines(self, locale):
        folder = pathlib.Path(self.home, "locales")
        folder.mkdir(exist_ok=True)
        subprocess.run(["localedef", "-i", locale, "-f", "UTF-8", str(folder / f"{locale}.UTF-8")],
                       check=True, capture_output=True)
        self.launch(LC_ALL=f"{locale}.UTF-8", LOCPATH=str(folder))
        self.pass_hardware_check(self.screens())
        self.leave(OWN_LINES)
        return self.program.console.text

    def test_turkish_changes_no_number_or_setting(self):
        self._check("tr_TR")

    def test_a_decimal_comma_changes_nothing(self):
        self._check("de_DE")

    def _check(self, locale):
        lines = self._lines(locale)
        self.assertIn("✅ [RUMBLE] Buffer generated: 25.0Hz + 12.5Hz sub", lines)
        self.assertEqual(sum(1 for line in lines if re.fullmatch(LOADED, line)), 1)
        settings = screens.settings_file(self.environment)
        self.assertEqual(settings.read_text(), "[General]\nhardwareChecked=true\n")


if __name__ == "__main__":
    unittest.main()
