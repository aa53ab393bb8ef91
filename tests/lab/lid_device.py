#!/usr/bin/python3
"""A uhid lid-angle sensor, whose feature report 1 follows a script.

    lid_device.py [--product ID] [--angle DEGREES] [--report-bytes COUNT] [--silent]
                  [--wakes-up-in SECONDS] [--log FILE] [--keep] [MOVE ...]

A MOVE is `still:SECONDS`, `open:SLOPE:SECONDS` or `close:SLOPE:SECONDS`, the slope in degrees per
second; `silent:SECONDS`, in which the device does not answer; or `unplugged:SECONDS`, after which
it is plugged in again. The device stays at its first angle until a line arrives on standard input,
then makes its moves and is unplugged; with --keep, or when standard input ends before that line, it
stays until standard input ends. --report-bytes cuts the report short. With --silent it never
answers. With --wakes-up-in it sleeps when it has not been asked for half a second, and is that late
with its next answer. Prints "ready" once the device is there.

The log has one JSON object a line, each with the CLOCK_MONOTONIC time in seconds: the moves, every
reading that was answered or was not, and when the device was created and removed.
"""

import argparse
import json
import os
import select
import struct
import sys
import time
import typing

VENDOR = 0x05AC
REPORT_ID = 1
BUS_USB = 3

# Event numbers and layouts of linux/uhid.h; every structure there is packed.
UHID_DESTROY, UHID_START, UHID_GET_REPORT, UHID_GET_REPORT_REPLY = 1, 2, 9, 10
UHID_CREATE2, UHID_SET_REPORT, UHID_SET_REPORT_REPLY = 11, 13, 14
UHID_FEATURE_REPORT = 0
UHID_DATA_MAX = 4096
EVENT_SIZE = 4 + 128 + 64 + 64 + 2 + 2 + 4 * 4 + UHID_DATA_MAX
EIO = 5

SLEEPS_AFTER = 0.5

# A sensor collection with one feature report: its ID and a 16-bit angle in degrees.
DESCRIPTOR = bytes([
    0x05, 0x20,        # Usage Page (Sensors)
    0x09, 0x8A,        # Usage (Device Orientation)
    0xA1, 0x01,        # Collection (Application)
    0x85, REPORT_ID,   #   Report ID
    0x0A, 0x7F, 0x04,  #   Usage (Tilt, X)
    0x15, 0x00,        #   Logical Minimum (0)
    0x26, 0x68, 0x01,  #   Logical Maximum (360)
    0x75, 0x10,        #   Report Size (16)
    0x95, 0x01,        #   Report Count (1)
    0xB1, 0x02,        #   Feature (Data, Variable, Absolute)
    0xC0,              # End Collection
])


class Move(typing.NamedTuple):
    """One MOVE of the script."""

    kind: str
    slope: float
    seconds: float


class Motion:
    """The lid's angle at a given time, in whole degrees as in the report."""

    def __init__(self, angle, moves):
        self._angle = angle
        self._moves = moves
        self._started = None

    def start(self, now):
        """Begins the first move at `now`; returns (time, slope, angle) of each move's beginning."""
        self._started = now
        marks, angle, at = [], self._angle, now
        for move in self._moves:
            marks.append((at, move.slope, angle))
            angle += move.slope * move.seconds
            at += move.seconds
        return marks

    def kind_at(self, now):
        """The kind of the move at an instant and when that move ends; None and None outside."""
        at = self._started
        if at is not None:
            for move in self._moves:
                at += move.seconds
                if now < at:
                    return move.kind, at
        return None, None

    def end(self):
        """When the last move ends; None before `start`."""
        if self._started is None:
            return None
        return self._started + sum(move.seconds for move in self._moves)

    def angle_at(self, now):
        """The angle at an instant, from 0 to 360."""
        angle = self._angle
        left = 0 if self._started is None else now - self._started
        for move in self._moves:
            angle += move.slope * min(max(left, 0), move.seconds)
            left -= move.seconds
        return round(min(max(angle, 0), 360))


class UnansweredLid:
    """The device, which is plugged in at first. Nobody answers for it."""

    def __init__(self, product):
        self._product = product
        self.file = None
        self.plug_in()

    def plug_in(self):
        """Plugs the device in, unless it is."""
        if self.file is not None:
            return
        self.file = os.open("/dev/uhid", os.O_RDWR | os.O_CLOEXEC)
        self._write(struct.pack(
            "<I128s64s64sHHIIII", UHID_CREATE2, b"Lab lid angle sensor", b"lab", b"",
            len(DESCRIPTOR), BUS_USB, VENDOR, self._product, 0, 0) + DESCRIPTOR)

    def _write(self, event):
        os.write(self.file, event.ljust(EVENT_SIZE, b"\0"))

    def unplug(self):
        """Unplugs the device, if it is plugged in."""
        if self.file is None:
            return
        self._write(struct.pack("<I", UHID_DESTROY))
        os.close(self.file)
        self.file = None


