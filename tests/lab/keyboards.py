"""Keyboards of the machine's own kernel, in a session that is not all X11: what is played.

Every scenario leaves its deeds, with the time of each, for keyboards_test.py to judge.
"""

import contextlib
import json
import os
import pathlib
import pwd
import shutil
import struct
import subprocess
import time

from desktop import processes
from desktop.waiting import wait_until

from input_device import EV_KEY, InputDevice

EV_SYN, EV_REP = 0x00, 0x14
KEY_A, KEY_B, KEY_C, KEY_LEFTSHIFT = 30, 48, 46, 42
KEYS = tuple(range(1, 89))
# Letters, digits and function keys, no modifier or lock among them.
BURST = [key for key in KEYS if key not in (29, 42, 54, 56, 58, 69, 70)][:64]

SWITCH = "Keyboard"
PATIENCE = 60.0
PAUSE = 1.3
"""Seconds between two deeds: a crack is over long before."""

HOLD = 1.5
STROKES = 6
STROKE = 0.5
RETRY = 3.0
"""Seconds after which the effect looks once more whether it has been permitted."""

NOBODY = pwd.getpwnam("nobody")
CRACK = pathlib.Path(__file__).resolve().parents[2] / "resources/keyboard.mp3"


class Keyboard(InputDevice):
    """A keyboard that repeats a held key by the kernel's own clock."""

    def __init__(self, name, stack):
        super().__init__(name, {EV_KEY: KEYS, EV_REP: ()})
        self.path = f"/dev/input/{self.node.name}"
        self._is_plugged = True
        stack.callback(self.unplug)

    def write(self, *events):
        """Sends (type, code, value), all of it at one instant."""
        os.write(self._file, b"".join(struct.pack("llHHi", 0, 0, *event) for event in events))

    def press(self, *keys):
        self.write(*(event for key in keys for event in ((EV_KEY, key, 1), (EV_SYN, 0, 0))))

    def release(self, *keys):
        self.write(*(event for key in keys for event in ((EV_KEY, key, 0), (EV_SYN, 0, 0))))

    def stroke(self, key):
        self.press(key)
        self.release(key)

    def unplug(self):
        if self._is_plugged:
            self._is_plugged = False
            self.close()


def device_manager(env, stack):
    """The udev that finds and names the devices, as on any desktop."""
    process = processes.start(["/lib/systemd/systemd-udevd"], env)
    stack.callback(processes.end, process)
    wait_until(lambda: os.path.exists("/run/udev/control"), "udev")


def settle():
    """Returns once udev has told of every device that came or went."""
    # The machine's whole tree is a changed root, in which udevadm does not expect a udev.
    subprocess.run(["udevadm", "settle", "--timeout=60"], check=True,
                   env=dict(os.environ, SYSTEMD_IGNORE_CHROOT="1"))


def reads(pid, keyboard):
    """Whether the process has the keyboard open."""
    return keyboard.path in _open_files(pid)


def _open_files(pid):
    files = []
    for entry in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        with contextlib.suppress(FileNotFoundError):
            files.append(os.readlink(entry))
    return files


class Typist:
    """Does things at the keyboards, and notes when."""

    def __init__(self, program, deeds):
        self._program = program
        self._deeds = deeds

    def do(self, name, *deeds, pause=PAUSE):
        """Each of `deeds` is something to call, or a time to wait."""
        begin = time.monotonic()
        for deed in deeds:
            deed() if callable(deed) else time.sleep(deed)
        time.sleep(pause)
        self._deeds.append({"deed": name, "begin": begin, "end": time.monotonic()})

    def wait_until_heard(self, keyboard):
        wait_until(lambda: reads(self._program.pid, keyboard), "the program to open a keyboard")


def _unplug_and_replug_while_typing(typist, one, other, stack):
    """Strokes on `one` all along; gives back the keyboard that is there in place of `other`."""
    for number in range(STROKES):
        typist.do(f"stroke {number}", lambda: one.stroke(KEY_A), pause=STROKE)
        if number == 1:
            # With a key down, which may or may not be heard before its keyboard is gone.
            typist.do("unplugging", lambda: other.press(KEY_C), other.unplug, pause=STROKE)
        if number == 3:
            other = Keyboard("lab keyboard two", stack)
    settle()
    typist.wait_until_heard(other)
    return other


