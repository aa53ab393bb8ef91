"""Scenario files that the program refuses: one line says why, and where."""

import os
import pathlib
import unittest

from harness import EndToEndTest


class ScenarioFiles(EndToEndTest):
    def _check_refusal(self, file, about):
        program = self.launch("--simulated", str(file))
        status, _ = program.wait_for_exit(10)
        self.assertEqual((status, program.console.text), (2, []))
        self.assertEqual(program.errors.text, [f"quorvane: {file}{about}"])

    def _file(self, text):
        file = pathlib.Path(self.home, "a.scenario")
        file.write_text(text)
        return file

    def test_a_mistake_is_named_with_line_and_column(self):
        for text, about in (
                ('{\n  "modle": "X"\n}', ':2:3: the scenario has an unknown key "modle"'),
                ('{"events": [{"key": "up"}]}', ':1:13: an event has no time, "at"'),
                ('{"model": "a",\n "model": "b"}', ':2:2: the key "model" is there twice'),
                ('{"hid": [{"unplugAt": 1e999}]}', ":1:27: number overflow parsing '1e999'"),
                ('{}\nmore', ":2:1: syntax error while parsing value - invalid literal; "
                             "last read: '{}<U+000A>m'; expected end of input")):
            with self.subTest(about):
                self._check_refusal(self._file(text), about)

    def test_a_file_that_is_too_large_is_refused(self):
        self._check_refusal(self._file("{}" + " " * (1 << 20)), ": Larger than 1 MiB")

    def test_what_is_no_file_is_refused_unread(self):
        pipe = pathlib.Path(self.home, "pipe")
        os.mkfifo(pipe)
        self._check_refusal(pipe, ": Not a regular file")
        self._check_refusal("/dev/zero", ": Not a regular file")
        self._check_refusal(self.home, ": Is a directory")


if __name__ == "__main__":
    unittest.main()
