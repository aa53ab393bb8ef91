#!/usr/bin/python3
"""Runs the start-up benchmark on a virtual display without a window manager.

Usage: startup_benchmark.py BUILD_FOLDER [REPETITIONS]
"""

import contextlib
import pathlib
import subprocess
import sys
import tempfile

from measuring import argument, screens

from virtual_desktop import processes
from virtual_desktop.display import Display


def main():
    build = pathlib.Path(sys.argv[1])
    with contextlib.ExitStack() as stack:
        environment = processes.base_environment(
            stack.enter_context(tempfile.TemporaryDirectory()))
        environment["DISPLAY"] = Display(environment, stack, has_window_manager=False).name
        for launch in ("first launch", "later launches"):
            done = subprocess.run(
                [build / "startup_benchmark", build / "quorvane", build / "bare_window",
                 str(argument(2, 9))], env=environment, capture_output=True, text=True)
            if done.returncode != 0:
                raise SystemExit(done.stderr)
            # The programs' own console lines are in between.
            for line in done.stdout.splitlines():
                if line.startswith("row\t"):
                    print(line.replace("row\t", f"row\t{launch}: ", 1), flush=True)
            screens.skip_hardware_check(environment)


if __name__ == "__main__":
    main()
