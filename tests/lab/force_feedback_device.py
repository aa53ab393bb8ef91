#!/usr/bin/python3
"""A uinput device that rumbles and logs what is done on it.

    force_feedback_device.py LOG

Prints "ready" once the device is there, and removes it when standard input ends.

The log has one JSON object a line, each with the CLOCK_MONOTONIC time in seconds: effects that were
uploaded, played and erased, and when the device was created and removed.
"""

import fcntl
import json
import os
import select
import struct
import sys
import time

from input_device import EV_FF, FF_RUMBLE, InputDevice

# Event codes and requests of linux/uinput.h.
EV_UINPUT, UI_FF_UPLOAD, UI_FF_ERASE = 0x0101, 1, 2
UI_BEGIN_FF_UPLOAD, UI_END_FF_UPLOAD = 0xC06855C8, 0x406855C9
UI_BEGIN_FF_ERASE, UI_END_FF_ERASE = 0xC00C55CA, 0x400C55CB

EVENT = struct.Struct("llHHi")
# Request number, return value, two ff_effect of 48 bytes: the new one and the one it replaces.
UPLOAD = struct.Struct("Ii48s48s")
ERASE = struct.Struct("IiI")
# Type, number, direction, trigger, length and delay; then the two motors.
EFFECT = struct.Struct("HhHHHHHxxHH")


class RumblingDevice(InputDevice):
    """The device, and its answers to the kernel's requests."""

    EFFECTS = 16

    def __init__(self, log):
        super().__init__("Lab pad", {EV_FF: (FF_RUMBLE,)})
        self._log = log
        self.file = self._file

    def serve(self):
        """Handles one event of the kernel."""
        _, _, kind, code, value = EVENT.unpack(os.read(self.file, EVENT.size))
        if kind == EV_FF:
            self._log("play" if value else "stop", effect=code)
        elif (kind, code) == (EV_UINPUT, UI_FF_UPLOAD):
            self._upload(value)
        elif (kind, code) == (EV_UINPUT, UI_FF_ERASE):
            self._erase(value)

    def _upload(self, request):
        asked = fcntl.ioctl(self.file, UI_BEGIN_FF_UPLOAD,
                            UPLOAD.pack(request, 0, bytes(48), bytes(48)))
        _, _, effect, old = UPLOAD.unpack(asked)
        kind, number, _, _, _, length, _, strong, weak = EFFECT.unpack_from(effect)
        self._log("upload", effect=number, type=kind, length=length, strong=strong, weak=weak)
        fcntl.ioctl(self.file, UI_END_FF_UPLOAD, UPLOAD.pack(request, 0, effect, old))

    def _erase(self, request):
        asked = fcntl.ioctl(self.file, UI_BEGIN_FF_ERASE, ERASE.pack(request, 0, 0))
        _, _, number = ERASE.unpack(asked)
        self._log("erase", effect=number)
        fcntl.ioctl(self.file, UI_END_FF_ERASE, ERASE.pack(request, 0, number))


def main():
    """Serves the device until standard input ends."""
    with open(sys.argv[1], "a", encoding="utf-8", buffering=1) as out:
        def log(event, **details):
            out.write(json.dumps({"time": time.monotonic(), "event": event, **details}) + "\n")

        device = RumblingDevice(log)
        log("created")
        print("ready", flush=True)
        while True:
            ready, _, _ = select.select([device.file, sys.stdin], [], [])
            if device.file in ready:
                device.serve()
            elif sys.stdin.read() == "":
                break
        device.close()
        log("gone")


if __name__ == "__main__":
    main()
