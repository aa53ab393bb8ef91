"""What can be felt, on a device of the machine's own kernel: what is played.

Every scenario leaves what happened on its devices, and when it did what, for force_feedback_test.py
to judge.
"""

import contextlib
import json
import pathlib
import time

from virtual_desktop import processes, screens
from virtual_desktop.buses import Bus, Services
from virtual_desktop.waiting import wait_until

from stage import PATIENCE

HERE = pathlib.Path(__file__).resolve().parent

PLAYING = "🚜 [STARTUP] Playing tractor + rumble + haptic!"
COMPLETE = "🚜 [STARTUP] Sequence complete"

EFFECTS = 3
"""How many the program uploads: one a pattern."""

FAN_TIME = 4.5
MOMENT = 1.0


class Pad:
    """A device that rumbles, in a process of its own."""

    def __init__(self, env, log, stack):
        self._log = log
        self._process = processes.start_script(HERE / "force_feedback_device.py", log, env=env,
                                               stack=stack)

    def unplug(self):
        """Comes back when the device has gone."""
        self._process.stdin.close()
        self._process.wait(PATIENCE)

    def count(self, event):
        """How often something happened so far."""
        lines = self._log.read_text(encoding="utf-8").splitlines()
        return sum(json.loads(line)["event"] == event for line in lines)

    def wait_for(self, event, count):
        """Waits until something has happened that often in all."""
        wait_until(lambda: self.count(event) >= count, f"{count} times '{event}' on the pad")


def _system_bus(lab, folder, stack):
    """A stand-in for logind, where the programs that start from now on find it."""
    env = lab.desktop.env
    before = env["DBUS_SYSTEM_BUS_ADDRESS"]
    stack.callback(lambda: env.update(DBUS_SYSTEM_BUS_ADDRESS=before))
    # Its socket belongs in a file system of this machine's.
    bus = Bus(env, env["HOME"], f"system-{folder.name}", stack)
    env["DBUS_SYSTEM_BUS_ADDRESS"] = bus.address
    return Services(env, bus, stack, ["login"])


@contextlib.contextmanager
def _at_the_panel(lab, name, stack):
    """A later launch, as far as the panel with the fan's switch, and the end by SIGTERM."""
    lab.set_first_launch(False)
    with lab.program(name, stack) as (program, facts):
        yield screens.open_control_panel(lab.reader, program, PATIENCE), program, facts


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
    facts["awake"] = program.wait_for_line(PLAYING, PATIENCE)
    facts["complete"] = program.wait_for_line(COMPLETE, PATIENCE)
    pad.wait_for("erase", 2 * EFFECTS)


def felt(lab, name):
    """The fan, switched off again; the engine as the machine wakes; the end by SIGTERM."""
    folder = lab.folder(name)
    with contextlib.ExitStack() as stack:
        logind = _system_bus(lab, folder, stack)
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
    """The device goes while the fan runs; another one comes for the fan's next start."""
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
    """The fan runs when the program is killed."""
    with contextlib.ExitStack() as stack:
        pad = Pad(lab.desktop.env, lab.folder(name) / "pad.log", stack)
        with _at_the_panel(lab, name, stack) as (app, program, facts), lab.watch.timed():
            app.toggle(screens.THERMALS)
            pad.wait_for("play", 2)
            facts["killed"] = time.monotonic()
            program.kill()
            program.wait_for_exit(PATIENCE)
            pad.wait_for("erase", EFFECTS)


def play_all(play):
    """Every scenario of this file, each by `play(name, scenario)`, in an order of no meaning."""
    for scenario in (felt, unplugged, killed):
        play(scenario.__name__, scenario)
