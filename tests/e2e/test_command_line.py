"""The program's options and their errors."""

import pathlib
import unittest

from harness import EndToEndTest
from virtual_desktop.screens import ENTER


class CommandLine(EndToEndTest):
    def _run(self, *arguments, **environment):
        program = self.launch(*arguments, **environment)
        status, _ = program.wait_for_exit(10)
        return status, "\n".join(program.console.text), "\n".join(program.errors.text)

    def test_help_names_every_option(self):
        for display in (self.environment["DISPLAY"], None):
            status, output, errors = self._run("--help", DISPLAY=display)
            self.assertEqual((status, errors), (0, ""))
            for option in ("--help", "--version", "--simulated", "--demo", "--stop"):
                self.assertIn(option, output)

    def test_a_refusal_names_the_help_option(self):
        _, _, errors = self._run("--no-such-option")
        self.assertIn("--help", errors.replace("--no-such-option", ""))

    def test_version_is_printed(self):
        status, output, errors = self._run("--version", DISPLAY=None)
        self.assertEqual((status, errors), (0, ""))
        self.assertRegex(output, r"^\S+ \d+\.\d+\.\d+$")

    def _check_refusal(self, about, *arguments):
        status, output, errors = self._run(*arguments)
        self.assertEqual(status, 2, errors)
        self.assertEqual(output, "")
        self.assertIn(about, errors)
        self.assertTrue(errors.startswith("quorvane: "), errors)

    def test_an_unknown_option_is_refused(self):
        self._check_refusal("--no-such-option", "--no-such-option")

    def test_a_stray_argument_is_refused(self):
        self._check_refusal("stray", "stray")

    def test_a_missing_scenario_is_refused(self):
        self._check_refusal("/no/such.scenario", "--simulated", "/no/such.scenario")

    def test_an_invalid_scenario_is_refused(self):
        file = pathlib.Path(self.home, "nonsense.scenario")
        file.write_text('{ "model": "X", "lids": 3 }')
        self._check_refusal("lids", "--simulated", str(file))

    def test_an_option_without_its_file_is_refused(self):
        self._check_refusal("--simulated", "--simulated")

    def test_a_missing_display_is_an_error(self):
        status, output, errors = self._run(DISPLAY=None)
        self.assertEqual((status, output), (1, ""))
        self.assertRegex(errors, "(?m)^quorvane: .*display")

    def test_a_display_that_does_not_answer_is_an_error(self):
        status, output, errors = self._run(DISPLAY=":65000")
        self.assertEqual((status, output), (1, ""))
        self.assertRegex(errors, "(?m)^quorvane: .*display")

    def test_help_on_a_closed_pipe_is_no_error(self):
        program = self.launch("--help", console_reader=False)
        self.assertEqual(program.wait_for_exit(10)[0], 0)

    def test_a_console_on_a_closed_pipe_is_no_error(self):
        self.skip_hardware_check()
        self.launch(console_reader=False)
        screens = self.session.reader.application(self.program)
        screens.press(ENTER)
        screens.find("SIMULATION ACTIVE")
        self.leave()


if __name__ == "__main__":
    unittest.main()
