"""Scenarios with force feedback, on a uinput device.

Each leaves its actions and the logs of its devices, with times, for force_feedback_test.py.
"""

import contextlib
import json
import pathlib
import time

from virtual_desktop import processes, screens
from virtual_desktop.buses import Bus, Services
from virtual_desktop.waiting import wait_until

from lab_desktop import TIMEOUT

HERE = pathlib.Path(__file__).resolve().parent

PLAYING = "🚜 [STARTUP] Playing tractor + rumble + haptic!"
COMPLETE = "🚜 [STARTUP] Sequence complete"

EFFECTS = 3
"""How many effects the program uploads: one for each pattern."""

FAN_TIME = 4.5
MOMENT = 1.0


class Pad:
    """A device that rumbles, in another process."""

    def __init__(self, env, log, stack):
        self._log = log
        self._process = processes.start_script(HERE / "force_feedback_device.py", log, env=env,
                                               stack=stack)

    def unplug(self):
        """Unplugs the device."""
        self._process.stdin.close()
        self._process.wait(TIMEOUT)

    def count(self, event):
        """How many times an event has been logged so far."""
        lines = self._log.read_text(encoding="utf-8").splitlines()
        return sum(json.loads(line)["event"] == event for line in lines)

    def wait_for(self, event, count):
        """Waits until an event has been logged `count` times in all."""
        wait_until(lambda: self.count(event) >= count, f"{count} times '{event}' on the pad")


def system_bus(lab, folder, stack):
    """A fake logind, for the programs that start from now on."""
    env = lab.desktop.env
    before = env["DBUS_SYSTEM_BUS_ADDRESS"]
    stack.callback(lambda: env.update(DBUS_SYSTEM_BUS_ADDRESS=before))
    # A socket needs a file system of this machine, not the one shared with the host.
    bus = Bus(env, env["HOME"], f"system-{folder.name}", stack)
    env["DBUS_SYSTEM_BUS_ADDRESS"] = bus.address
    return Services(env, bus, stack, ["login"])


@contextlib.contextmanager
def _at_the_panel(lab, name, stack):
    """Launches the program, opens the control panel, and ends the program by SIGTERM."""
    lab.set_first_launch(False)
    with lab.program(name, stack) as (program, facts):
        yield screens.open_control_panel(lab.reader, program, TIMEOUT), program, facts


def _fan_once(app, pad, facts):
    facts["fan_on"] = time.monotonic()
    app.toggle(screens.THERMALS)
    pad.wait_for("upload", EFFECTS)
    time.sleep(FAN_TIME)
    facts["switching_off"] = time.monotonic()
    app.toggle(screens.THERMALS)
    facts["fan_off"] = time.monotonic()
    pad.wait_for("erase", EFFECTS)


def _engine_once(logind, program, pad, facts):
    logind.wake_up()
    facts["awake"] = program.wait_for_line(PLAYING, TIMEOUT)
    facts["complete"] = program.wait_for_line(COMPLETE, TIMEOUT)
    pad.wait_for("erase", 2 * EFFECTS)


def felt(lab, name):
    """The fan, on and off; the engine when the machine wakes up; the fan again, until SIGTERM."""
    folder = lab.folder(name)
    with contextlib.ExitStack() as stack:
        logind = system_bus(lab, folder, stack)
        pad = Pad(lab.desktop.env, folder / "pad.log", stack)
        with _at_the_panel(lab, name, stack) as (app, program, facts):
            facts["untouched"] = pad.count("upload") == 0
            with lab.watch.timed():
                _fan_once(app, pad, facts)
                _engine_once(logind, program, pad, facts)
            facts["fan_on_again"] = time.monotonic()
            app.toggle(screens.THERMALS)
            pad.wait_for("upload", 3 * EFFECTS)
            time.sleep(MOMENT)


def unplugged(lab, name):
    """The device is unplugged while the fan runs; the fan's next start finds another one."""
    folder = lab.folder(name)
    with contextlib.ExitStack() as stack:
        first = Pad(lab.desktop.env, folder / "first.log", stack)
        with _at_the_panel(lab, name, stack) as (app, _, facts):
            app.toggle(screens.THERMALS)
            first.wait_for("upload", EFFECTS)
            time.sleep(MOMENT)
            facts["unplugging"] = time.monotonic()
            first.unplug()
            second = Pad(lab.desktop.env, folder / "second.log", stack)
            time.sleep(MOMENT)
            facts["switching_off"] = time.monotonic()
            app.toggle(screens.THERMALS)
            time.sleep(MOMENT)
            app.toggle(screens.THERMALS)
            second.wait_for("upload", EFFECTS)
            second.wait_for("play", 2)


def killed(lab, name):
    """The program is killed while the fan runs."""
    with contextlib.ExitStack() as stack:
        pad = Pad(lab.desktop.env, lab.folder(name) / "pad.log", stack)
        with _at_the_panel(lab, name, stack) as (app, program, facts), lab.watch.timed():
            app.toggle(screens.THERMALS)
            pad.wait_for("play", 2)
            facts["killed"] = time.monotonic()
            program.kill()
            program.wait_for_exit(TIMEOUT)
            pad.wait_for("erase", EFFECTS)


def play_all(play):
    """Calls `play(name, scenario)` for every scenario of this file."""
    for scenario in (felt, unplugged, killed):
        play(scenario.__name__, scenario)
