"""The base of the end-to-end tests: a desktop session with the built program in it.

QUORVANE_BUILD_DIR names the build that is tested (by default the folder "build" of the repository).
A test that fails leaves a picture of the screen and a recording in its folder "e2e".
"""

import contextlib
import functools
import os
import pathlib
import shutil
import sys
import time
import unittest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("QUORVANE_BUILD_DIR", REPOSITORY / "build")).resolve()
PROGRAM = BUILD / "quorvane"
EVIDENCE = BUILD / "e2e"
CREAK = REPOSITORY / "resources" / "creaking.mp3"

sys.path.insert(0, str(REPOSITORY / "tools"))

from virtual_desktop import screens  # noqa: E402 (found through the line above)
from virtual_desktop.buses import Services  # noqa: E402
from virtual_desktop.session import Session  # noqa: E402
from virtual_desktop.waiting import wait_until  # noqa: E402

LOADED = r"✅ Φορτώθηκε: creaking\.mp3 \((\d+\.\d)s\)"
NO_SENSOR = "⚠️ [SENSOR] No HID lid sensor found — using sleep/wake fallback"
MONITORING = "📡 [SENSOR] Sleep/wake monitoring started"
FINISHED = "✅ [AUDIO] Τελείωσε — ready for next"

OTHER_EFFECTS = ("[STARTUP]", "[RUMBLE]", "[HAPTIC]", "[KEYBOARD]", "[FAN]")
"""The tags of the lines that are not about the lid."""

AUDIBLE = -50.0
"""dBFS above which the creak can be heard."""

LISTENING_ATTEMPTS = 4
"""The most attempts of `hear`."""

OWN_LINES = "quorvane: "
"""The prefix of the program's own lines on standard error; libraries write others."""

ANY_LINES = ""


def _keep_evidence(step):
    @functools.wraps(step)
    def wrapped(self):
        try:
            step(self)
        except BaseException as error:
            error.add_note(self.evidence())
            raise
    return wrapped


