#!/usr/bin/python3
"""Plays the lab's scenarios on the built program in an emulated machine.

    lab.py BUILD_DIRECTORY [--time-limit SECONDS] [SCENARIO ...]

The machine is kept in BUILD_DIRECTORY/lab/machine, the results in BUILD_DIRECTORY/lab/results.
Status 0 means that every scenario was played, with no more than two retries in all; whether the
program passed is what the verdicts test.
"""

import argparse
import pathlib
import shlex
import sys
import time

import machine

HERE = pathlib.Path(__file__).resolve().parent


def log_repeats(build):
    """Logs the void attempts to a file: CTest shows no output of a test that passes."""
    console = (build / "lab" / "results" / "console.log").read_text(encoding="utf-8")
    with open(build / "repeats.log", "a", encoding="utf-8") as file:
        file.writelines(f"{line}\n" for line in console.splitlines() if " is void: " in line)


def main():
    """Prepares the machine if necessary and runs it once."""
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("scenarios", nargs="*", metavar="SCENARIO")
    parser.add_argument("--time-limit", type=float, default=300)
    arguments = parser.parse_intermixed_args()
    build = arguments.build.resolve()
    job = shlex.join(["exec", "/usr/bin/python3", str(HERE / "guest.py"), str(build),
                      "/run/results", *arguments.scenarios])
    began = time.monotonic()
    try:
        kernel, initramfs = machine.prepare(build / "lab" / "machine")
        prepared = time.monotonic()
        machine.run_first()
        machine.boot(kernel, initramfs, build / "lab" / "results", job, arguments.time_limit)
    except machine.LabError as error:
        print(f"lab: {error}", file=sys.stderr)
        return 1
    log_repeats(build)
    print(f"lab: prepared in {prepared - began:.1f} s, played in "
          f"{time.monotonic() - prepared:.1f} s")
    return 0


if __name__ == "__main__":
    sys.exit(main())
