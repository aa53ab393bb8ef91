#!/usr/bin/python3
"""clang-tidy's plug-in, and when a source is checked again. Needs clang-tidy."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

import tidy

OWN_CODE_ONLY = pathlib.Path(os.environ["QUORVANE_BUILD_DIR"]) / "tests/lint/own_code_only.so"


class OwnCodeOnly(unittest.TestCase):
    """clang-tidy with the plug-in."""

    FILES = {
        "system/library.h": "#define LIBRARY_RESULT(name) int name\n"
                            "inline int library() { int left; left = 1; return left; }\n",
        "own.h": "inline int own() { int below; below = 1; return below; }\n",
        "main.cpp": "#include <library.h>\n"
                    '#include "own.h"\n'
                    "namespace deep { struct Thing { int all() { int here; here = library(); "
                    "return here + own(); } }; }\n"
                    "LIBRARY_RESULT(of_a_macro)() { int inside; inside = 1; return inside; }\n",
    }

    def complaints(self, *options):
        """The variables that clang-tidy reports as uninitialized."""
        with tempfile.TemporaryDirectory() as folder:
            for name, text in self.FILES.items():
                file = pathlib.Path(folder, name)
                file.parent.mkdir(exist_ok=True)
                file.write_text(text, encoding="utf-8")
            output = subprocess.run(
                ["clang-tidy", "--quiet", "--checks=-*,cppcoreguidelines-init-variables",
                 "--header-filter=.*", "--system-headers", *options, f"{folder}/main.cpp", "--",
                 f"-isystem{folder}/system"], check=False, capture_output=True, text=True).stdout
        return {name for name in ("left", "below", "here", "inside")
                if f"variable '{name}' is not initialized" in output}

    def test_all_of_our_own_code_is_checked_and_no_other(self):
        self.assertEqual(self.complaints(), {"left", "below", "here", "inside"})
        self.assertEqual(self.complaints(f"--load={OWN_CODE_ONLY}"), {"below", "here", "inside"})


class TidyStamps(unittest.TestCase):
    """When a source is checked again, in a build of one source and one header."""

    COMMAND = "c++ -std=c++20 -o main.o -c ../main.cpp"

    def setUp(self):
        self.root = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.build = self.root / "build"
        self.build.mkdir()
        self.write(".clang-tidy", "Checks: '-*,cppcoreguidelines-init-variables'\n"
                                  "WarningsAsErrors: '*'\n")
        self.write("own.h", "inline int own() { return 1; }\n")
        self.write("main.cpp", '#include "own.h"\nint main() { return own(); }\n')
        self.compile()

    def write(self, name, text):
        (self.root / name).write_text(text, encoding="utf-8")

    def compile(self, command=COMMAND):
        self.write("build/build.ninja", f"rule compile\n  command = {command} -MD -MF main.d\n"
                                        "  depfile = main.d\n  deps = gcc\n"
                                        "build main.o: compile ../main.cpp\n")
        self.write("build/compile_commands.json", json.dumps([
            {"directory": str(self.build), "command": command,
             "file": str(self.root / "main.cpp")}]))
        subprocess.run(["ninja", "-C", self.build], check=True, capture_output=True)

    def is_known(self):
        tidy.digest.cache_clear()
        return tidy.Tidy(self.build, self.root).is_known("main.cpp")

    def problem(self):
        tidy.digest.cache_clear()
        return tidy.Tidy(self.build, self.root).problem("main.cpp")

    def make_known(self):
        self.assertIsNone(self.problem())
        self.assertTrue(self.is_known())

    def test_an_unchanged_source_is_checked_once(self):
        self.assertFalse(self.is_known())
        self.make_known()
        self.compile()
        self.assertTrue(self.is_known())

    def test_a_changed_source_is_checked(self):
        self.make_known()
        self.write("main.cpp", '#include "own.h"\nint main() { return own() + 1; }\n')
        self.assertFalse(self.is_known())
        self.compile()
        self.assertFalse(self.is_known())
        self.make_known()

    def test_a_changed_include_is_checked(self):
        self.make_known()
        self.write("own.h", "inline int own() { return 2; }\n")
        self.compile()
        self.assertFalse(self.is_known())

    def test_changed_settings_are_checked(self):
        self.make_known()
        self.write(".clang-tidy", "Checks: '-*,bugprone-*'\nWarningsAsErrors: '*'\n")
        self.assertFalse(self.is_known())

    def test_a_changed_command_is_checked(self):
        self.make_known()
        self.compile("c++ -std=c++20 -DNDEBUG -o main.o -c ../main.cpp")
        self.assertFalse(self.is_known())

    def test_a_source_with_an_outdated_build_is_checked_each_time(self):
        self.write("own.h", "inline int own() { return 2; }\n")
        self.assertIsNone(self.problem())
        self.assertFalse(self.is_known())

    def test_a_complaint_is_repeated_each_time(self):
        self.make_known()
        fine = (self.root / "main.cpp").read_text(encoding="utf-8")
        self.write("main.cpp", "int main() { int left; left = 1; return left; }\n")
        self.compile()
        for _ in range(2):
            self.assertIn("'left' is not initialized", self.problem())
            self.assertFalse(self.is_known())
        self.write("main.cpp", fine)
        self.compile()
        self.assertFalse(self.is_known())


if __name__ == "__main__":
    unittest.main()
