"""What is played inside the lab machine; what it leaves behind is judged outside.

    guest.py BUILD_DIRECTORY RESULTS_DIRECTORY

Every scenario has a folder of its own below the results: the program's console with the time of
each line, its end, the log of the lid device, the recorded sound. All times are CLOCK_MONOTONIC.
"""

import contextlib
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import traceback

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tools"))

from desktop import processes, waiting  # noqa: E402 (found through the line above)
from desktop.buses import AccessibilityBus, Bus  # noqa: E402
from desktop.display import Display  # noqa: E402
from desktop.program import Program  # noqa: E402
from desktop.recording import Recording  # noqa: E402

import device_rights  # noqa: E402
import force_feedback  # noqa: E402
import keyboards  # noqa: E402

RATE = 48000
PATIENCE = 60.0
"""Seconds for what takes a second or two on real hardware."""

LID_SCRIPT = ("still:1", "open:50:0.7", "still:1.5", "close:50:0.7", "still:1.5", "open:50:0.5")
AFTER_VANISHING = 5.0
AFTER_SWITCHING_OFF = 1.5

# The program plays into one end of the loopback and the recorder listens at the other.
ALSA_CONFIG = """
</usr/share/alsa/alsa.conf>
pcm.!default { type hw card Loopback device 0 subdevice 0 }
pcm.lab_ear {
    type plug
    slave { pcm "hw:Loopback,1,0" format S16_LE rate 48000 channels 2 }
}
"""


