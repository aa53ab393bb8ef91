"""A terminal or a pipe that takes no lines never stops the program."""

import os
import termios
import time
import unittest

from harness import PROGRAM, EndToEndTest
from virtual_desktop import screens


class StuckOutput(EndToEndTest):
    waits = True

    def setUp(self):
        super().setUp()
        self.skip_hardware_check()

    def _launch(self, redirection, descriptor, *arguments):
        script = f'to="$1"; program="$2"; shift 2; exec "$program" "$@" {redirection}"$to"'
        path = f"/proc/{os.getpid()}/fd/{descriptor}"
        self.program = self.session.run(
            ["/bin/sh", "-c", script, "sh", path, str(PROGRAM), *arguments],
            self.environment, self.stack)

    def _full_pipe(self):
        reader, writer = os.pipe()
        self.addCleanup(os.close, reader)
        self.addCleanup(os.close, writer)
        os.set_blocking(writer, False)
        try:
            while os.write(writer, b"-" * 4096):
                pass
        except BlockingIOError:
            pass
        os.set_blocking(writer, True)
        return reader, writer

    def _terminal(self):
        master, slave = os.openpty()
        self.addCleanup(os.close, master)
        self.addCleanup(os.close, slave)
        return master, slave

    def _open_control_panel(self):
        tree = self.session.reader.application(self.program)

        # A press before the first frame is lost, and there is no console to tell of that.
        def is_open():
            if tree.shows(screens.ENTER):
                tree.press(screens.ENTER)
            return tree.shows(screens.BUILD_QUALITY)

        self.wait_until(is_open, "the control panel", 15.0)
        return tree

    def _check_that_it_works_and_leaves(self):
        tree = self._open_control_panel()
        tree.switch(screens.BUILD_QUALITY, True)
        tree.press(screens.LEAVE)
        tree.find(screens.ENTER)
        started = time.monotonic()
        self.program.terminate()
        status, ended = self.program.wait_for_exit()
        self.assertEqual(status, 0)
        self.assertLess(ended - started, 2.0)

    def test_a_stopped_terminal_stops_nothing(self):
        _, slave = self._terminal()
        termios.tcflow(slave, termios.TCOOFF)
        self._launch(">", slave)
        self._check_that_it_works_and_leaves()

    def test_a_full_pipe_stops_nothing(self):
        _, writer = self._full_pipe()
        self._launch(">", writer)
        self._check_that_it_works_and_leaves()

    def test_full_standard_error_stops_nothing(self):
        _, writer = self._full_pipe()
        # Says on standard error that the machine is simulated.
        self._launch("2>", writer, "--simulated", str(self._scenario()))
        self._check_that_it_works_and_leaves()

    def _scenario(self):
        file = os.path.join(self.home, "plain.scenario")
        with open(file, "w", encoding="utf-8") as text:
            text.write('{ "model": "MacBookPro18,3" }')
        return file

    def test_lost_lines_are_counted_when_it_goes_on(self):
        master, slave = self._terminal()
        termios.tcflow(slave, termios.TCOOFF)
        self._launch(">", slave)
        self._open_control_panel()
        time.sleep(1.2)
        termios.tcflow(slave, termios.TCOON)
        text = b""
        while b" lines lost" not in text:
            text += os.read(master, 4096)
        self.assertRegex(text.decode(), r"(?m)^[1-9]\d* lines lost")
        self.leave()


if __name__ == "__main__":
    unittest.main()
