"""A scenario in which the machine sleeps while effects are on.

The emulated machine's devices do not come back from a real sleep. The kernel's test of the first
step is used, in which every process stands still for a second while the clock runs on.
"""

import contextlib
import pathlib
import time

from virtual_desktop import screens
from virtual_desktop.screen_capture import ScreenCapture
from virtual_desktop.waiting import wait_until

from force_feedback import COMPLETE, PLAYING, system_bus
from lab_desktop import TIMEOUT
from lid_faults import STOP_SCREEN
from lids import plug

POWER = pathlib.Path("/sys/power")
DELAY = pathlib.Path("/sys/module/suspend/parameters/pm_test_delay")
SECONDS = 1
PAUSE = 1.0


def _sleep():
    """The machine sleeps; returns when it fell asleep and when it was awake."""
    DELAY.write_text(str(SECONDS), encoding="ascii")
    (POWER / "pm_test").write_text("freezer", encoding="ascii")
    begin = time.monotonic()
    (POWER / "state").write_text("freeze", encoding="ascii")
    return begin, time.monotonic()


def _each_effect(lab, app, lid, screen, facts):
    """The fan goes on; it ends, a key is pressed, the lid moves, a stop screen comes."""
    time.sleep(PAUSE)
    facts["fan_off"] = time.monotonic()
    app.switch(screens.THERMALS, False)
    time.sleep(PAUSE)
    facts["key"] = time.monotonic()
    lab.desktop.display.press_key("a")
    time.sleep(PAUSE)
    lid.begin_to_move()
    lid.wait_until_gone(TIMEOUT)
    wait_until(lambda: screen.pixel(screen.width - 1, screen.height - 1) == STOP_SCREEN,
               "a stop screen")
    facts["stop_screen"] = time.monotonic()
    app.press(screens.LEAVE, TIMEOUT)
    app.find(screens.ENTER, timeout=TIMEOUT)


def machine_sleep(lab, name):
    """The machine sleeps while every switch but "Performance" is on."""
    lab.set_first_launch(False)
    with contextlib.ExitStack() as stack:
        logind = system_bus(lab, lab.folder(name), stack)
        screen = ScreenCapture(lab.desktop.display.name, stack)
        lid = plug(lab, name, stack, "--product", "0x8104", "still:0.5", "open:50:0.7", "still:1")
        with lab.program(name, stack) as (program, facts):
            app = screens.open_control_panel(lab.reader, program, TIMEOUT)
            for switch in (screens.BUILD_QUALITY, screens.KEYBOARD, screens.THERMALS,
                           screens.STABILITY):
                app.switch(switch, True)
            logind.prepare_for_sleep()
            facts["asleep"], facts["awake"] = _sleep()
            logind.wake_up()
            program.wait_for_line(PLAYING, TIMEOUT)
            program.wait_for_line(COMPLETE, TIMEOUT)
            recording = lab.desktop.record(lab.folder(name) / "recorder.log", stack)
            with lab.watch.timed():
                _each_effect(lab, app, lid, screen, facts)
            lab.save_sound(name, recording, facts)


def play_all(play):
    """Calls `play(name, scenario)` for every scenario of this file."""
    play("machine_sleep", machine_sleep)