class Lid:
    """The lid device, in a process of its own."""

    def __init__(self, env, log, stack, *arguments):
        command = [sys.executable, SOURCE / "tests/lab/lid_device.py", "--log", log, *arguments]
        self._process = processes.start(command, env, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        stack.callback(processes.end, self._process)
        if self._process.stdout.readline() != b"ready\n":
            raise RuntimeError("the kernel did not start the lid device")

    def begin_to_move(self):
        """Starts the script."""
        self._process.stdin.write(b"go\n")
        self._process.stdin.flush()

    def wait_until_gone(self, timeout):
        """Waits for the end of the script."""
        self._process.wait(timeout)


class Desktop:
    """A display, a session bus with accessibility, and the way to the sound loopback."""

    def __init__(self, directory, stack):
        self.env = processes.base_environment(str(directory))
        alsa = directory / "alsa.conf"
        alsa.write_text(ALSA_CONFIG, encoding="utf-8")
        self.env.update({
            "ALSA_CONFIG_PATH": str(alsa),
            "ALSOFT_DRIVERS": "alsa",
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={directory}/no-system-bus",
            "QT_QUICK_BACKEND": "software",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        })
        self.display = Display(self.env, stack, 800, 900)
        bus = Bus(self.env, str(directory), "session", stack)
        self.env["DISPLAY"] = self.display.name
        self.accessibility = AccessibilityBus(self.env, bus.address, stack)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.address

    def record(self, log, stack):
        """Starts to record what comes out of the loopback; `log` tells of lost samples."""
        with open(log, "wb") as errors:
            recorder = processes.start(
                ["arecord", "-q", "-D", "lab_ear", "-f", "S16_LE", "-r", str(RATE), "-c", "1",
                 "-t", "raw", "--period-time=20000", "--buffer-time=2000000"],
                self.env, stdout=subprocess.PIPE, stderr=errors)
        stack.callback(processes.end, recorder)
        recording = Recording(recorder.stdout, RATE)
        recording.wait_for_start()
        return recording


class Lab:
    """The machine's desktop, and the program on it."""

    def __init__(self, build, results, stack):
        self._program = build / "quorvane"
        self._results = results
        home = stack.enter_context(
            tempfile.TemporaryDirectory(prefix="lab-", ignore_cleanup_errors=True))
        self.desktop = Desktop(pathlib.Path(home), stack)

    def folder(self, scenario):
        """Where a scenario leaves what it has seen."""
        folder = self._results / scenario
        folder.mkdir(exist_ok=True)
        return folder

    def lid(self, scenario, stack, *arguments):
        """A lid device whose log is kept."""
        return Lid(self.desktop.env, self.folder(scenario) / "device.log", stack, *arguments)

    @contextlib.contextmanager
    def program(self, scenario, stack):
        """The program, ended by SIGTERM; its console and end are kept, and so is what is added."""
        facts = {}
        began = time.monotonic()
        program = Program([self._program], self.desktop.env, stack)
        try:
            yield program, facts
            facts["alive_before_sigterm"] = program.is_running
            facts["sigterm"] = time.monotonic()
            program.terminate()
            facts["status"], facts["ended"] = program.wait_for_exit(PATIENCE)
        finally:
            facts.update(began=began, console=program.console.text, errors=program.errors.text)
            text = json.dumps(facts, ensure_ascii=False, indent=1)
            (self.folder(scenario) / "program.json").write_text(text, encoding="utf-8")


def moving_lid(lab, reader):
    """The first launch, the way to the creak's switch, a lid that moves and then vanishes."""
    name = "moving_lid"
    folder = lab.folder(name)
    with contextlib.ExitStack() as stack:
        recording = lab.desktop.record(folder / "recorder.log", stack)
        lid = lab.lid(name, stack, "--product", "0x8104", "--angle", "100", *LID_SCRIPT)
        with lab.program(name, stack) as (program, facts):
            app = reader.application(program)
            app.press("CHECK HARDWARE 🔍", PATIENCE)
            app.find("Lid sensor detected", timeout=PATIENCE)
            app.press("CONTINUE", PATIENCE)
            app.press("MAKE ME SUFFER 😭", PATIENCE)
            app.find("Build quality", timeout=PATIENCE)
            lab.desktop.display.screenshot(folder / "panel.png")
            app.toggle("Build quality")
            lid.begin_to_move()
            lid.wait_until_gone(PATIENCE)
            time.sleep(AFTER_VANISHING)
            facts["switching_off"] = time.monotonic()
            app.toggle("Build quality")
            facts["switched_off"] = time.monotonic()
            time.sleep(AFTER_SWITCHING_OFF)
            facts["sound_end"] = recording.end
            facts["sound_start"] = recording.end - len(recording.samples()) / RATE
            recording.save(folder / "sound.wav")


def found(lab, name, *lids):
    """What the console says of the sensor at a later launch, with these devices plugged in."""
    with contextlib.ExitStack() as stack:
        for lid in lids:
            lab.lid(name, stack, "--keep", *lid)
        with lab.program(name, stack) as (program, _):
            program.console.wait_for(lambda line: "[SENSOR]" in line, "about the sensor", PATIENCE)


def hidraw_contract(lab, build):
    """The HID service's own contract test, on a device of this kernel."""
    name = "hidraw_contract"
    with contextlib.ExitStack() as stack:
        lab.lid(name, stack, "--keep", "--product", "0x8104", "--angle", "100")
        env = dict(lab.desktop.env, QUORVANE_HIDRAW_ANGLE="100")
        result = subprocess.run([build / "contract_hidraw"], env=env, check=False,
                                stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                timeout=PATIENCE)
    text = json.dumps({"status": result.returncode, "output": result.stdout + result.stderr})
    (lab.folder(name) / "result.json").write_text(text, encoding="utf-8")


def rights(lab):
    """What the program's udev rules change for the person at the machine."""
    name = "device_rights"
    found_rights = device_rights.look(
        lambda product, stack: lab.lid(name, stack, "--keep", "--product", product))
    (lab.folder(name) / "rights.json").write_text(json.dumps(found_rights), encoding="utf-8")


def play(lab, name, scenario, *arguments):
    """Plays one scenario; its failure is left in its folder and does not stop the others."""
    print(f"lab: {name}", flush=True)
    try:
        scenario(lab, *arguments)
    except Exception:  # pylint: disable=broad-except
        (lab.folder(name) / "failure").write_text(traceback.format_exc(), encoding="utf-8")
        traceback.print_exc()


def main():
    """All scenarios, one after the other: each owns the machine's HID devices and sound."""
    build, results = map(pathlib.Path, sys.argv[1:3])
    waiting.slowness = 6.0
    with contextlib.ExitStack() as stack:
        lab = Lab(build, results, stack)
        # Connects to the accessibility bus of this process's environment as it is loaded.
        from desktop.accessibility import ScreenReader
        reader = ScreenReader(lab.desktop.accessibility.address)
        play(lab, "moving_lid", moving_lid, reader)
        play(lab, "found_by_scan", found, "found_by_scan", ("--product", "0xabc1"))
        play(lab, "first_reading_0", found, "first_reading_0", ("--angle", "0"))
        play(lab, "first_reading_200", found, "first_reading_200", ("--angle", "200"))
        play(lab, "hidraw_contract", hidraw_contract, build)
        play(lab, "device_rights", rights)
        keyboards.play_all(play, lab, build, reader)
        force_feedback.play_all(play, lab, reader)


if __name__ == "__main__":
    main()