def _type(typist, one, other, stack):
    typist.do("stroke on the first", lambda: one.stroke(KEY_A))
    typist.do("stroke on the second", lambda: other.stroke(KEY_A))
    typist.do("shift alone", lambda: one.stroke(KEY_LEFTSHIFT))
    typist.do("held key", lambda: one.press(KEY_B), HOLD, lambda: one.release(KEY_B))
    other = _unplug_and_replug_while_typing(typist, one, other, stack)
    typist.do("stroke on the replugged", lambda: other.stroke(KEY_A))
    typist.do("burst", lambda: one.press(*BURST), lambda: one.release(*BURST))
    typist.do("vanishing in mid-event", lambda: other.write((EV_KEY, KEY_A, 1)), other.unplug)
    typist.do("stroke after all that", lambda: one.stroke(KEY_A))


def typing(lab, reader):
    """The program, and two keyboards of which one comes and goes."""
    folder = lab.folder("typing")
    with contextlib.ExitStack() as stack:
        stack.enter_context(_wayland_session(lab.desktop.env))
        _skip_hardware_check(lab.desktop.env)
        recording = lab.desktop.record(folder / "recorder.log", stack)
        one = Keyboard("lab keyboard one", stack)
        other = Keyboard("lab keyboard two", stack)
        settle()
        with lab.program("typing", stack) as (program, facts):
            app = reader.application(program)
            # The only line without a tag comes with the first frame.
            program.console.wait_for(lambda line: "[" not in line, "about the creak", PATIENCE)
            app.press("MAKE ME SUFFER 😭", PATIENCE)
            app.find(SWITCH, timeout=PATIENCE)
            facts["files_before"] = _open_files(program.pid)
            app.toggle(SWITCH)
            program.console.wait_for(lambda line: "Event tap started" in line, "armed", PATIENCE)
            time.sleep(PAUSE)
            facts["deeds"] = []
            typist = Typist(program, facts["deeds"])
            _type(typist, one, other, stack)
            app.toggle(SWITCH)
            wait_until(lambda: not reads(program.pid, one), "the program to close the keyboard")
            typist.do("switched off", lambda: one.stroke(KEY_A))
            facts["files_after"] = _open_files(program.pid)
            facts["sound_end"] = recording.end
            facts["sound_start"] = recording.end - len(recording.samples()) / 48000
            recording.save(folder / "sound.wav")


@contextlib.contextmanager
def _wayland_session(env):
    env["WAYLAND_DISPLAY"] = "a-compositor-of-which-only-the-name-is-known"
    try:
        yield
    finally:
        del env["WAYLAND_DISPLAY"]


def _skip_hardware_check(env):
    folder = pathlib.Path(env["XDG_CONFIG_HOME"], "quorvane")
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "quorvane.ini").write_text("[General]\nhardwareChecked=true\n")


