#!/usr/bin/python3
"""What a visible control panel costs, all effects off, compared with a bare window of its size.

Usage: control_panel_benchmark.py BUILD_FOLDER [TURNS]

The bare window changes one item's opacity as often as the control panel draws a frame, which is
counted first. Both run in turn on one virtual display, 10 s each, drawn by Qt's software
renderer, which is what the program asks for on a machine without a graphics card, and once more
through OpenGL.
"""

import contextlib
import pathlib
import statistics
import sys
import time

import rows
from measuring import argument, environment_of, screens, shares

from virtual_desktop.session import Session
from virtual_desktop.waiting import wait_until

MEASURED_FOR = 10.0
SETTLES_IN = 2.0
FRAME = "frame rendered"
LOG_FRAMES = {"QT_LOGGING_RULES": "qt.scenegraph.time.renderloop.debug=true"}
RENDERERS = {"software renderer": {"QT_QUICK_BACKEND": "software"},
             "OpenGL": {"QT_QUICK_BACKEND": "rhi"}}


class Bench:
    def __init__(self, build, session):
        self._build = build
        self._session = session
        self._environment = environment_of(session)

    def control_panel(self, stack, extra):
        program = self._session.run([str(self._build / "quorvane")], self._environment | extra,
                                    stack)
        panel = screens.open_control_panel(self._session.reader, program)
        if panel.is_on(screens.STARTUP):
            panel.toggle(screens.STARTUP)
        panel.wait_until_gone(screens.ENTER)
        return program

    def bare_window(self, stack, extra, rate):
        environment = {name: value for name, value in self._environment.items()
                       if name != "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"}
        program = self._session.run([str(self._build / "bare_window"), f"{rate:.2f}"],
                                    environment | extra, stack)
        wait_until(lambda: self._session.display.windows("bare_window"), "the bare window")
        return program

    def used(self, start):
        """Percent of a core: the program's and the display server's."""
        with contextlib.ExitStack() as stack:
            program = start(stack)
            time.sleep(SETTLES_IN)
            return [100 * share for share in shares(MEASURED_FOR, program.pid,
                                                    self._session.display.server_pid)]

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
    """The rate to ask the bare window for, so that it draws as often as the control panel.

    Qt's timer has whole milliseconds and is a little late, so it draws less often than it is
    asked to.
    """
    extra = renderer | LOG_FRAMES
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
    with Session() as session:
        bench = Bench(build, session)
        for name, renderer in RENDERERS.items():
            print(f"== {name}", flush=True)
            ours, bare = measure(bench, argument(2, 3), renderer, count_frames(bench, renderer))
            rows.print_row(f"control panel, {name}: processor", ours, "bare window", bare,
                           "% of a core")


if __name__ == "__main__":
    main()
