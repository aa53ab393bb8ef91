#!/usr/bin/python3
"""What a visible control panel costs, all effects off, beside a bare window of the same size.

Usage: control_panel_benchmark.py BUILD_FOLDER [TURNS]

The bare window changes one item's opacity as often as the control panel draws a frame, which is
counted first. Both run in turn on one virtual display, 10 s each, drawn by the toolkit's software
renderer, which is what the program asks for on a machine without a graphics card, and once more
through OpenGL. Prints figures, and judges none of them.
"""

import contextlib
import os
import pathlib
import statistics
import sys
import time

import rows

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tools"))

from virtual_desktop.session import Session  # noqa: E402 (found through the line above)
from virtual_desktop.waiting import wait_until  # noqa: E402

MEASURED_FOR = 10.0
SETTLES_IN = 2.0
FRAME = "frame rendered"
TELL_FRAMES = {"QT_LOGGING_RULES": "qt.scenegraph.time.renderloop.debug=true"}
RENDERERS = {"software renderer": {"QT_QUICK_BACKEND": "software"},
             "OpenGL": {"QT_QUICK_BACKEND": "rhi"}}


def processor_time(pid):
    """Seconds of processor time of all threads of a process so far."""
    # The number of another process's clock, as clock_getcpuclockid() makes it.
    return time.clock_gettime((~pid << 3) | 2)


class Bench:
    def __init__(self, build, session):
        self._build = build
        self._session = session
        self._home = os.path.join(session.directory, "home")
        self._environment = session.environment(self._home)
        settings = pathlib.Path(self._environment["XDG_CONFIG_HOME"], "quorvane", "quorvane.ini")
        settings.parent.mkdir(parents=True)
        settings.write_text("[General]\nhardwareChecked=true\n")

    def control_panel(self, stack, extra):
        program = self._session.run([str(self._build / "quorvane")], self._environment | extra,
                                    stack)
        screens = self._session.reader.application(program)
        # Nothing can be pressed before the first frame, with which the creak's clip is loaded: the
        # only line without a tag tells.
        program.console.wait_for(lambda line: "[" not in line, "about the creak")
        screens.press("MAKE ME SUFFER 😭")
        screens.find("STOP, I'M SUFFERING 😭")
        if screens.is_on("Startup"):
            screens.toggle("Startup")
        screens.wait_until_gone("MAKE ME SUFFER 😭")
        return program

    def bare_window(self, stack, extra, rate):
        environment = {name: value for name, value in self._environment.items()
                       if name != "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"}
        program = self._session.run([str(self._build / "bare_window"), f"{rate:.2f}"],
                                    environment | extra, stack)
        wait_until(lambda: self._session.display.windows("bare_window"), "the bare window")
        return program

    def used(self, start):
        """Shares of one processor: of the program's and of the display server's."""
        with contextlib.ExitStack() as stack:
            program = start(stack)
            time.sleep(SETTLES_IN)
            server = self._session.display.server_pid
            before = time.monotonic(), processor_time(program.pid), processor_time(server)
            time.sleep(MEASURED_FOR)
            after = time.monotonic(), processor_time(program.pid), processor_time(server)
        seconds, own, shown = (late - early for early, late in zip(before, after))
        return own / seconds * 100, shown / seconds * 100

    def frames(self, start):
        """Frames a second."""
        with contextlib.ExitStack() as stack:
            program = start(stack)
            time.sleep(SETTLES_IN)

            def count():
                return sum(FRAME in line.lower() for line in program.errors.text)
            before, begun = count(), time.monotonic()
            time.sleep(MEASURED_FOR)
            return (count() - before) / (time.monotonic() - begun)


def count_frames(bench, renderer):
    """How often the bare window has to be asked to draw to draw as often as the control panel.

    The toolkit's timer keeps to whole milliseconds and is late by some, so that it draws less often
    than it is asked to.
    """
    extra = renderer | TELL_FRAMES
    panel = bench.frames(lambda stack: bench.control_panel(stack, extra))
    asked = panel
    for _ in range(2):
        bare = bench.frames(lambda stack: bench.bare_window(stack, extra, asked))
        print(f"frames a second: control panel {panel:.1f}, "
              f"bare window {bare:.1f} if asked for {asked:.1f}", flush=True)
        asked *= panel / bare
    return asked


def measure(bench, turns, renderer, rate):
    panel, bare = [], []
    for _ in range(turns):
        panel.append(bench.used(lambda stack: bench.control_panel(stack, renderer)))
        bare.append(bench.used(lambda stack: bench.bare_window(stack, renderer, rate)))
    medians = []
    for name, figures in (("control panel", panel), ("bare window", bare)):
        own = statistics.median(figure[0] for figure in figures)
        shown = statistics.median(figure[1] for figure in figures)
        medians.append(own)
        each = "  ".join(f"{figure[0]:.1f}" for figure in figures)
        print(f"{name}: {own:.1f} % of a processor ({each}), display server {shown:.1f} %")
    return medians


def main():
    build = pathlib.Path(sys.argv[1])
    turns = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    with Session() as session:
        bench = Bench(build, session)
        for name, renderer in RENDERERS.items():
            print(f"== {name}", flush=True)
            ours, bare = measure(bench, turns, renderer, count_frames(bench, renderer))
            rows.print_row(f"control panel, {name}: processor", ours, "bare window", bare,
                           "% of a core")


if __name__ == "__main__":
    main()
