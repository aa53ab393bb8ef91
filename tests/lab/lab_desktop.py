"""The desktop inside the lab machine, and the program on it."""

import contextlib
import json
import pathlib
import shutil
import subprocess
import tempfile
import time

from virtual_desktop import processes, screens
from virtual_desktop.buses import AccessibilityBus, Bus
from virtual_desktop.display import Display
from virtual_desktop.program import Program
from virtual_desktop.recording import LiveRecording
from virtual_desktop.sound_server import SoundServer

from logins import USER
from standstill import Watch

RATE = 48000
TIMEOUT = 60.0
"""The timeout, in seconds, of what takes a second or two on real hardware."""

# The sound server plays to one end of the loopback, the recorder reads from the other. The sink is
# scheduled by timers and can rewind what it has buffered, as with a notebook's sound card.
SINK = "module-alsa-sink device=hw:Loopback,0 tsched=1"
BY_TIMERS = "Successfully enabled timer-based scheduling mode."
ALSA_CONFIG = """
</usr/share/alsa/alsa.conf>
pcm.lab_recorder {
    type plug
    slave { pcm "hw:Loopback,1,0" format S16_LE rate 48000 channels 2 }
}
"""


class Desktop:
    """A display, a session bus with accessibility, and a sound server on the sound loopback."""

    def __init__(self, directory, stack):
        self.env = processes.base_environment(str(directory))
        alsa = directory / "alsa.conf"
        alsa.write_text(ALSA_CONFIG, encoding="utf-8")
        self.env.update({
            "ALSA_CONFIG_PATH": str(alsa),
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={directory}/no-system-bus",
            "QT_QUICK_BACKEND": "software",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        })
        self.display = Display(self.env, stack, 800, 900)
        bus = Bus(self.env, str(directory), "session", stack)
        self.env["DISPLAY"] = self.display.name
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.address
        sound = SoundServer(self.env, str(directory / "sound"), SINK)
        sound.start(stack)
        if not any(BY_TIMERS in line for line in sound.log.text):
            raise RuntimeError("the sound server does not schedule by timers")
        self.env["PULSE_SERVER"] = sound.address
        # For programs that do not run as root.
        (directory / "sound").chmod(0o755)
        self.user_env = self._environment_of_the_user(directory / "user")
        # Its bus is for its user and root.
        self.accessibility = AccessibilityBus(self.user_env, bus.address, stack, user=USER.pw_uid,
                                              group=USER.pw_gid, extra_groups=[])

    def _environment_of_the_user(self, home):
        """The environment of the programs that do not run as root."""
        home.mkdir()
        own = processes.base_environment(str(home))
        subprocess.run(["chown", "-R", f"{USER.pw_uid}:{USER.pw_gid}", home], check=True)
        home.parent.chmod(0o755)
        return self.env | own

    def record(self, log, stack):
        """Starts to record from the loopback; the file `log` names lost samples."""
        with open(log, "wb") as errors:
            recorder = processes.start(
                ["arecord", "-q", "-D", "lab_recorder", "-f", "S16_LE", "-r", str(RATE), "-c", "1",
                 "-t", "raw", "--period-time=20000", "--buffer-time=2000000"],
                self.env, stack, stdout=subprocess.PIPE, stderr=errors)
        recording = LiveRecording(recorder.stdout, RATE)
        recording.wait_for_start()
        return recording


class Lab:
    """The machine's desktop, and the files that the scenarios leave."""

    def __init__(self, build, results, stack):
        self.build = build
        self._results = results
        home = pathlib.Path(stack.enter_context(
            tempfile.TemporaryDirectory(prefix="lab-", ignore_cleanup_errors=True)))
        self._played = home / "played"
        self.desktop = Desktop(home, stack)
        # Atspi connects to the bus in this process's environment when it is loaded.
        from virtual_desktop.accessibility import ScreenReader
        self.reader = ScreenReader(self.desktop.accessibility.address)
        self.watch = Watch(self.desktop.env, home / "heartbeat.log", stack)

    def folder(self, scenario):
        """The folder of a scenario's files.

        In the machine's memory: writing a log to the host would block its writer while it is timed.
        """
        folder = self._played / scenario
        folder.mkdir(parents=True, exist_ok=True)
        return folder

    def move_to_results(self, scenario, attempt):
        """Moves the files of an attempt at a scenario to the results, which are on the host."""
        shutil.move(self.folder(scenario), self._results / scenario / attempt)

    def set_first_launch(self, is_first):
        """Makes the next launch the first one, which checks the hardware, or a later one."""
        screens.settings_file(self.desktop.env).unlink(missing_ok=True)
        if not is_first:
            screens.skip_hardware_check(self.desktop.env)

    @contextlib.contextmanager
    def program(self, scenario, stack, command=None, env=None):
        """The running program, ended by SIGTERM, and a dict of facts; saves them and its output.

        By default it is the one that was built, run by root.
        """
        facts = {}
        began = time.monotonic()
        program = Program(command or [self.build / "quorvane"], env or self.desktop.env, stack)
        try:
            yield program, facts
            facts["alive_before_sigterm"] = program.is_running
            facts["sigterm"] = time.monotonic()
            program.terminate()
            facts["status"], facts["ended"] = program.wait_for_exit(TIMEOUT)
        finally:
            facts.update(began=began, console=program.console.text, errors=program.errors.text)
            self.save(scenario, "program.json", facts)

    def run_contract(self, scenario, *command, env=None, **settings):
        """Runs a contract test; leaves its status and output."""
        env = env or self.desktop.env
        result = subprocess.run(command, env=env | settings, check=False,
                                stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                timeout=2 * TIMEOUT)
        self.save(scenario, "result.json", {"status": result.returncode,
                                            "output": result.stdout + result.stderr})

    def save(self, scenario, name, facts):
        """Writes a file of a scenario as JSON."""
        text = json.dumps(facts, ensure_ascii=False, indent=1)
        (self.folder(scenario) / name).write_text(text, encoding="utf-8")

    def save_sound(self, scenario, recording, facts):
        """Writes the recorded sound and adds its times to the facts."""
        facts["sound_start"], facts["sound_end"] = recording.start, recording.end
        recording.save(self.folder(scenario) / "sound.wav")
