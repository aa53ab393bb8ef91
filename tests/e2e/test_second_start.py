"""A second start brings the first one's window to the front."""

import os
import signal
import unittest

from harness import EndToEndTest
from virtual_desktop.other_window import OtherWindow
from virtual_desktop.screens import TITLE, wait_for_first_frame


class StartedTwice(EndToEndTest):
    waits = True

    def _windows(self):
        return self.session.display.windows(TITLE)

    def _start(self, *arguments):
        """Starts the program; returns it and its window."""
        others = self._windows()
        program = self.launch(*arguments)
        window, = self.wait_until(
            lambda: [window for window in self._windows() if window not in others], "the window")
        wait_for_first_frame(program)
        return program, window

    def _start_again(self):
        """Starts the program a second time, to its end; returns its lines on standard error."""
        program = self.launch()
        status, _ = program.wait_for_exit(3)
        self.assertEqual((status, program.console.text), (0, []))
        return program.errors.text

    def _end(self, *programs):
        for program in programs:
            program.terminate()
            self.assertEqual(program.wait_for_exit()[0], 0, program.errors.text)


class SecondStart(StartedTwice):
    def _check_that_it_is_in_front(self, window):
        self.wait_until(lambda: self.session.display.focused() == window, "the focus")
        self.assertEqual(self._windows(), [window])

    def test_raises_a_window_behind_another(self):
        first, window = self._start()
        other = OtherWindow("204060", env=self.environment, stack=self.stack)
        self.session.display.restore(other.id)
        self.wait_until(lambda: self.session.display.focused() == other.id, "another window")
        self.assertEqual(self._start_again(), [])
        self._check_that_it_is_in_front(window)
        self._end(first)

    def test_restores_a_minimised_window(self):
        first, window = self._start()
        self.session.display.minimise(window)
        self.wait_until(lambda: not self._windows(), "the window to go")
        self.assertEqual(self._start_again(), [])
        self._check_that_it_is_in_front(window)
        self._end(first)

    def test_of_two_at_the_same_instant_one_shows_its_window(self):
        programs = [self.launch(), self.launch()]
        self.wait_until(lambda: not all(program.is_running for program in programs), "one to end")
        second, first = sorted(programs, key=lambda program: program.is_running)
        self.assertEqual(second.wait_for_exit()[0], 0)
        wait_for_first_frame(first)
        self.assertEqual(len(self._windows()), 1)
        self._end(first)

    def test_after_the_end_of_the_first_it_runs_itself(self):
        for signals in ([signal.SIGTERM], [signal.SIGKILL], [signal.SIGSTOP, signal.SIGKILL]):
            first, _ = self._start()
            for number in signals:
                os.kill(first.pid, number)
            first.wait_for_exit()
        self._end(self._start()[0])

    def test_a_frozen_first_one_does_not_hold_it_up(self):
        first, window = self._start()
        os.kill(first.pid, signal.SIGSTOP)
        line, = self._start_again()
        self.assertEqual(line, "quorvane: already running, but it has not answered yet; "
                               "'quorvane --stop' ends it")
        os.kill(first.pid, signal.SIGCONT)
        self._check_that_it_is_in_front(window)
        self._end(first)

    def test_the_demo_is_neither_the_first_nor_the_second(self):
        demo, _ = self._start("--demo")
        first, window = self._start()
        other_demo, _ = self._start("--demo")
        self.assertEqual(self._start_again(), [])
        self.wait_until(lambda: self.session.display.focused() == window, "the focus")
        self.assertEqual(len(self._windows()), 3)
        self._end(demo, other_demo, first)


class SecondStartWithoutABus(StartedTwice):
    """The lock in the runtime folder tells of the first one."""

    def setUp(self):
        super().setUp()
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.home}/no-bus"

    def test_says_that_the_first_one_runs(self):
        first, window = self._start()
        self.assertEqual(self._start_again(), ["quorvane: already running"])
        self.assertEqual(self._windows(), [window])
        self._end(first)

    def test_after_the_end_of_the_first_it_runs_itself(self):
        for number in (signal.SIGTERM, signal.SIGKILL):
            first, _ = self._start()
            os.kill(first.pid, number)
            first.wait_for_exit()
        self._end(self._start()[0])

    def test_without_a_runtime_folder_each_start_runs(self):
        del self.environment["XDG_RUNTIME_DIR"]
        first, _ = self._start()
        second, _ = self._start()
        self._end(first, second)


if __name__ == "__main__":
    unittest.main()
