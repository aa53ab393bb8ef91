"""uinput devices, which exist until they are closed."""

import fcntl
import os
import pathlib
import struct

# Event codes of linux/input-event-codes.h.
EV_KEY, EV_ABS, EV_FF = 0x01, 0x03, 0x15
KEY_ESC, KEY_SPACE = 1, 57
BTN_TOUCH, BTN_TOOL_FINGER = 0x14A, 0x145
ABS_X, ABS_Y = 0, 1
FF_RUMBLE = 0x50

# Requests of linux/uinput.h.
_UI_DEV_CREATE, _UI_DEV_DESTROY, _UI_DEV_SETUP = 0x5501, 0x5502, 0x405C5503
_UI_SET_EVBIT, _UI_SET_KEYBIT, _UI_SET_ABSBIT = 0x40045564, 0x40045565, 0x40045567
_UI_SET_FFBIT = 0x4004556B
_UI_GET_SYSNAME = 0x8040552C
_SYSNAME_SIZE = 64
_SET_BIT = {EV_KEY: _UI_SET_KEYBIT, EV_ABS: _UI_SET_ABSBIT, EV_FF: _UI_SET_FFBIT}

BUS_VIRTUAL = 6

KEYBOARD_KEYS = tuple(range(KEY_ESC, KEY_SPACE + 1))


class InputDevice:
    """A device with the event codes given by event type; `node` is its event node below /sys."""

    EFFECTS = 1
    """How many effects it can hold, if it has force feedback."""

    def __init__(self, name, codes):
        self._file = os.open("/dev/uinput", os.O_RDWR | os.O_CLOEXEC)
        for kind, wanted in codes.items():
            fcntl.ioctl(self._file, _UI_SET_EVBIT, kind)
            for code in wanted:
                fcntl.ioctl(self._file, _SET_BIT[kind], code)
        effects = self.EFFECTS if EV_FF in codes else 0
        fcntl.ioctl(self._file, _UI_DEV_SETUP,
                    struct.pack("<HHHH80sI", BUS_VIRTUAL, 1, 1, 1, name.encode(), effects))
        fcntl.ioctl(self._file, _UI_DEV_CREATE)
        answer = fcntl.ioctl(self._file, _UI_GET_SYSNAME, bytes(_SYSNAME_SIZE))
        device = pathlib.Path("/sys/class/input", answer.split(b"\0")[0].decode())
        self.node, = device.glob("event*")

    def close(self):
        """Unplugs the device."""
        fcntl.ioctl(self._file, _UI_DEV_DESTROY)
        os.close(self._file)
