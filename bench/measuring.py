"""What the benchmarks share: the virtual desktop, and what a process costs."""

import os
import pathlib
import statistics
import subprocess
import sys
import time
import wave

ROOT = pathlib.Path(__file__).resolve().parents[1]
FAN = ROOT / "resources/fanmac.mp3"

sys.path.insert(0, str(ROOT / "tools"))

from virtual_desktop import screens  # noqa: E402 (found through the line above)


def argument(number, default):
    """The command line's argument of this number, of the default's type."""
    return type(default)(sys.argv[number]) if len(sys.argv) > number else default


def environment_of(session):
    """The environment in which the program opens on the warning."""
    environment = session.environment(os.path.join(session.directory, "home"))
    screens.skip_hardware_check(environment)
    return environment


def processor_time(pid):
    """Seconds of processor time of all threads of a process so far."""
    # The number of another process's clock, as clock_getcpuclockid() makes it.
    return time.clock_gettime((~pid << 3) | 2)


def shares(seconds, *pids):
    """The shares of one core that processes take in the coming seconds."""
    begun, before = time.monotonic(), [processor_time(pid) for pid in pids]
    time.sleep(seconds)
    elapsed = time.monotonic() - begun
    return [(processor_time(pid) - spent) / elapsed for pid, spent in zip(pids, before)]


def wake_ups(pid):
    """How many times all threads of a process have waited for something so far."""
    statuses = pathlib.Path(f"/proc/{pid}/task").glob("*/status")
    return sum(int(line.split()[1]) for status in statuses
               for line in status.read_text().splitlines()
               if line.startswith("voluntary_ctxt_switches:"))


def costs(seconds, *groups):
    """What groups of processes cost in the coming seconds.

    For each its milliseconds of processor time and its wake-ups, both a second.
    """
    def spent():
        return [(1000 * sum(map(processor_time, pids)), sum(map(wake_ups, pids)))
                for pids in groups]
    begun, before = time.monotonic(), spent()
    time.sleep(seconds)
    elapsed = time.monotonic() - begun
    return [tuple((after - earlier) / elapsed for after, earlier in zip(*both))
            for both in zip(spent(), before)]


def memory(pid):
    """Memory in use, shared pages counted by their share, in MiB."""
    text = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text()
    kilobytes, = [line.split()[1] for line in text.splitlines() if line.startswith("Pss:")]
    return int(kilobytes) / 1024


def write_repeated_fan(path, seconds):
    """Writes the fan's sound over and over as WAV, as paplay cannot loop."""
    once = f"{path}.once"
    subprocess.run(["lame", "--quiet", "--decode", FAN, once], check=True)
    with wave.open(once, "rb") as source, wave.open(str(path), "wb") as target:
        frames = source.readframes(source.getnframes())
        target.setparams(source.getparams())
        for _ in range(1 + int(seconds * source.getframerate() / source.getnframes())):
            target.writeframes(frames)


def print_figures(name, turns):
    """Prints each figure of several turns and returns their medians."""
    print(f"== {name}")
    medians = {key: statistics.median(turn[key] for turn in turns) for key in turns[0]}
    for key, median in medians.items():
        each = "  ".join(f"{turn[key]:.2f}" for turn in turns)
        print(f"{key}: median {median:.2f}  ({each})")
    return medians
