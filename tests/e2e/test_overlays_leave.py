"""A stop screen disappears even if the program stops, hangs or crashes."""

import ctypes
import os
import pathlib
import signal
import sys
import time
import unittest

from harness import PROGRAM
from test_overlays import BLUE, Clearing

_AS_A_JOB = """
import os, resource, sys
resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
os.setpgid(0, 0)
os.execv(sys.argv[1], sys.argv[1:])
"""

_libc = ctypes.CDLL(None, use_errno=True)
_libc.ptrace.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]
_PTRACE_DETACH = 17
_PTRACE_SEIZE = 0x4206
_PTRACE_INTERRUPT = 0x4207
_ALL_THREADS = 0x40000000


def _ptrace(request, thread):
    if _libc.ptrace(request, thread, None, None) != 0:
        raise OSError(ctypes.get_errno(), f"ptrace {request:#x}")


class Leaving(Clearing):
    def launch(self, *arguments, **environment):
        # In its own process group, as a shell starts a job: SIGTSTP stops no orphaned group.
        self.program = self.session.run(
            [sys.executable, "-c", _AS_A_JOB, str(PROGRAM), *arguments],
            self.environment | environment, self.stack)
        return self.program

    def signal(self, number):
        os.kill(self.program.pid, number)
        return time.monotonic()

    def state(self):
        """The kernel's state of the main thread: S is sleeping, T is stopped."""
        stat = pathlib.Path(f"/proc/{self.program.pid}/stat").read_text()
        return stat.rpartition(")")[2].split()[0]

    def assert_second_stop_screen(self, switched):
        before, after = switched
        shown = self.wait_for_color(BLUE, self.corner, 15)
        self.assert_within(shown, before + 30, after + 30, "the second stop screen")
        self.wait_until_cleared(6)


class StoppedFromTheTerminal(Leaving):
    def test_the_screen_goes_at_sigtstp_and_sigcont_resumes_the_program(self):
        switched = self.await_stop_screen()
        asked = self.signal(signal.SIGTSTP)
        self.assert_cleared(asked, 0.5)
        self.wait_until(lambda: self.state() == "T", "the program to be stopped", 2)
        self.signal(signal.SIGCONT)
        self.wait_until(lambda: self.state() != "T", "the program to go on", 2)
        self.assert_second_stop_screen(switched)
        self.leave()


class HungMainThread(Leaving):
    def _halt_main_thread(self):
        """Halts the main thread alone, as a debugger does."""
        _ptrace(_PTRACE_SEIZE, self.program.pid)
        _ptrace(_PTRACE_INTERRUPT, self.program.pid)
        os.waitpid(self.program.pid, _ALL_THREADS)

    def test_the_screen_is_removed_two_seconds_late(self):
        switched = self.await_stop_screen()
        before, after = switched
        self._halt_main_thread()
        gone = self.wait_until_cleared(10)
        self.assert_within(gone, before + 22, after + 22, "the end of the stop screen")
        self.wait_until(lambda: self.program.errors.text, "a line about it")
        _ptrace(_PTRACE_DETACH, self.program.pid)
        self.assert_second_stop_screen(switched)
        self.leave("quorvane: the main thread hangs: removed a panel that was overdue")
        self.assertEqual(len(self.program.errors.text), 1)


class Crash(Leaving):
    def _check(self, number):
        self.await_stop_screen()
        asked = self.signal(number)
        # Teardown can be slow under load.
        self.assert_cleared(asked, 10)
        self.assertEqual(self.program.wait_for_exit()[0], -number)

    def test_abort(self):
        self._check(signal.SIGABRT)

    def test_segmentation_fault(self):
        self._check(signal.SIGSEGV)


class ServerEnds(Leaving):
    def test_the_program_ends_with_an_error(self):
        self.await_stop_screen()
        os.kill(self.session.display.server_pid, signal.SIGKILL)
        status, _ = self.program.wait_for_exit(5)
        self.assertGreater(status, 0)
        self.assertNotEqual(self.program.errors.text, [])


if __name__ == "__main__":
    unittest.main()
