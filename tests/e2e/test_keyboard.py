"""Every key press in any program cracks, and what is typed leaves no trace."""

import math
import os
import re
import statistics
import subprocess
import time
import unittest

import dbus.bus
import dbus.lowlevel
import numpy

from harness import EndToEndTest
from virtual_desktop import processes
from virtual_desktop.key_sender import KeySender
from virtual_desktop.other_window import OtherWindow
from virtual_desktop.screens import KEYBOARD

LOADED = "✅ [KEYBOARD] keyboard.mp3 loaded"
STARTED = "⌨️ [KEYBOARD] Event tap started — global monitoring active"

LOUD = 0.1
"""Share of full scale above which a crack is heard: the first 20 of its 60 ms are that loud."""

APART = 0.06
"""Seconds below LOUD after which the next loud sample begins another crack."""

REACTION = 0.5
"""Seconds until a key is heard; generous for a busy machine."""

EARLY = 0.1
"""Seconds by which the recording's clock may be ahead; more than twice its known error."""

RATE_LIMIT = 0.15
TOLERANCE = 0.02
"""Seconds by which a crack may sound earlier or later than it was started: an output buffer."""

TIMES = 10
"""How often a key, or a pair or a burst of them, is pressed."""

NEARLY_ALWAYS = 9
"""How many of these have to be heard as expected."""

LATENCY = 0.15
"""The longest median delay of a key; more would feel slow."""

HOLD = 2.0
SECRET = "xq7zvkjw9"
QT_CALL = "member=GetRegisteredEvents"
"""Qt's call on the accessibility bus whenever a client connects or disconnects."""

BURST = [*"abcdefghijklmnopqrstuvwxyz0123456789", *(f"F{n}" for n in range(1, 13)),
         *(f"KP_{n}" for n in range(10)), "space", "Tab", "minus", "equal", "comma", "period"]


class KeyboardTest(EndToEndTest):
    """The switch is on, and another program's window has the keyboard."""

    listens = True

    def setUp(self):
        super().setUp()
        self.panel = self.launch_into_control_panel(creak=False)
        self.panel.toggle(KEYBOARD)
        self.program.wait_for_line(STARTED)
        self.keys = KeySender(self.session.display.name, self.stack)
        self._open_window()

    def _open_window(self):
        self.window = OtherWindow("336699", env=self.environment, stack=self.stack)
        self.wait_until(lambda: self.session.display.focused() == self.window.id,
                        "the window to have the keyboard", 15)

    def presses(self):
        """How many key presses, with repeats, the other program's window has received."""
        return self.window.presses().count("key")

    def onsets(self, begin, end):
        """When each crack begins between two instants; it has to be silent before."""
        begin -= EARLY
        loud = numpy.flatnonzero(abs(self.recording.samples(begin, end)) > LOUD) / 48000
        if not len(loud):
            return []
        first = numpy.concatenate(([True], numpy.diff(loud) > APART))
        return [begin + at for at in loud[first]]

    def assert_cracks(self, count, action, why):
        """`action`, which returns its begin and end, causes exactly `count` cracks."""
        def check():
            begin, end = action()
            self.assertEqual(len(self.onsets(begin, end + REACTION + 0.3)), count, why)
        self.hear(check)

    def do_many_times(self, action, longest=math.inf):
        """Calls `action`, which returns its begin and end, until TIMES of them took less than
        `longest`; returns for each of these the delays of the cracks after its begin."""
        spans = []
        while (short := sum(end - begin < longest for begin, end in spans)) < TIMES:
            self.assertLess(len(spans), 2 * TIMES, f"most took too long: {spans}")
            spans.append(action())
            time.sleep(REACTION + EARLY)
        if short < len(spans):
            self.log_repeat(f"{len(spans) - short} of {len(spans)} took longer than "
                             f"{longest:.2f} s and are not counted")
        onsets = self.onsets(spans[0][0], spans[-1][1] + REACTION + 0.3)
        heard = [[onset - begin for onset in onsets if begin - EARLY <= onset <= end + REACTION]
                 for begin, end in spans]
        self.assertEqual(sum(map(len, heard)), len(onsets),
                         f"cracks at {onsets}, some of no key: they were pressed at {spans}")
        return [delays for (begin, end), delays in zip(spans, heard) if end - begin < longest]


