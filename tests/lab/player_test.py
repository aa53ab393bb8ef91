#!/usr/bin/python3
"""How often a scenario is played, and how void attempts are judged."""

import contextlib
import io
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import player
from verdicts import main

HERE = pathlib.Path(__file__).resolve().parent
STOOD_STILL = "the machine stood still for 0.70 s within a second"


class FakeLab:
    """A lab whose watch reports the given complaints, one after the other."""

    def __init__(self, home, complaints):
        self.results = home / "results"
        self.watch = self
        self._home = home
        self._complaints = list(complaints)

    def take(self):
        """As the watch does."""
        return [], self._complaints.pop(0) if self._complaints else None

    def folder(self, name):
        """As the lab does."""
        folder = self._home / "played" / name
        folder.mkdir(parents=True, exist_ok=True)
        return folder

    def save(self, name, file, facts):
        """As the lab does."""
        (self.folder(name) / file).write_text(json.dumps(facts), encoding="utf-8")

    def move_to_results(self, name, attempt):
        """As the lab does."""
        (self.results / name).mkdir(parents=True, exist_ok=True)
        shutil.move(self.folder(name), self.results / name / attempt)

    def complaints(self, name):
        """The complaint of each attempt at a scenario, None for none."""
        attempts = sorted((self.results / name).iterdir())
        return [json.loads((attempt / "standstill.json").read_text())["complaint"]
                for attempt in attempts]


class WithPlayer(unittest.TestCase):
    """The base of tests with a player in a fake lab."""

    def player(self, *complaints, wanted=()):
        """A player in a lab with these complaints, one for each attempt."""
        home = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.lab = FakeLab(home, complaints)
        self.console = self.enterContext(contextlib.redirect_stdout(io.StringIO()))
        return player.Player(self.lab, wanted)


def _nothing(_lab, _name):
    pass


def _crash(_lab, _name):
    raise RuntimeError("the program has crashed")


class Attempts(WithPlayer):
    """How often a scenario is played."""

    def test_scenario_without_a_standstill_is_played_once(self):
        play = self.player()
        play("one", _nothing)
        self.assertEqual(self.lab.complaints("one"), [None])
        self.assertEqual(play.finish(), "1 scenarios, 0 of 2 retries")

    def test_void_attempt_is_kept_and_followed_by_another(self):
        play = self.player(STOOD_STILL)
        play("one", _nothing)
        self.assertEqual(self.lab.complaints("one"), [STOOD_STILL, None])
        self.assertEqual(play.finish(), "1 scenarios, 1 of 2 retries")
        self.assertIn(f"one, attempt 1 is void: {STOOD_STILL}", self.console.getvalue())

    def test_two_retries_may_be_of_one_scenario(self):
        play = self.player(STOOD_STILL, STOOD_STILL)
        play("one", _nothing)
        self.assertEqual(self.lab.complaints("one"), [STOOD_STILL, STOOD_STILL, None])

    def test_third_retry_in_one_run_fails_the_run(self):
        play = self.player(STOOD_STILL, None, STOOD_STILL, None, STOOD_STILL)
        play("one", _nothing)
        play("two", _nothing)
        with self.assertRaises(player.TooManyRetries) as raised:
            play("three", _nothing)
        self.assertIn("this host is too busy: 3 attempts were void", str(raised.exception))
        self.assertEqual(self.lab.complaints("three"), [STOOD_STILL])

    def test_failure_is_kept_without_a_retry_and_the_next_scenario_is_played(self):
        play = self.player()
        play("one", _crash)
        play("two", _nothing)
        self.assertIn("the program has crashed",
                      (self.lab.results / "one/attempt-1/failure").read_text())
        self.assertEqual(self.lab.complaints("one"), [None])
        self.assertEqual(self.lab.complaints("two"), [None])

    def test_only_the_named_scenarios_are_played_and_an_unknown_name_is_an_error(self):
        play = self.player(wanted=["two"])
        play("one", _nothing)
        play("two", _nothing)
        self.assertEqual([path.name for path in self.lab.results.iterdir()], ["two"])
        self.assertEqual(play.finish(), "1 scenarios, 0 of 2 retries")
        play = self.player(wanted=["three"])
        play("one", _nothing)
        with self.assertRaisesRegex(LookupError, "three"):
            play.finish()


