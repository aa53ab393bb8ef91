"""What the verdicts on all scenarios have in common.

LAB_RESULTS names the folder of the run. Each attempt at a scenario has a folder in it.
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
    """What one scenario has left. Its last attempt is the one with times that count."""

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
        """What is judged from now on."""
        cls.folder = attempt

    @classmethod
    def json(cls, name):
        """One object that was left."""
        return json.loads((cls.folder / name).read_text(encoding="utf-8"))

    @classmethod
    def json_lines(cls, name):
        """The objects of a log."""
        lines = (cls.folder / name).read_text(encoding="utf-8").splitlines()
        return [json.loads(line) for line in lines]

    @property
    def facts(self):
        """What was noted of the program."""
        return self.json("program.json")

    def assert_contract_kept(self, count):
        """A contract's own test program ran `count` tests or more, and all of them passed."""
        result = self.json("result.json")
        print(result["output"])
        self.assertEqual(result["status"], 0)
        ran = re.search(r"(\d+) tests from \d+ test suites? ran", result["output"])
        self.assertGreaterEqual(int(ran[1]), count)
        # Less than have run if one was skipped.
        self.assertIn(f"[  PASSED  ] {ran[1]} tests.", result["output"])


def in_every_attempt(test):
    """A verdict on what is no time: one that a void attempt has to pass as well."""
    @functools.wraps(test)
    def judge(self):
        for attempt in self.attempts:
            with self.subTest(attempt.name):
                self.open(attempt)
                test(self)
    return judge


def main():
    """Runs the tests that the command line names; one that is skipped has failed."""
    result = unittest.main(verbosity=2, exit=False).result
    passed = result.wasSuccessful() and result.testsRun > 0 and not result.skipped
    sys.exit(0 if passed else 1)
