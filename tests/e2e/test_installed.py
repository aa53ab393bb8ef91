"""What `cmake --install` installs, for a package."""

import configparser
import os
import pathlib
import re
import subprocess
import unittest
import wave
import xml.etree.ElementTree

from harness import BUILD, LOADED, PROGRAM, REPOSITORY, EndToEndTest, wait_until

ENTRY = "share/applications/org.quorvane.Quorvane.desktop"
MANUAL = "share/man/man1/quorvane.1"

FILES = {
    "bin/quorvane",
    "lib/udev/rules.d/70-quorvane.rules",
    "libexec/quorvane-key-reader",
    ENTRY,
    "share/doc/quorvane/LICENSE",
    "share/icons/hicolor/scalable/apps/quorvane.svg",
    MANUAL,
    "share/polkit-1/actions/org.quorvane.key-reader.policy",
    "share/quorvane/creaking.mp3",
    "share/quorvane/fanmac.mp3",
    "share/quorvane/keyboard.mp3",
    "share/quorvane/logo.png",
    "share/quorvane/tractor.mp3",
}

OTHER_LENGTH = 7.5
"""Seconds; no sound of the program is that long."""


class Installed(EndToEndTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        package = pathlib.Path(cls.session.directory, "package")
        subprocess.run(["cmake", "--install", str(BUILD), "--prefix", "/usr"], check=True,
                       env=dict(os.environ, DESTDIR=str(package)), stdout=subprocess.DEVNULL)
        cls.package = package
        cls.prefix = package / "usr"
        entry = configparser.ConfigParser(interpolation=None)
        entry.optionxform = str
        entry.read(cls.prefix / ENTRY, encoding="utf-8")
        cls.entry = entry["Desktop Entry"]
        cls.stop_entry = entry["Desktop Action stop"]

    def _launch_as_a_desktop_does(self, *options):
        path = f"{self.prefix / 'bin'}:{self.environment['PATH']}"
        self.program = self.session.run([*self.entry["Exec"].split(), *options],
                                        self.environment | {"PATH": path}, self.stack)

    def _length_of_the_creak(self):
        """The seconds that the program prints for the sound that it has found."""
        self.skip_hardware_check()
        self._launch_as_a_desktop_does()
        _, line = self.program.console.wait_for(
            lambda line: re.fullmatch(LOADED, line), "about the creak's sound", 20)
        self.leave()
        return float(re.fullmatch(LOADED, line)[1])

    def _windows(self, kind, key):
        """The visible windows whose title or class is what the entry says."""
        found = subprocess.run(
            ["xdotool", "search", "--onlyvisible", kind, f"^{self.entry[key]}$"],
            env=self.environment, capture_output=True, text=True, timeout=20, check=False)
        return found.stdout.split()

    def test_every_file_is_in_its_place_and_no_other(self):
        files = {str(file.relative_to(self.prefix)) for file in self.package.rglob("*")
                 if not file.is_dir()}
        self.assertEqual(files, FILES)

    def test_polkit_policy_names_the_installed_program(self):
        policy = xml.etree.ElementTree.parse(
            self.prefix / "share/polkit-1/actions/org.quorvane.key-reader.policy")
        program = policy.find(".//annotate[@key='org.freedesktop.policykit.exec.path']").text
        self.assertEqual(program, "/usr/libexec/quorvane-key-reader")
        rights = [policy.find(f".//{who}").text
                  for who in ("allow_any", "allow_inactive", "allow_active")]
        self.assertEqual(rights, ["no", "no", "auth_admin"])

    def test_the_installed_program_runs(self):
        self._launch_as_a_desktop_does("--version")
        status, _ = self.program.wait_for_exit(10)
        self.assertEqual((status, self.program.errors.text), (0, []))
        self.assertRegex("\n".join(self.program.console.text), r"^quorvane \d+\.\d+\.\d+$")

    def test_it_finds_the_installed_sounds(self):
        # Not those of the source tree: the installed one gets another length.
        installed = self.prefix / "share/quorvane/creaking.mp3"
        original = installed.read_bytes()
        self.addCleanup(installed.write_bytes, original)
        before = self._length_of_the_creak()
        self.assertGreater(before, 0)
        self.assertNotEqual(before, OTHER_LENGTH)
        with wave.open(str(installed), "wb") as sound:
            sound.setparams((1, 2, 8000, 0, "NONE", ""))
            sound.writeframes(bytes(round(2 * 8000 * OTHER_LENGTH)))
        self.assertEqual(self._length_of_the_creak(), OTHER_LENGTH)

    def test_udev_rules_name_every_product_that_may_hold_the_lid_sensor(self):
        source = (REPOSITORY / "sensing/LidAngleSensor.cpp").read_text(encoding="utf-8")
        products, = re.findall(r"productIDs\{(.*?)\}", source)
        rules = (self.prefix / "lib/udev/rules.d/70-quorvane.rules").read_text(encoding="utf-8")
        self.assertEqual(sorted(re.findall(r":05AC:(\w{4})\.", rules)),
                         sorted(re.findall(r"0x(\w{4})", products.upper().replace("0X", "0x"))))

    def test_desktop_entry_is_valid_and_names_what_was_installed(self):
        subprocess.run(["desktop-file-validate", self.prefix / ENTRY], check=True, timeout=20)
        self.assertTrue(os.access(self.prefix / "bin" / self.entry["TryExec"], os.X_OK))
        icons = self.prefix / "share/icons/hicolor/scalable/apps"
        self.assertTrue((icons / f"{self.entry['Icon']}.svg").is_file())

    def test_desktop_entry_offers_to_stop_it(self):
        self.assertEqual(self.entry["Actions"], "stop;")
        self.assertEqual(self.stop_entry["Exec"], "quorvane --stop")

    def test_manual_page_has_every_option_and_no_mistake(self):
        page = self.prefix / MANUAL
        options = subprocess.run([str(PROGRAM), "--help"], capture_output=True, text=True, timeout=10,
                                 check=True).stdout
        shown = subprocess.run(["groff", "-man", "-Tascii", "-P-cbou", "-ww", page],
                               capture_output=True, text=True, timeout=20, check=True)
        self.assertEqual(shown.stderr, "")
        for option in re.findall(r"^  (--\w+)", options, re.MULTILINE):
            self.assertRegex(shown.stdout, rf"(?m)^ +{option}\b")

    def test_its_window_belongs_to_the_desktop_entry(self):
        self.skip_hardware_check()
        self._launch_as_a_desktop_does()
        # The title and the class are not set at the same time.
        wait_until(lambda: self._windows("--name", "Name")
                   and self._windows("--name", "Name") == self._windows("--class", "StartupWMClass"),
                   "a window that has the entry's name and class", 20)
        self.leave()


if __name__ == "__main__":
    unittest.main()
