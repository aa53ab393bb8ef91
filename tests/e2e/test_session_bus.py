"""A session bus that does not answer, or goes away, stops nothing."""

import contextlib
import os
import signal
import socket
import subprocess
import time
import unittest

from harness import PROGRAM, EndToEndTest
from virtual_desktop.screens import TITLE, wait_for_first_frame


class SessionBus(EndToEndTest):
    waits = True

    def _use_own_bus(self, stack):
        bus = self.session.system_bus("own", stack)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address
        return bus

    def _use_hung_bus(self):
        """The socket of a bus that takes connections and never answers."""
        path = f"{self.session.directory}/hung-bus"
        bus = self.enterContext(socket.socket(socket.AF_UNIX))
        bus.bind(path)
        bus.listen()
        self.addCleanup(os.unlink, path)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={path}"

    def _start(self, *arguments):
        """Starts the program; returns how many seconds it takes until it has drawn its window."""
        begun = time.monotonic()
        self.launch(*arguments)
        wait_for_first_frame(self.program)
        return time.monotonic() - begun

    def _close_by_hand(self):
        """Closes the window, which has to obey."""
        window, = self.session.display.windows(TITLE)
        self.session.display.restore(window)
        self.wait_until(lambda: self.session.display.focused() == window, "the focus")
        self.session.display.close_window()
        self.assertEqual(self.program.wait_for_exit(3)[0], 0)

    def _stop(self):
        done = subprocess.run([PROGRAM, "--stop"], env=self.environment, capture_output=True,
                              text=True, timeout=10, check=False)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        return self.program.wait_for_exit(0.1)[0]

    def test_one_that_never_answers_delays_the_window_by_half_a_second(self):
        usual = self._start()
        self._close_by_hand()
        self._use_hung_bus()
        for arguments in ([], ["--demo"]):
            self.assertLess(self._start(*arguments), usual + 0.5 + 0.5)
            self._close_by_hand()
            self.assertEqual([line for line in self.program.errors.text if "SIMULATED" not in line],
                             ["quorvane: the session bus does not answer, and is not used"])

    def test_one_that_never_answers_keeps_nobody_from_stopping_it(self):
        self._use_hung_bus()
        self._start()
        self.assertEqual(self._stop(), 0)

    def test_one_that_freezes_keeps_nobody_from_stopping_it(self):
        with contextlib.ExitStack() as stack:
            bus = self._use_own_bus(stack)
            self._start()
            os.kill(bus.pid, signal.SIGSTOP)
            stack.callback(os.kill, bus.pid, signal.SIGCONT)
            self.assertEqual(self._stop(), 0)

    def test_one_that_ends_takes_nothing_with_it(self):
        with contextlib.ExitStack() as stack:
            self._use_own_bus(stack)
            self._start()
        time.sleep(0.5)
        second = self.session.run([PROGRAM], self.environment, self.stack)
        self.assertEqual(second.wait_for_exit(3)[0], 0)
        self.assertEqual(second.errors.text, ["quorvane: already running"])
        self._close_by_hand()
        self.assertEqual(self.program.errors.text, [])


if __name__ == "__main__":
    unittest.main()
