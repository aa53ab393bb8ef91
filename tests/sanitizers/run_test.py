#!/usr/bin/python3
"""What counts as a failure of a sanitizer run."""

import importlib.machinery
import importlib.util
import pathlib
import tempfile
import unittest

PATH = pathlib.Path(__file__).with_name("run")
LOADER = importlib.machinery.SourceFileLoader("run", str(PATH))
run = importlib.util.module_from_spec(importlib.util.spec_from_loader("run", LOADER))
LOADER.exec_module(run)

GREEN = "[==========] 3 tests from 1 test suite ran. (5 ms total)\n[  PASSED  ] 3 tests.\n"


class Verdict(unittest.TestCase):
    def test_tests_that_pass_are_counted(self):
        self.assertEqual(run.verdict(0, GREEN), (3, None))
        self.assertEqual(run.verdict(0, "...\nRan 2 tests in 4.0s\n\nOK\n"), (2, None))

    def test_everything_else_is_a_failure(self):
        for status, text, wrong in (
                (1, GREEN, "status 1"),
                (-6, "[ RUN      ] A.b\n", "status -6"),
                ("hung for 5 s", GREEN, "hung for 5 s"),
                (0, "", "no test ran"),
                (0, "[  PASSED  ] 0 tests.\n", "no test ran"),
                (0, "Ran 0 tests in 0.0s\n", "no test ran"),
                (0, GREEN + "[  SKIPPED ] 1 test, listed below:\n", "tests were skipped"),
                (0, "Ran 2 tests in 4.0s\n\nOK (skipped=1)\n", "tests were skipped"),
                (0, "==1==ERROR: AddressSanitizer: heap-use-after-free\n" + GREEN,
                 "a sanitizer's report"),
                (0, "WARNING: ThreadSanitizer: data race (pid=1)\n" + GREEN,
                 "a sanitizer's report"),
                (0, "a.cpp:3:5: runtime error: shift exponent 40\n" + GREEN,
                 "a sanitizer's report")):
            with self.subTest(wrong, text=text):
                self.assertEqual(run.verdict(status, text)[1], wrong)
                self.assertEqual(run.verdict(status, text, sound=True)[1], wrong)

    def test_tests_of_sound_may_fail_without_a_report(self):
        failed = "[  PASSED  ] 2 tests.\n[  FAILED  ] 1 test, listed below:\n\n 1 FAILED TEST\n"
        self.assertEqual(run.verdict(1, failed)[1], "status 1")
        self.assertEqual(run.verdict(1, failed, sound=True), (2, None))
        self.assertEqual(run.verdict(-11, failed, sound=True)[1], "status -11")
        self.assertEqual(run.verdict(66, "WARNING: ThreadSanitizer: data race\n" + failed,
                                     sound=True)[1], "a sanitizer's report")


class Processes(unittest.TestCase):
    def setUp(self):
        self.build = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        (self.build / "sanitizers").mkdir()

    def passes(self, script):
        return run.run(self.build, "example", ["sh", "-c", script], self.build)

    def test_one_that_ends_is_judged_by_its_log(self):
        self.assertTrue(self.passes("echo '[  PASSED  ] 3 tests.'"))
        self.assertFalse(self.passes("echo '[  PASSED  ] 3 tests.'; exit 3"))
        self.assertFalse(self.passes("true"))

    def test_one_that_hangs_is_ended(self):
        run.HANG = 0.2
        self.assertFalse(self.passes("echo '[  PASSED  ] 3 tests.'; sleep 100"))


if __name__ == "__main__":
    unittest.main(buffer=True)
