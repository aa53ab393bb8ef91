"""`quorvane --stop` ends what runs, whatever state it and the session bus are in."""

import os
import pathlib
import signal
import subprocess
import time
import unittest

from harness import PROGRAM, EndToEndTest
from virtual_desktop.screens import TITLE, wait_for_first_frame

STOPPED = (0, "", "")
NOT_RUNNING = (0, "quorvane: not running\n", "")


class Stop(EndToEndTest):
    waits = True

    def _start(self, *arguments):
        program = self.launch(*arguments)
        wait_for_first_frame(program)
        return program

    def _stop(self, most):
        """Runs `quorvane --stop` without a display, for `most` seconds at most."""
        environment = dict(self.environment)
        del environment["DISPLAY"]
        begun = time.monotonic()
        done = subprocess.run([PROGRAM, "--stop"], env=environment, capture_output=True, text=True,
                              timeout=10, check=False)
        self.assertLess(time.monotonic() - begun, most)
        return done.returncode, done.stdout, done.stderr

    def _check_that_it_closed(self, program):
        status, _ = program.wait_for_exit(0.1)
        self.assertEqual((status, program.errors.text), (0, []))
        self.assertEqual(self.session.display.windows(TITLE), [])

    def test_closes_the_window(self):
        program = self._start()
        self.assertEqual(self._stop(0.5), STOPPED)
        self._check_that_it_closed(program)

    def test_ends_one_that_is_only_starting(self):
        program = self.launch()
        lock = pathlib.Path(self.environment["XDG_RUNTIME_DIR"], "quorvane.lock")
        self.wait_until(lock.exists, "the lock")
        self.assertEqual(self._stop(2.0), STOPPED)
        self._check_that_it_closed(program)

    def test_ends_a_frozen_one(self):
        program = self._start()
        os.kill(program.pid, signal.SIGSTOP)
        self.assertEqual(self._stop(3.0), STOPPED)
        self.assertEqual(program.wait_for_exit(0.1)[0], -signal.SIGKILL)
        self.assertEqual(self.session.display.windows(TITLE), [])

    def test_where_nothing_runs_it_says_so(self):
        self.assertEqual(self._stop(0.5), NOT_RUNNING)

    def test_leaves_the_demo_alone(self):
        demo = self._start("--demo")
        self.assertEqual(self._stop(0.5), NOT_RUNNING)
        self.assertTrue(demo.is_running)
        demo.terminate()
        demo.wait_for_exit()

    def test_without_a_bus_the_lock_names_the_process(self):
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.home}/no-bus"
        program = self._start()
        self.assertEqual(self._stop(0.5), STOPPED)
        self._check_that_it_closed(program)
        self.assertEqual(self._stop(0.5), NOT_RUNNING)


if __name__ == "__main__":
    unittest.main()
