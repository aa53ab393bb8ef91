"""Scenarios with uhid lid sensors."""

import contextlib
import pathlib
import time

from virtual_desktop import processes, screens

import device_rights
from lab_desktop import TIMEOUT

HERE = pathlib.Path(__file__).resolve().parent

SCRIPT = ("still:1", "open:50:0.7", "still:1", "close:50:0.7", "still:1", "open:50:0.5")
COLD_SCRIPT = ("still:1", "open:50:1")
AFTER_UNPLUGGING = 3.5
AFTER_SWITCHING_OFF = 1.2


class Lid:
    """The lid device, in another process."""

    def __init__(self, env, log, stack, *arguments):
        self._process = processes.start_script(HERE / "lid_device.py", "--log", log, *arguments,
                                               env=env, stack=stack)

    def begin_to_move(self):
        """Starts the script."""
        self._process.stdin.write(b"go\n")
        self._process.stdin.flush()

    def wait_until_gone(self, timeout):
        """Waits for the end of the script."""
        self._process.wait(timeout)


def plug(lab, scenario, stack, *arguments):
    """Plugs a lid in; see lid_device.py for the arguments."""
    return Lid(lab.desktop.env, lab.folder(scenario) / "device.log", stack, *arguments)


def _to_the_panel(lab, program, is_first):
    """Goes on from a launch to the control panel."""
    if is_first:
        app = lab.reader.application(program)
        app.press(screens.CHECK, TIMEOUT)
        app.find("Lid sensor detected", timeout=TIMEOUT)
        app.press(screens.CONTINUE, TIMEOUT)
    return screens.open_control_panel(lab.reader, program, TIMEOUT)


def moving_lid(lab, name, *script, after_unplugging, is_first=False):
    """A launch, the creak switched on, a lid that moves and is unplugged."""
    lab.set_first_launch(is_first)
    folder = lab.folder(name)
    with contextlib.ExitStack() as stack:
        recording = lab.desktop.record(folder / "recorder.log", stack)
        lid = plug(lab, name, stack, "--product", "0x8104", "--angle", "100", *script)
        with lab.program(name, stack) as (program, facts):
            app = _to_the_panel(lab, program, is_first)
            with lab.watch.timed():
                app.toggle(screens.BUILD_QUALITY)
                lid.begin_to_move()
                lid.wait_until_gone(TIMEOUT)
                time.sleep(after_unplugging)
                facts["switching_off"] = time.monotonic()
                app.toggle(screens.BUILD_QUALITY)
                facts["switched_off"] = time.monotonic()
                time.sleep(AFTER_SWITCHING_OFF)
            lab.save_sound(name, recording, facts)


def cold_creak(lab, name):
    """The first launch with empty file caches, and a creak."""
    pathlib.Path("/proc/sys/vm/drop_caches").write_text("3", encoding="ascii")
    moving_lid(lab, name, *COLD_SCRIPT, after_unplugging=AFTER_SWITCHING_OFF, is_first=True)


def found(lab, name, *lids):
    """A later launch with these devices plugged in, until the console line about the sensor."""
    lab.set_first_launch(False)
    with contextlib.ExitStack() as stack:
        for lid in lids:
            plug(lab, name, stack, "--keep", *lid)
        with lab.program(name, stack) as (program, facts):
            # The sensor is looked for when the creak has been loaded, whose line has no tag.
            facts["before_sensor"], _ = program.console.wait_for(
                lambda line: "[" not in line, "about the creak", TIMEOUT)
            facts["sensor"], _ = program.console.wait_for(
                lambda line: "[SENSOR]" in line, "about the sensor", TIMEOUT)


def hidraw_contract(lab, name):
    """The contract test of the HID service, on a uhid device."""
    with contextlib.ExitStack() as stack:
        plug(lab, name, stack, "--keep", "--product", "0x8104", "--angle", "100")
        lab.run_contract(name, lab.build / "contract_hidraw", QUORVANE_HIDRAW_ANGLE="100")


def rights(lab, name):
    """What the program's udev rules change for the user at the seat."""
    lab.save(name, "rights.json", device_rights.read())


def play_all(play):
    """Calls `play(name, scenario, *arguments, **options)` for every scenario of this file.

    The cold creak is first: from then on the machine has the program's files in its caches.
    """
    play("cold_creak", cold_creak)
    play("moving_lid", moving_lid, *SCRIPT, after_unplugging=AFTER_UNPLUGGING)
    play("found_by_scan", found, ("--product", "0xabc1"))
    play("first_reading_0", found, ("--angle", "0"))
    play("first_reading_200", found, ("--angle", "200"))
    play("report_of_2_bytes", found, ("--report-bytes", "2"))
    play("sleeping_lid", found, ("--wakes-up-in", "0.06"))
    play("silent_lid", found, ("--silent",))
    play("hidraw_contract", hidraw_contract)
    play("device_rights", rights)