class Probe:
    """The probe program, run as a user without rights, with a stand-in for polkit's prompt."""

    def __init__(self, lab, build, home, stack, what):
        self.asked = home / "asked"
        pkexec = home / "pkexec"
        pkexec.write_text(f'#!/bin/sh\necho "$@" >>{self.asked}\n')
        pkexec.chmod(0o755)
        os.chown(home, NOBODY.pw_uid, NOBODY.pw_gid)
        env = dict(processes.base_environment(str(home)), WAYLAND_DISPLAY="wayland-0",
                   DBUS_SYSTEM_BUS_ADDRESS=lab.desktop.env["DBUS_SYSTEM_BUS_ADDRESS"])
        env["PATH"] = f"{home}:{env['PATH']}"
        # Where the program was built may be a folder that this user cannot enter.
        env["QUORVANE_RESOURCES"] = str(home)
        for file in (CRACK, build / "keyboard_probe", build / "quorvane-keyboard-access"):
            shutil.copy(file, home)
        self._process = processes.start(
            ["setpriv", f"--reuid={NOBODY.pw_uid}", f"--regid={NOBODY.pw_gid}", "--clear-groups",
             str(home / "keyboard_probe"), what],
            env, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        stack.callback(processes.end, self._process)
        self.lines = processes.Lines(self._process.stdout)
        self._errors = processes.Lines(self._process.stderr)

    @property
    def pid(self):
        return self._process.pid

    def finish(self, folder):
        """Ends it and leaves what it has said."""
        self._process.stdin.close()
        status = self._process.wait(PATIENCE)
        self.lines.wait_for_end()
        self._errors.wait_for_end()
        asked = self.asked.read_text().splitlines() if self.asked.exists() else []
        text = json.dumps({"status": status, "lines": self.lines.text,
                           "errors": self._errors.text, "asked": asked}, ensure_ascii=False)
        (folder / "probe.json").write_text(text, encoding="utf-8")


@contextlib.contextmanager
def _home():
    # Not a folder of the program's, which only root may enter.
    home = pathlib.Path("/run/probe-home")
    home.mkdir(mode=0o755)
    try:
        yield home
    finally:
        subprocess.run(["rm", "-rf", home], check=True)


def _run_probe(lab, build, name, what, play, before=lambda keyboard: None):
    with contextlib.ExitStack() as stack:
        keyboard = Keyboard("lab keyboard one", stack)
        settle()
        before(keyboard)
        home = stack.enter_context(_home())
        play(keyboard, Probe(lab, build, home, stack, what), lab.folder(name), stack)


def _refused(keyboard, probe, folder, _stack):
    probe.lines.wait_for(lambda line: line == "started", "the start", PATIENCE)
    time.sleep(RETRY + 2)
    # Comes too late: the one retry is over.
    _allow(keyboard)
    time.sleep(RETRY + 1)
    probe.finish(folder)


def _allow(keyboard):
    subprocess.run(["setfacl", "-m", f"u:{NOBODY.pw_uid}:r", keyboard.path], check=True)


def _agreed(build):
    """What polkit does once the person has agreed, and what the session manager says of them."""
    users = pathlib.Path("/run/systemd/users")
    users.mkdir(parents=True, exist_ok=True)
    (users / str(NOBODY.pw_uid)).write_text("ACTIVE_SEATS=seat0\nSEATS=seat0\n")
    subprocess.run([build / "quorvane-keyboard-access"], check=True,
                   env={"PKEXEC_UID": str(NOBODY.pw_uid)})


def _permitted(build):
    def play(_keyboard, probe, folder, _stack):
        wait_until(probe.asked.exists, "the prompt")
        _agreed(build)
        probe.lines.wait_for(lambda line: line == "active yes", "the retry", PATIENCE)
        probe.finish(folder)
    return play


def _readable_later(one, probe, folder, stack):
    """A tap hears a keyboard from when it may be read, though it was there all along."""
    probe.lines.wait_for(lambda line: line == "tap yes", "the tap", PATIENCE)
    other = Keyboard("lab keyboard two", stack)
    settle()
    other.stroke(KEY_A)
    one.stroke(KEY_A)
    probe.lines.wait_for(lambda line: line == "key", "the first key", PATIENCE)
    _allow(other)
    wait_until(lambda: reads(probe.pid, other), "the other keyboard to be opened")
    other.stroke(KEY_B)
    wait_until(lambda: probe.lines.text.count("key") == 2, "the second key")
    probe.finish(folder)


def _uinput_contract(lab, build):
    result = subprocess.run([build / "contract_uinput"], env=lab.desktop.env, check=False,
                            stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120)
    text = json.dumps({"status": result.returncode, "output": result.stdout + result.stderr})
    (lab.folder("uinput_contract") / "result.json").write_text(text, encoding="utf-8")


def play_all(play, lab, build, reader):
    """The keyboards' scenarios, each by `play(lab, name, scenario, *arguments)`."""
    with contextlib.ExitStack() as stack:
        device_manager(lab.desktop.env, stack)
        play(lab, "typing", typing, reader)
        play(lab, "uinput_contract", _uinput_contract, build)
        for name, *scenario in (("refused", "effect", _refused),
                                ("permitted", "effect", _permitted(build)),
                                ("readable_later", "tap", _readable_later, _allow)):
            play(lab, name, _run_probe, build, name, *scenario)