class Keys(KeyboardTest):
    def test_a_key_in_another_programs_window_cracks(self):
        self.assert_silent(time.monotonic() - 0.3, time.monotonic(), "before the key")
        self.hear(self._check_keys)
        self.wait_until(lambda: self.presses() >= TIMES, "the keys in the window")
        self.assertIn(LOADED, self.program.console.text)
        self.leave()

    def _check_keys(self):
        heard = self.do_many_times(lambda: self.keys.stroke("a"))
        self.assertLessEqual(max(map(len, heard)), 1, f"more than one crack of a key: {heard}")
        delays = [delay for key in heard for delay in key]
        self.assertGreaterEqual(len(delays), NEARLY_ALWAYS, f"of {TIMES} keys: {heard}")
        self.assertLess(statistics.median(delays), LATENCY, f"seconds to be heard: {delays}")

    def test_keys_that_xdotool_types_crack(self):
        def type_word():
            begin = time.monotonic()
            self.session.display.xdotool("type", "--delay", 400, "key")
            return begin, time.monotonic()

        self.assert_cracks(3, type_word, "three letters")
        self.leave()

    def test_a_held_key_cracks_once(self):
        def hold():
            begin, _ = self.keys.press("a")
            time.sleep(HOLD)
            _, end = self.keys.release("a")
            return begin, end

        self.assert_cracks(1, hold, "a held key")
        self.assertGreater(self.presses(), 10, "the display server has not repeated the key")
        self.leave()

    def test_modifiers_alone_are_silent(self):
        begin = time.monotonic()
        for modifier in ("Shift_L", "Control_L", "Alt_L", "Super_L", "Caps_Lock", "Caps_Lock"):
            self.keys.stroke(modifier)
        self.wait_until(lambda: self.presses() >= 4, "the modifiers in the window")
        self.assert_silent(begin, time.monotonic() + REACTION, "modifiers alone")

        def type_capital():
            self.keys.press("Shift_L")
            instants = self.keys.stroke("a")
            self.keys.release("Shift_L")
            return instants

        self.assert_cracks(1, type_capital, "a capital letter")
        self.leave()

    def test_switched_off_keys_are_silent(self):
        self.panel.switch(KEYBOARD, False)
        begin, _ = self.keys.stroke("a")
        self.wait_until(lambda: self.presses() == 1, "the key in the window")
        self.assert_silent(begin, begin + REACTION + 0.3, "with the switch off")
        self.panel.toggle(KEYBOARD)
        self.wait_until(lambda: self.program.console.text.count(STARTED) == 2, "the second start")
        self.assert_cracks(1, lambda: self.keys.stroke("a"), "switched on again")
        self.leave()


class RateLimit(KeyboardTest):
    """Two or more keys in a row; a busy machine may press them too far apart to count."""

    def check(self, count, action, longest=math.inf):
        """`action` nearly always causes exactly `count` cracks, and never two close together."""
        def check_once():
            heard = self.do_many_times(action, longest)
            for delays in heard:
                for earlier, later in zip(delays, delays[1:]):
                    self.assertGreater(later - earlier, RATE_LIMIT - TOLERANCE, heard)
            right = sum(len(delays) == count for delays in heard)
            self.assertGreaterEqual(right, NEARLY_ALWAYS, f"seconds to be heard: {heard}")
        self.hear(check_once)
        self.leave()

    def stroke_twice(self, gap):
        """Two keys `gap` seconds apart; when the first and the second was pressed."""
        first, _ = self.keys.stroke("a")
        time.sleep(max(0.0, first + gap - time.monotonic()))
        second, _ = self.keys.stroke("b")
        return first, second

    def test_two_keys_closer_than_the_limit_crack_once(self):
        self.check(1, lambda: self.stroke_twice(0.1), RATE_LIMIT - TOLERANCE)

    def test_two_keys_further_apart_than_the_limit_crack_twice(self):
        self.check(2, lambda: self.stroke_twice(0.2))

    def test_a_burst_cracks_once_and_is_not_replayed(self):
        self.assertEqual(len(BURST), 64)

        def press_burst():
            instants = self.keys.press(*BURST)
            self.keys.release(*BURST)
            return instants
        self.check(1, press_burst, RATE_LIMIT - TOLERANCE)


