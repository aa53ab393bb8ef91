"""A demo that cannot be played names the step that failed and its log."""

import os
import pathlib
import subprocess
import tempfile
import unittest

from harness import BUILD, REPOSITORY

DEMO = REPOSITORY / "tools" / "demo"


class DemoFailures(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.commands = self.folder / "commands"
        self.commands.mkdir()

    def _replace(self, command, script):
        path = self.commands / command
        path.write_text(f"#!/bin/sh\n{script}\n")
        path.chmod(0o755)

    def _play(self, path, build=BUILD):
        return subprocess.run(
            ["/usr/bin/python3", DEMO, build, "--output", self.folder / "demo"],
            env={"PATH": path}, capture_output=True, text=True, timeout=60)

    def _assert_names(self, done, step, said):
        self.assertEqual(done.returncode, 1)
        self.assertIn(f"The demo failed: {step} did not start", done.stderr)
        log = self.folder / "demo" / f"{step}.log"
        self.assertIn(str(log), done.stderr)
        self.assertIn(said, done.stderr)
        self.assertIn(said, log.read_text())

    def test_a_display_server_that_does_not_start_is_named_with_its_log(self):
        self._replace("Xvfb", "echo no room for a screen >&2; exit 3")
        done = self._play(f"{self.commands}:/usr/bin:/bin")
        self._assert_names(done, "Xvfb", "no room for a screen")

    def test_a_sound_server_that_does_not_start_is_named_with_its_log(self):
        self._replace("pulseaudio", "echo no room for a sound >&2; exit 4")
        done = self._play(f"{self.commands}:/usr/bin:/bin")
        self._assert_names(done, "pulseaudio", "no room for a sound")

    def test_a_program_that_ends_early_is_named_with_its_output(self):
        build = self.folder / "build"
        build.mkdir()
        program = build / "quorvane"
        for status in (0, 5):
            with self.subTest(status=status):
                program.write_text(f"#!/bin/sh\necho ended with {status} >&2\nexit {status}\n")
                program.chmod(0o755)
                done = self._play("/usr/bin:/bin", build)
                self.assertEqual(done.returncode, 1)
                self.assertIn("The demo failed: the program has ended", done.stderr)
                self.assertIn(f"ended with {status}", done.stderr)
                self.assertIn(f"ended with {status}",
                              (self.folder / "demo/quorvane.log").read_text())

    def test_commands_that_are_not_installed_are_named_all_at_once(self):
        for command in ("openbox", "parec"):
            os.symlink(f"/usr/bin/{command}", self.commands / command)
        done = self._play(str(self.commands))
        self.assertEqual(done.returncode, 1)
        self.assertIn("not installed: Xvfb xdotool import dbus-daemon pulseaudio pactl\n",
                      done.stderr)


if __name__ == "__main__":
    unittest.main()
