"""The effects go on and the stop button answers while what the program talks to hangs."""

import contextlib
import os
import pathlib
import signal
import sys
import time
import unittest

from harness import PROGRAM
from test_overlays import BLUE, Clearing
from virtual_desktop.screens import ENTER, LEAVE, STABILITY, THERMALS

ANSWERED = 1.0
"""Seconds within which the button answers, for a busy machine; the figures are printed."""

# Runs a program whose console is a terminal or a pipe that a child of it reads and passes on.
_OVER_A_RELAY = """
import os, pty, sys, tty
kind, *command = sys.argv[1:]
read_end, write_end = pty.openpty() if kind == "terminal" else os.pipe()
if kind == "terminal":
    tty.setraw(write_end)
if os.fork() == 0:
    os.close(write_end)
    while True:
        try:
            read = os.read(read_end, 4096)
        except OSError:
            read = b""
        if not read:
            os._exit(0)
        os.write(1, read)
os.dup2(write_end, 1)
os.close(write_end)
os.close(read_end)
os.execv(command[0], command)
"""


@contextlib.contextmanager
def frozen(*pids):
    """Keeps processes stopped while the context is open."""
    for pid in pids:
        os.kill(pid, signal.SIGSTOP)
    try:
        yield
    finally:
        for pid in pids:
            os.kill(pid, signal.SIGCONT)


class Hangs(Clearing):
    """The program, with every service of the system that it listens to."""

    def launch(self, *arguments, **environment):
        self.services = self.start_system_bus("login", "power")
        return super().launch(*arguments, **environment)

    def press_stop(self, press):
        """Presses the stop button; it has to answer, and the start screen to come."""
        asked = time.monotonic()
        press()
        answered = time.monotonic() - asked
        cleared = self.wait_until_cleared(5) - asked
        self.panel.find(ENTER, timeout=5)
        entered = time.monotonic() - asked
        print(f"{self.id()}: the button answers after {answered * 1000:.0f} ms, the stop screen "
              f"is gone after {cleared * 1000:.0f} ms, the start screen is read after "
              f"{entered * 1000:.0f} ms", flush=True)
        # Reading the whole screen over the bus takes long on a busy machine.
        self.assertLess(answered, ANSWERED, "the button")
        self.assertLess(cleared, ANSWERED, "the stop screen")

    def check(self, hang):
        """A stop screen comes and the button removes it while the context `hang` is open."""
        press = self.panel.presser(LEAVE)
        before, after = self.turn_on(STABILITY)
        with hang:
            shown = self.wait_for_color(BLUE, self.corner, 17)
            print(f"{self.id()}: the stop screen comes {shown - before - 15:.2f} s late")
            self.assert_within(shown, before + 15, after + 15, "the stop screen")
            self.press_stop(press)
        self.leave()


class HungServices(Hangs):
    def test_a_session_bus(self):
        self.check(frozen(self.session.bus.pid))

    def test_a_system_bus(self):
        self.check(frozen(self.bus.pid))

    def test_a_sound_server(self):
        self.panel.switch(THERMALS, True)
        self.check(frozen(*self.session.sound.pids))


class HungAtTheStart(Hangs):
    def start_system_bus(self, *_services):
        super().start_system_bus()
        self.stack.enter_context(frozen(self.bus.pid))

    def test_a_system_bus(self):
        self.check(contextlib.nullcontext())


class HungConsole(Hangs):
    kind = "terminal"

    def launch(self, *arguments, **environment):
        self.services = self.start_system_bus("login", "power")
        self.program = self.session.run(
            [sys.executable, "-c", _OVER_A_RELAY, self.kind, str(PROGRAM), *arguments],
            self.environment | environment, self.stack)
        return self.program

    @contextlib.contextmanager
    def _full(self):
        """Stops the relay, and fills what it reads from."""
        pid = self.program.pid
        relay, = pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()
        with frozen(int(relay)):
            console = os.open(f"/proc/{pid}/fd/1", os.O_WRONLY | os.O_NONBLOCK | os.O_NOCTTY)
            with open(console, "wb", buffering=0) as file:
                while file.write(b"." * 4095 + b"\n") is not None:
                    pass
            # Something to print.
            self.services.sleep_and_wake()
            yield

    def test_nothing_waits_for_it(self):
        self.check(self._full())


class HungPipe(HungConsole):
    kind = "pipe"


class FrozenDisplay(Hangs):
    """Nothing can be drawn or pressed meanwhile; what was due comes right after it."""

    def _freeze_display(self, until):
        with frozen(self.session.display.server_pid):
            time.sleep(until - time.monotonic())
        return time.monotonic()

    def test_stop_screens_go_on_after_it(self):
        press = self.panel.presser(LEAVE)
        before, after = self.turn_on(STABILITY)
        shown = self.wait_for_color(BLUE, self.corner, 17)
        self.assert_within(shown, before + 15, after + 15, "the stop screen")
        # It ends after 20 s.
        time.sleep(after + 18 - time.monotonic())
        thawed = self._freeze_display(after + 21)
        gone = self.wait_until_cleared(5)
        print(f"{self.id()}: gone {(gone - thawed) * 1000:.0f} ms after the display goes on")
        self.assertLess(gone - thawed, ANSWERED)
        # The next one is due after 30 s, and ends after 35 s.
        time.sleep(after + 29 - time.monotonic())
        thawed = self._freeze_display(after + 32)
        shown = self.wait_for_color(BLUE, self.corner, 5)
        print(f"{self.id()}: shown {(shown - thawed) * 1000:.0f} ms after the display goes on")
        self.assertLess(shown - thawed, ANSWERED)
        self.press_stop(press)
        self.leave()


if __name__ == "__main__":
    unittest.main()