class Privacy(KeyboardTest):
    def _monitor(self, address):
        process = processes.start(["dbus-monitor", "--address", address], self.environment,
                                  self.stack, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        lines = processes.Lines(process.stdout)
        # A connection that becomes a monitor loses its name.
        lines.wait_for(lambda line: "member=NameLost" in line, "its beginning")
        connection = dbus.bus.BusConnection(address)
        self.stack.callback(connection.close)
        return connection, lines

    def _names_of_the_program(self, connection):
        bus = dbus.Interface(connection.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus"),
                             "org.freedesktop.DBus")
        return [name for name in map(str, bus.ListNames()) if name.startswith(":")
                and self._process_of(bus, name) == self.program.pid]

    @staticmethod
    def _process_of(bus, name):
        try:
            return int(bus.GetConnectionUnixProcessID(name))
        except dbus.DBusException:
            return None

    def _files(self):
        """Every file in the program's home with its bytes."""
        files = {}
        for folder, _, names in os.walk(self.home):
            for name in names:
                path = os.path.join(folder, name)
                if os.path.isfile(path):
                    with open(path, "rb") as file:
                        files[path] = file.read()
        return files

    def _sync(self, connection, lines, mark):
        """Waits until the monitor has seen everything sent so far."""
        connection.send_message(dbus.lowlevel.SignalMessage("/mark", "quorvane.Test", mark))
        connection.flush()
        lines.wait_for(lambda line: f"member={mark}" in line, mark)

    def test_what_is_typed_leaves_no_trace(self):
        addresses = [self.environment["DBUS_SESSION_BUS_ADDRESS"],
                     os.environ["AT_SPI_BUS_ADDRESS"]]
        monitors = [self._monitor(address) for address in addresses]
        for connection, lines in monitors:
            self._sync(connection, lines, "Begin")
        files, console, errors = self._files(), self.program.console.text, self.program.errors.text
        names = [self._names_of_the_program(connection) for connection, _ in monitors]
        self.assertTrue(names[0] or names[1], "the program is on no bus")
        typed = time.monotonic()
        self.session.display.xdotool("type", "--delay", 200, SECRET)
        self.wait_until(lambda: self.presses() >= len(SECRET), "the secret in the window")
        self.assertGreater(len(self.onsets(typed, time.monotonic() + REACTION)), 1,
                           "the keys were not heard")
        for connection, lines in monitors:
            self._sync(connection, lines, "End")
        self.assertEqual(self.program.console.text, console)
        self.assertEqual(self.program.errors.text, errors)
        self.assertEqual(self._files(), files)
        for (_, lines), own in zip(monitors, names):
            self._check_traffic(lines.text, own)
        self.leave()
        self.assertEqual(self._files(), files)
        text = "\n".join([*self.program.console.text, *self.program.errors.text])
        self.assertNotIn(SECRET, text)

    def _check_traffic(self, lines, names):
        begin = next(i for i, line in enumerate(lines) if "member=Begin" in line)
        end = next(i for i, line in enumerate(lines) if "member=End" in line)
        sent = [line for line in lines[begin:end]
                if (sender := re.search(r"sender=(\S+)", line)) and sender[1] in names
                and QT_CALL not in line]
        self.assertEqual(sent, [])
        self.assertNotIn(SECRET, "\n".join(lines))


if __name__ == "__main__":
    unittest.main()