class EndToEndTest(unittest.TestCase):
    """A session for each class; a home folder and processes of its own for each test."""

    listens = False
    """Whether the tests need the recording, which takes 2 s to begin, and an idle machine."""

    waits = False
    """Whether the tests sleep for most of their time, so that they can run beside others."""

    program = None

    @classmethod
    def setUpClass(cls):
        if not PROGRAM.exists():
            raise FileNotFoundError(f"{PROGRAM} is not built")
        cls.session = cls.enterClassContext(Session())
        cls.recording = cls.session.recording
        if cls.listens:
            cls.recording.wait_for_start()

    def __init_subclass__(cls, **options):
        super().__init_subclass__(**options)
        for name, member in list(vars(cls).items()):
            if name.startswith("test_") or name == "setUp":
                setattr(cls, name, _keep_evidence(member))

    def setUp(self):
        self.stack = self.enterContext(contextlib.ExitStack())
        self.home = os.path.join(self.session.directory, "homes", self._testMethodName)
        self.environment = self.session.environment(self.home)
        self.started = time.monotonic()

    # The program.

    def launch(self, *arguments, console_reader=True, **environment):
        """Starts the program; `environment` adds variables, or removes those that are None."""
        env = {name: value for name, value in (self.environment | environment).items()
               if value is not None}
        self.program = self.session.run([str(PROGRAM), *arguments], env, self.stack,
                                        console_reader=console_reader)
        return self.program

    def screens(self):
        """The accessible tree of the program, once its window has appeared."""
        tree = self.session.reader.application(self.program)
        screens.wait_for_first_frame(self.program)
        return tree

    def skip_hardware_check(self):
        """Makes the next launch a later one, which opens on the warning."""
        screens.skip_hardware_check(self.environment)

    @staticmethod
    def pass_hardware_check(tree):
        """Goes on from the hardware check to the warning."""
        tree.press(screens.CHECK)
        tree.press(screens.CONTINUE)
        tree.find(screens.ENTER)

    def launch_into_control_panel(self, creak, *arguments, **environment):
        """A later launch as far as the control panel; `creak` turns the creak's switch on."""
        self.skip_hardware_check()
        self.launch(*arguments, **environment)
        panel = screens.open_control_panel(self.session.reader, self.program)
        if creak:
            panel.switch(screens.BUILD_QUALITY, True)
        return panel

    def lid_lines(self):
        """The console lines about the sensor and the creak."""
        return [line for line in self.program.console.text
                if not any(tag in line for tag in OTHER_EFFECTS)]

    def leave(self, complaints=None):
        """Ends the program by SIGTERM; its status has to be 0.

        Every line on standard error has to begin with `complaints`; by default there may be none.
        """
        self.program.terminate()
        status, _ = self.program.wait_for_exit()
        self.assertEqual(status, 0)
        others = [line for line in self.program.errors.text
                  if complaints is None or not line.startswith(complaints)]
        self.assertEqual(others, [], "standard error")

    def resources_without(self, *names):
        """A resource folder like the program's own, without the files named."""
        folder = pathlib.Path(self.home, "resources")
        shutil.copytree(CREAK.parent, folder, ignore=shutil.ignore_patterns(*names))
        return folder

    def resources_with_damaged(self, *names):
        """A resource folder like the program's own, in which the files named are no sounds."""
        folder = self.resources_without(*names)
        for name in names:
            (folder / name).write_text("no sound at all\n" * 100)
        return folder

    # The mouse and the keyboard.

    def click(self, tree, name):
        """Clicks in the middle of a control."""
        left, top, width, height = tree.settled_place(name)
        self.session.display.click(left + width // 2, top + height // 2)

    def focus(self, tree, name):
        """Presses Tab until a control has the keyboard."""
        for _ in range(20):
            if tree.is_focused(name):
                return
            self.session.display.press_key("Tab")
            # The key goes through the display server: the focus may move only after the next look.
            with contextlib.suppress(AssertionError):
                self.wait_until(lambda: tree.is_focused(name), name, 0.3)
        self.fail(f'Tab does not reach "{name}"\n{tree.describe()}')

    def press_space_on(self, tree, name):
        self.focus(tree, name)
        self.session.display.press_key("space")

    # The system bus.

    def start_system_bus(self, *services):
        """A system bus with the fakes named, for programs that start from now on."""
        self.bus = self.session.system_bus(self._testMethodName, self.stack)
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = self.bus.address
        return Services(self.environment, self.bus, self.stack, services) if services else None

    def wait_until_sleep_is_watched(self):
        """Waits for the subscription, which comes within a second after the window."""
        self.wait_until(lambda: self.bus.is_listened_to("PrepareForSleep"),
                        "the program to subscribe to the machine's sleep", 1.0)

    # Time and sound.

    @staticmethod
    def wait_until(condition, what, timeout=5.0):
        return wait_until(condition, what, timeout)

    def hear(self, check):
        """Runs `check` on the recording, and again only if it fails and there was an underrun.

        An underrun means that the server or the program got no processor time for longer than its
        buffers last, which is not the program's fault.
        """
        for attempt in range(1, LISTENING_ATTEMPTS + 1):
            begin = time.monotonic()
            try:
                return check()
            except AssertionError as error:
                dropouts = self.session.sound.dropouts(begin, time.monotonic())
                error.add_note(f"attempt {attempt}: the sound server ran dry {dropouts} times")
                if not dropouts or attempt == LISTENING_ATTEMPTS:
                    raise
                self.log_repeat(f"once more, as the sound server ran dry {dropouts} times: {error}")

    def log_repeat(self, text):
        """Logs a repeat to a file: CTest shows no output of a test that passes."""
        with open(BUILD / "repeats.log", "a", encoding="utf-8") as file:
            print(f"{self.id()}: {text}", file=file)

    def assert_silent(self, begin, end, why):
        last = self.recording.last_sound(begin, end)
        if last is not None:
            self.fail(f"{why}: sound {last - begin:.2f} s after the beginning of "
                      f"{end - begin:.2f} s of silence")

    def assert_creaks(self, begin, end, why):
        """A creak is a series of pulses, and has to be loud in each half second."""
        stretch = (end - begin) / max(1, round((end - begin) / 0.5))
        at = begin
        while at < end - 0.01:
            level = self.recording.level(at, at + stretch)
            self.assertGreater(level, AUDIBLE, f"{why}: quiet {at - begin:.2f} s after its start")
            at += stretch

    # Evidence of a failure.

    def evidence(self):
        """Saves a screenshot and the recording; returns where they are and the program's output."""
        EVIDENCE.mkdir(parents=True, exist_ok=True)
        picture = EVIDENCE / f"{self._testMethodName}.png"
        sound = EVIDENCE / f"{self._testMethodName}.wav"
        self.session.display.screenshot(picture)
        self.recording.save(sound, max(self.started, self.recording.start))
        console = self.program.console.since(self.started) if self.program else []
        errors = self.program.errors.since(self.started) if self.program else []
        return "\n".join(["", f"screen:    {picture}", f"recording: {sound}",
                          "console:", *(f"  {line}" for line in console),
                          "standard error:", *(f"  {line}" for line in errors)])
