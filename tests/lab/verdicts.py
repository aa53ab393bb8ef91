"""The base of the verdicts: the tests of the files that the scenarios left.

LAB_RESULTS is the folder of the results, with a folder for each attempt at a scenario.
"""

import functools
import json
import os
import pathlib
import re
import sys
import unittest

# The tests of the scenarios import from there, too.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))


class Scenario(unittest.TestCase):
    """The files of one scenario. Times count in its last attempt only."""

    NAME = ""

    @classmethod
    def setUpClass(cls):
        results = pathlib.Path(os.environ["LAB_RESULTS"], cls.NAME)
        cls.attempts = sorted(results.glob("attempt-*"))
        if not cls.attempts:
            raise AssertionError(f"{cls.NAME} was not played")
        for attempt in cls.attempts:
            cls.folder = attempt
            void = cls.json("standstill.json")["complaint"]
            print(f"{cls.NAME}, {attempt.name} of {len(cls.attempts)}: {void or 'its times count'}")
            failure = attempt / "failure"
            if failure.exists():
                raise AssertionError(f"{cls.NAME} failed in the machine:\n{failure.read_text()}")

    def setUp(self):
        self.open(self.attempts[-1])

    @classmethod
    def open(cls, attempt):
        """Selects the attempt that is judged from now on."""
        cls.folder = attempt

    @classmethod
    def json(cls, name):
        """The content of a JSON file."""
        return json.loads((cls.folder / name).read_text(encoding="utf-8"))

    @classmethod
    def json_lines(cls, name):
        """The objects of a log."""
        lines = (cls.folder / name).read_text(encoding="utf-8").splitlines()
        return [json.loads(line) for line in lines]

    @property
    def facts(self):
        """The facts about the program."""
        return self.json("program.json")

    def assert_contract_kept(self, count):
        """The contract's test program ran at least `count` tests, and all of them passed."""
        result = self.json("result.json")
        print(result["output"])
        self.assertEqual(result["status"], 0)
        ran = re.search(r"(\d+) tests from \d+ test suites? ran", result["output"])
        self.assertGreaterEqual(int(ran[1]), count)
        # With a skipped test the number would be lower.
        self.assertIn(f"[  PASSED  ] {ran[1]} tests.", result["output"])


def in_every_attempt(test):
    """Decorates a verdict on anything but times: void attempts have to pass it, too."""
    @functools.wraps(test)
    def judge(self):
        for attempt in self.attempts:
            with self.subTest(attempt.name):
                self.open(attempt)
                test(self)
    return judge


def main():
    """Runs the tests that the command line names; a skipped test is a failure."""
    result = unittest.main(verbosity=2, exit=False).result
    passed = result.wasSuccessful() and result.testsRun > 0 and not result.skipped
    sys.exit(0 if passed else 1)
