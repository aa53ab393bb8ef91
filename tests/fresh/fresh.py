#!/usr/bin/python3
"""./run on an empty Debian 12, for a new user: fresh.py BUILD_DIR [CHECKOUT]

Clones the checkout (by default the one that this file is in) into the empty system and runs it there
without a display. Each step prints OK; the first that fails ends it with status 1.
"""

import pathlib
import re
import subprocess
import sys
import time

import numpy

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "tools"))

from virtual_desktop import clips, pictures  # noqa: E402 (found through the line above)

from empty_root import CannotBeMade, EmptyRoot  # noqa: E402

ACCOUNT = "newcomer"
HOME = f"/home/{ACCOUNT}"
CLONE = f"{HOME}/quorvane"
COMMANDS = "c++ cmake ninja pkg-config"
PICTURES = ("1-hardware-check", "2-results", "3-warning", "4-control-panel")


class Failed(Exception):
    """An expectation that was not met."""


def expect(condition, what, output=""):
    if not condition:
        raise Failed(f"{what}\n{output}")


class Fresh:
    def __init__(self, folder, checkout):
        self._folder = folder
        self._root = EmptyRoot(folder)
        self._expect_status(0, "useradd", "--create-home", ACCOUNT)
        subprocess.run(["git", "clone", "--quiet", "--no-hardlinks", f"file://{checkout}",
                        str(self._root.file(CLONE))], check=True)

    def _expect_status(self, status, *words, **options):
        found, output = self._root.run(*words, **options)
        expect(found == status, f"{' '.join(words)}: status {found} instead of {status}", output)
        return output

    def names_missing_commands_without_apt(self):
        folder = self._root.file("/opt/no-apt")
        folder.mkdir()
        for command in ("bash", "env", "dirname", "id"):
            (folder / command).symlink_to(f"/usr/bin/{command}")
        output = self._expect_status(1, "/usr/bin/bash", "./run", folder=CLONE, search="/opt/no-apt")
        expect(COMMANDS in output, f"does not name {COMMANDS}", output)

    def prints_the_command_without_rights(self):
        output = self._expect_status(1, "./run", account=ACCOUNT, folder=CLONE)
        line, = re.findall(r"^ *(apt-get install .*)$", output, re.M) or [""]
        expect({"g++", "cmake", "libqt6quick6", "pulseaudio"} <= set(line.split()),
               "prints no line that installs the missing packages", output)

    def shows_the_errors_of_apt_without_a_network(self):
        output = self._expect_status(1, "./run", folder=CLONE, network=False)
        expect(re.search(r"^E: ", output, re.M), "does not show the errors of apt", output)
        expect("libqt6quick6" in output.splitlines()[-1], "does not end with the packages", output)

    def runs(self):
        """The first ./run, whose output is logged with times."""
        began, built = time.monotonic(), None
        log = self._folder / "run.log"
        with subprocess.Popen(self._root.command("./run", folder=CLONE), stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True) as process:
            with log.open("w") as file:
                for line in process.stdout:
                    seconds = time.monotonic() - began
                    file.write(f"{seconds:7.1f} {line}")
                    if "Linking CXX executable quorvane" in line:
                        built = seconds
        output = log.read_text()
        expect(process.returncode == 0, f"./run: status {process.returncode}, see {log}",
               output[-3000:])
        for seen in ("Setting up libqt6quick6", "Building CXX", "Screen 4 of 4"):
            expect(seen in output, f"./run does not print '{seen}', see {log}")
        print(f"   ./run: {time.monotonic() - began:.0f} s, built after {built:.0f} s")
        self._check_demo()

    def _check_demo(self):
        left = self._root.file(f"{CLONE}/build/demo")
        for name in PICTURES:
            colours = pictures.pixels(left / f"{name}.png").reshape(-1, 3)
            expect((colours != colours[0]).any(), f"{name}.png is of one colour")
        samples, _ = clips.read_wave(left / "sound.wav")
        expect(numpy.abs(samples).max(initial=0) > 1000 / 32768, "sound.wav is silent")

    def compiles_nothing_the_second_time(self):
        output = self._expect_status(0, "./run", "--build-only", folder=CLONE)
        expect("ninja: no work to do." in output, "./run --build-only has built again", output)

    def runs_without_rights(self):
        self._expect_status(0, "chown", "-R", f"{ACCOUNT}:{ACCOUNT}", CLONE)
        subprocess.run(["rm", "-r", self._root.file(f"{CLONE}/build/demo")], check=True)
        output = self._expect_status(0, "./run", account=ACCOUNT, folder=CLONE)
        expect("ninja: no work to do." in output, "./run has built again", output)
        self._check_demo()


STEPS = (
    Fresh.names_missing_commands_without_apt,
    Fresh.prints_the_command_without_rights,
    Fresh.shows_the_errors_of_apt_without_a_network,
    Fresh.runs,
    Fresh.compiles_nothing_the_second_time,
    Fresh.runs_without_rights,
)


def main():
    folder = pathlib.Path(sys.argv[1]).resolve() / "fresh"
    checkout = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else HERE.parents[1]).resolve()
    try:
        began = time.monotonic()
        fresh = Fresh(folder, checkout)
        print(f"OK the empty system is made ({time.monotonic() - began:.0f} s)", flush=True)
        for step in STEPS:
            began = time.monotonic()
            step(fresh)
            name = step.__name__.replace("_", " ")
            print(f"OK {name} ({time.monotonic() - began:.0f} s)", flush=True)
    except (CannotBeMade, Failed) as error:
        print(f"FAIL {error}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