class VoidAttempts(WithPlayer):
    """What is judged of a void attempt."""

    def judge(self, verdict, void, last, scenario="permitted"):
        """Runs a verdict on a void attempt and the one after it; returns its status and output.

        Each attempt is the result of the probe, or None if the scenario failed in the machine.
        """
        attempts = [void, last]

        def save(lab, name):
            probe = attempts.pop(0)
            if probe is None:
                _crash(lab, name)
            lab.save(name, "probe.json", {"errors": [], **probe})
        self.player(STOOD_STILL)(scenario, save)
        result = subprocess.run(
            [sys.executable, "-B", HERE / "keyboard_rights_test.py", verdict], check=False,
            env=dict(os.environ, LAB_RESULTS=str(self.lab.results)), capture_output=True, text=True)
        return result.returncode, result.stdout + result.stderr

    WELL = {"status": 0, "asked": [{"asked": "org.quorvane.key-reader"}], "lines": [
        "trusted no", "trusted, with a prompt no", "started", "trusted yes", "active yes",
        "⌨️ [KEYBOARD] Event tap started — global monitoring active",
        "at the end active yes", "at the end permitted yes"]}
    ENDS_WELL = "Permitted.test_probe_ends_with_status_0"
    IN_TIME = "Permitted.test_retry_finds_the_permission"

    def test_verdict_prints_each_attempt(self):
        status, output = self.judge(self.ENDS_WELL, self.WELL, self.WELL)
        self.assertEqual(status, 0, output)
        self.assertIn(f"permitted, attempt-1 of 2: {STOOD_STILL}", output)
        self.assertIn("permitted, attempt-2 of 2: its times count", output)

    def test_crash_in_a_void_attempt_fails(self):
        status, output = self.judge(self.ENDS_WELL, {**self.WELL, "status": -11}, self.WELL)
        self.assertEqual(status, 1)
        self.assertIn("-11 != 0", output)

    def test_crash_in_the_last_attempt_fails(self):
        status, _ = self.judge(self.ENDS_WELL, self.WELL, {**self.WELL, "status": -11})
        self.assertEqual(status, 1)

    def test_failure_in_the_machine_in_a_void_attempt_fails_every_verdict(self):
        status, output = self.judge(self.IN_TIME, None, self.WELL)
        self.assertEqual(status, 1)
        self.assertIn("the program has crashed", output)

    def test_late_line_in_a_void_attempt_is_ignored(self):
        late = {"status": 0, "lines": ["trusted no"]}
        status, output = self.judge(self.IN_TIME, late, self.WELL)
        self.assertEqual(status, 0, output)
        status, _ = self.judge(self.IN_TIME, self.WELL, late)
        self.assertEqual(status, 1)

    def test_scenario_that_was_not_played_fails(self):
        status, output = self.judge(self.IN_TIME, self.WELL, self.WELL, scenario="another")
        self.assertEqual(status, 1)
        self.assertIn("permitted was not played", output)


class Skips(unittest.TestCase):
    """A skipped test is a failure."""

    def run_verdict(self, body):
        """The status of a file of verdicts with one test."""
        text = ("import unittest\nfrom verdicts import main\n"
                f"class Verdict(unittest.TestCase):\n    def test_it(self):\n        {body}\n"
                "main()\n")
        return subprocess.run([sys.executable, "-B", "-c", text], check=False, cwd=HERE,
                              capture_output=True).returncode

    def test_skipped_verdict_fails(self):
        self.assertEqual(self.run_verdict("pass"), 0)
        self.assertEqual(self.run_verdict("self.skipTest('no device')"), 1)
        self.assertEqual(self.run_verdict("self.fail('wrong')"), 1)


if __name__ == "__main__":
    main()
