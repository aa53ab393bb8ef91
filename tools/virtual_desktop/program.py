"""A running program."""

import os
import signal
import subprocess
import time

from . import processes
from .waiting import TimedOut


class Program:
    """A running program, its console and its standard error.

    With `console_reader` False the console is a broken pipe.
    """

    def __init__(self, command, env, stack, console_reader=True):
        read_end, write_end = os.pipe()
        console = os.fdopen(read_end, "rb")
        stack.callback(console.close)
        if not console_reader:
            console.close()
        try:
            self._process = processes.start(
                command, env, stack, stdout=write_end, stderr=subprocess.PIPE)
        finally:
            os.close(write_end)
        self.console = processes.Lines(console if console_reader else ())
        self.errors = processes.Lines(self._process.stderr)

    @property
    def pid(self):
        return self._process.pid

    @property
    def is_running(self):
        return self._process.poll() is None

    def wait_for_line(self, text, timeout=10.0):
        """Waits for exactly this console line and returns when it came."""
        arrived, _ = self.console.wait_for(lambda line: line == text, f"'{text}'", timeout)
        return arrived

    def interrupt(self):
        self._process.send_signal(signal.SIGINT)

    def terminate(self):
        self._process.send_signal(signal.SIGTERM)

    def kill(self):
        """Ends it by SIGKILL."""
        self._process.send_signal(signal.SIGKILL)

    def wait_for_exit(self, timeout=5.0):
        """Waits for the end; returns the exit status (below zero: the signal) and the instant."""
        try:
            status = self._process.wait(timeout)
        except subprocess.TimeoutExpired:
            raise TimedOut(f"the program did not end within {timeout:g} s") from None
        ended = time.monotonic()
        self.console.wait_for_end()
        self.errors.wait_for_end()
        return status, ended
