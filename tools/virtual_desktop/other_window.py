"""Other programs' windows."""

import os
import subprocess
import sys

from . import processes


class OtherWindow:
    """A window.py with these arguments, until `stack` is closed."""

    def __init__(self, *arguments, env, stack):
        script = os.path.join(os.path.dirname(__file__), "window.py")
        process = processes.start([sys.executable, script, *arguments], env, stack,
                                  stdout=subprocess.PIPE)
        self._lines = processes.Lines(process.stdout)
        _, number = self._lines.wait_for(str.isdigit, "the window's id")
        self.id = int(number)

    def presses(self):
        """A "key" or "click" for each press that the window has received so far."""
        return self._lines.text[1:]


class NativeWindow:
    """A native_window.py of this colour (RRGGBB) on an output, until `stack` is closed."""

    def __init__(self, color, env, stack, output=0):
        script = os.path.join(os.path.dirname(__file__), "native_window.py")
        process = processes.start([sys.executable, script, color, str(output)], env, stack,
                                  stdout=subprocess.PIPE)
        self._lines = processes.Lines(process.stdout)

    def events(self):
        """A "shown", "focus", "no focus", "key" or "click" for each that has happened so far."""
        return self._lines.text
