"""Scenarios in which a lid sensor fails while the program runs. They need udev."""

import contextlib
import pathlib
import time

from virtual_desktop import screens
from virtual_desktop.screen_capture import ScreenCapture
from virtual_desktop.waiting import wait_until

from lab_desktop import TIMEOUT
from lids import plug

STOP_SCREEN = (0, 120, 212)

REPLUGGED = ("still:0.5", "open:50:0.7", "still:1", "unplugged:6", "still:1", "open:50:1",
             "still:1")
PRODUCT, OTHER_PRODUCT = "8104", "ABC1"


def _nodes(product):
    """The names of the hidraw nodes of a product."""
    return [file.parent.parent.name
            for file in pathlib.Path("/sys/class/hidraw").glob("*/device/uevent")
            if f":0000{product}\n" in file.read_text(encoding="ascii")]


def _until(condition, what):
    """Waits for something; returns when it was so."""
    wait_until(condition, what)
    return time.monotonic()


def hung_lid(lab, name):
    """A sensor that stops answering while it is read: a switch, a stop screen, the stop button."""
    lab.set_first_launch(False)
    with contextlib.ExitStack() as stack:
        screen = ScreenCapture(lab.desktop.display.name, stack)
        lid = plug(lab, name, stack, "--product", "0x8104", "still:1", "silent:60")
        with lab.program(name, stack) as (program, facts):
            app = screens.open_control_panel(lab.reader, program, TIMEOUT)
            with lab.watch.timed():
                facts["switched"] = time.monotonic()
                app.toggle(screens.STABILITY)
                facts["on"] = _until(lambda: app.is_on(screens.STABILITY), "the first switch")
                lid.begin_to_move()
                time.sleep(4)
                facts["pressed"] = time.monotonic()
                app.toggle(screens.BUILD_QUALITY)
                facts["answered"] = _until(lambda: app.is_on(screens.BUILD_QUALITY), "a switch")
                facts["stop_screen"] = _until(
                    lambda: screen.pixel(screen.width - 1, screen.height - 1) == STOP_SCREEN,
                    "the stop screen")
                leave = app.presser(screens.LEAVE)
                facts["leaving"] = time.monotonic()
                leave()
                app.find(screens.ENTER, timeout=TIMEOUT)
                facts["left"] = time.monotonic()


def replugged_lid(lab, name):
    """A sensor that is unplugged and plugged in again; the lid moves before and after.

    Meanwhile another device takes its node, so that it gets a new one.
    """
    lab.set_first_launch(False)
    with contextlib.ExitStack() as stack:
        recording = lab.desktop.record(lab.folder(name) / "recorder.log", stack)
        lid = plug(lab, name, stack, "--product", "0x8104", *REPLUGGED)
        with lab.program(name, stack) as (program, facts):
            app = screens.open_control_panel(lab.reader, program, TIMEOUT)
            with lab.watch.timed():
                app.switch(screens.BUILD_QUALITY, True)
                facts["nodes"] = _nodes(PRODUCT)
                lid.begin_to_move()
                wait_until(lambda: not _nodes(PRODUCT), "the sensor to go")
                plug(lab, f"{name}/other", stack, "--keep", "--product", f"0x{OTHER_PRODUCT}")
                wait_until(lambda: _nodes(PRODUCT), "the sensor to come again")
                facts["new_nodes"], facts["other_nodes"] = _nodes(PRODUCT), _nodes(OTHER_PRODUCT)
                lid.wait_until_gone(TIMEOUT)
            lab.save_sound(name, recording, facts)


def play_all(play):
    """Calls `play(name, scenario)` for every scenario of this file."""
    for scenario in (hung_lid, replugged_lid):
        play(scenario.__name__, scenario)
