#!/usr/bin/python3
"""Configuring the build, with and without the tests."""

import functools
import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Configuration(unittest.TestCase):
    def configure(self, *options, **environment):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        done = subprocess.run(["cmake", "--preset", "default", "-B", folder, *options], cwd=ROOT,
                              env=os.environ | environment, capture_output=True, text=True)
        return pathlib.Path(folder), done

    def commands(self, *options):
        """How each object file is compiled."""
        folder, done = self.configure(*options)
        self.assertEqual(done.returncode, 0, done.stderr)
        entries = json.loads((folder / "compile_commands.json").read_text())
        commands = [entry["command"].replace(str(folder), "BUILD") for entry in entries]
        return {re.search(r" -o (\S+)", command)[1]: command for command in commands}

    def test_the_tests_do_not_change_how_the_program_is_compiled(self):
        alone = self.commands()
        beside_tests = self.commands("-DQUORVANE_TESTS=ON", "-DQUORVANE_BENCHMARKS=ON")
        self.assertGreater(len(alone), 100)
        self.assertGreater(len(beside_tests), len(alone))
        self.assertEqual([file for file, command in alone.items()
                          if beside_tests.get(file) != command], [])

    def test_the_program_alone_has_no_tests_and_no_benchmarks(self):
        names = [name for name in self.commands() if name.startswith(("tests/", "bench/"))]
        self.assertEqual(names, [])

    @staticmethod
    @functools.cache
    def key_reader(preset):
        """The program that runs as root, built for all tests together."""
        folder = pathlib.Path(Configuration.enterClassContext(tempfile.TemporaryDirectory()))
        for command in (["cmake", "--preset", preset, "-B", folder],
                        ["cmake", "--build", folder, "--target", "quorvane-key-reader"]):
            subprocess.run(command, cwd=ROOT, check=True, capture_output=True)
        return folder / "quorvane-key-reader"

    def test_what_runs_as_root_is_hardened_in_every_build(self):
        for preset in ("default", "release"):
            with self.subTest(preset):
                program = self.key_reader(preset)
                facts = subprocess.run(["readelf", "-Whdls", program], check=True,
                                       capture_output=True, text=True).stdout
                for fact in ("Position-Independent Executable", "BIND_NOW", "GNU_RELRO",
                             "__stack_chk_fail"):
                    self.assertIn(fact, facts)
                self.assertRegex(facts, r"GNU_STACK .* RW ")
                # In so small a program _FORTIFY_SOURCE leaves no symbol to look for.
                commands = json.loads((program.parent / "compile_commands.json").read_text())
                for entry in commands:
                    if "/keyboard/reader/" in entry["file"]:
                        self.assertIn(" -D_FORTIFY_SOURCE=2", entry["command"])

    def test_a_release_is_hardened_and_does_not_contain_the_source_path(self):
        program = self.key_reader("release")
        self.assertEqual(program.read_bytes().count(os.fsencode(f"{ROOT}/platform")), 0)
        commands = json.loads((program.parent / "compile_commands.json").read_text())
        for entry in commands:
            for option in (" -D_FORTIFY_SOURCE=2", " -fstack-protector-strong"):
                self.assertIn(option, entry["command"])

    def test_everything_that_is_missing_is_named_at_once(self):
        _, done = self.configure("-DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON",
                                 "-DCMAKE_DISABLE_FIND_PACKAGE_nlohmann_json=ON",
                                 PKG_CONFIG_LIBDIR="/nonexistent")
        self.assertNotEqual(done.returncode, 0)
        words = done.stderr.split()
        for name in ("Qt6Quick", "Qt6DBus", "nlohmann_json", "sndfile", "libudev", "xcb-randr"):
            self.assertIn(name, words)
        self.assertNotIn("GTest", words)


if __name__ == "__main__":
    unittest.main(verbosity=2)
