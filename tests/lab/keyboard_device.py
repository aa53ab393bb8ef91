"""Keyboards made through /dev/uinput, and key codes of linux/input-event-codes.h."""

import os
import struct
import time

from input_device import EV_KEY, InputDevice

EV_SYN, EV_REP = 0x00, 0x14
KEY_A, KEY_B, KEY_C, KEY_LEFTSHIFT = 30, 48, 46, 42
KEY_MAX = 0x2FF
ALL_KEYS = tuple(range(1, KEY_MAX + 1))
KEYS = tuple(range(1, 89))
PASSWORD = (35, 22, 49, 20, 18, 19, 3)
"""h u n t e r 2"""


class Keyboard(InputDevice):
    """A keyboard whose held keys the kernel repeats."""

    def __init__(self, name, stack, keys=KEYS):
        super().__init__(name, {EV_KEY: keys, EV_REP: ()})
        self.path = f"/dev/input/{self.node.name}"
        self._is_plugged = True
        stack.callback(self.unplug)

    def write(self, *events):
        """Sends (type, code, value) events in one write."""
        os.write(self._file, b"".join(struct.pack("llHHi", 0, 0, *event) for event in events))

    def press(self, *keys):
        self.write(*(event for key in keys for event in ((EV_KEY, key, 1), (EV_SYN, 0, 0))))

    def release(self, *keys):
        self.write(*(event for key in keys for event in ((EV_KEY, key, 0), (EV_SYN, 0, 0))))

    def stroke(self, key):
        self.press(key)
        self.release(key)

    def type(self, keys, pause):
        """Strokes these keys, `pause` seconds apart."""
        for key in keys:
            self.stroke(key)
            time.sleep(pause)

    def unplug(self):
        if self._is_plugged:
            self._is_plugged = False
            self.close()
