"""Another program's window."""

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