class LidDevice(UnansweredLid):
    """The device with the answers that the script wants."""

    def __init__(self, options, motion, log):
        super().__init__(options.product)
        self._options = options
        self._motion = motion
        self._log = log
        self._asked = 0

    def serve(self):
        """Handles one event of the kernel; true for the start of the device."""
        event = os.read(self.file, EVENT_SIZE)
        (kind,) = struct.unpack_from("<I", event)
        if kind == UHID_GET_REPORT:
            self._answer(*struct.unpack_from("<IBB", event, 4))
        elif kind == UHID_SET_REPORT:
            (request,) = struct.unpack_from("<I", event, 4)
            self._write(struct.pack("<IIH", UHID_SET_REPORT_REPLY, request, EIO))
        return kind == UHID_START

    def _answer(self, request, report, report_type):
        if (report, report_type) != (REPORT_ID, UHID_FEATURE_REPORT):
            self._write(struct.pack("<IIHH", UHID_GET_REPORT_REPLY, request, EIO, 0))
            return
        if self._options.silent or self._motion.kind_at(time.monotonic())[0] == "silent":
            self._log("unanswered")
            return
        now = time.monotonic()
        if now - self._asked > SLEEPS_AFTER:
            time.sleep(self._options.wakes_up_in)
            now = time.monotonic()
        self._asked = now
        angle = self._motion.angle_at(now)
        data = struct.pack("<BH", REPORT_ID, angle)[:self._options.report_bytes]
        self._write(struct.pack("<IIHH", UHID_GET_REPORT_REPLY, request, 0, len(data)) + data)
        self._log("reading", at=now, angle=angle)


def make_log(path):
    """A function that writes one line of the log."""
    out = open(path, "w", encoding="utf-8", buffering=1) if path else None

    def log(event, at=None, **details):
        if out:
            line = {"time": at if at is not None else time.monotonic(), "event": event, **details}
            out.write(json.dumps(line) + "\n")

    return log


def run(device, motion, log, keep):
    """Serves the device until its script or standard input ends."""
    commands = [sys.stdin]
    while True:
        now = time.monotonic()
        end = None if keep else motion.end()
        if end is not None and now >= end:
            return
        kind, until = motion.kind_at(now)
        if kind == "unplugged":
            device.unplug()
        else:
            device.plug_in()
        devices = [] if device.file is None else [device.file]
        wait = min((at - now for at in (end, until) if at is not None), default=None)
        ready, _, _ = select.select(devices + commands, [], [], wait)
        if device.file in ready and device.serve():
            log("created")
            if motion.end() is None:
                print("ready", flush=True)
        if sys.stdin in ready and not _obey(motion, log):
            commands.remove(sys.stdin)
            if end is None:
                return


def _obey(motion, log):
    """Starts the moves at the first line of standard input; false at its end."""
    line = sys.stdin.readline()
    if line and motion.end() is None:
        for at, slope, angle in motion.start(time.monotonic()):
            log("move", at=at, slope=slope, angle=angle)
    return bool(line)


def _move(text):
    kind, *numbers = text.split(":")
    if kind in ("still", "silent", "unplugged"):
        (seconds,) = map(float, numbers)
        return Move(kind, 0.0, seconds)
    slope, seconds = map(float, numbers)
    return Move(kind, {"open": slope, "close": -slope}[kind], seconds)


def main():
    """Makes the device that the command line describes."""
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--product", type=lambda text: int(text, 0), default=0x8104)
    parser.add_argument("--angle", type=int, default=100)
    parser.add_argument("--report-bytes", type=int, default=3)
    parser.add_argument("--silent", action="store_true")
    parser.add_argument("--wakes-up-in", type=float, default=0)
    parser.add_argument("--log")
    parser.add_argument("--keep", action="store_true")
    parser.add_argument("moves", nargs="*", type=_move, metavar="MOVE")
    arguments = parser.parse_args()
    log = make_log(arguments.log)
    motion = Motion(arguments.angle, arguments.moves)
    device = LidDevice(arguments, motion, log)
    run(device, motion, log, arguments.keep)
    device.unplug()
    log("gone")


if __name__ == "__main__":
    main()
