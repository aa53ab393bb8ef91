#!/usr/bin/python3
"""A uhid lid-angle sensor, whose feature report 1 follows a script.

    lid_device.py [--product ID] [--angle DEGREES] [--report-bytes COUNT] [--log FILE] [--keep]
                  [MOVE ...]

A MOVE is `still:SECONDS`, `open:SLOPE:SECONDS` or `close:SLOPE:SECONDS`, the slope in degrees per
second. The device stays at its first angle until a line arrives on standard input, then makes its
moves and is unplugged; with --keep, or when standard input ends before that line, it stays until
standard input ends. --report-bytes cuts the report short. Prints "ready" once the device is there.

The log has one JSON object a line, each with the CLOCK_MONOTONIC time in seconds: the moves, every
reading that was answered, and when the device was created and removed.
"""

import argparse
import json
import os
import select
import struct
import sys
import time

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
        for slope, seconds in self._moves:
            marks.append((at, slope, angle))
            angle += slope * seconds
            at += seconds
        return marks

    def end(self):
        """When the last move ends; None before `start`."""
        if self._started is None:
            return None
        return self._started + sum(seconds for _, seconds in self._moves)

    def angle_at(self, now):
        """The angle at an instant, from 0 to 360."""
        angle = self._angle
        left = 0 if self._started is None else now - self._started
        for slope, seconds in self._moves:
            angle += slope * min(max(left, 0), seconds)
            left -= seconds
        return round(min(max(angle, 0), 360))


class LidDevice:
    """The device, which exists until `destroy`."""

    def __init__(self, product, motion=None, log=None, report_bytes=3):
        self._motion = motion
        self._report_bytes = report_bytes
        self._log = log
        self.file = os.open("/dev/uhid", os.O_RDWR | os.O_CLOEXEC)
        self._write(struct.pack(
            "<I128s64s64sHHIIII", UHID_CREATE2, b"Lab lid angle sensor", b"lab", b"",
            len(DESCRIPTOR), BUS_USB, VENDOR, product, 0, 0) + DESCRIPTOR)

    def _write(self, event):
        os.write(self.file, event.ljust(EVENT_SIZE, b"\0"))

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
        now = time.monotonic()
        angle = self._motion.angle_at(now)
        data = struct.pack("<BH", REPORT_ID, angle)[:self._report_bytes]
        self._write(struct.pack("<IIHH", UHID_GET_REPORT_REPLY, request, 0, len(data)) + data)
        self._log("reading", at=now, angle=angle)

    def destroy(self):
        """Unplugs the device."""
        self._write(struct.pack("<I", UHID_DESTROY))
        os.close(self.file)


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
    sources = [device.file, sys.stdin]
    while True:
        end = None if keep else motion.end()
        wait = None if end is None else end - time.monotonic()
        if wait is not None and wait <= 0:
            return
        ready, _, _ = select.select(sources, [], [], wait)
        if device.file in ready and device.serve():
            log("created")
            print("ready", flush=True)
        if sys.stdin in ready and not _obey(motion, log):
            sources.remove(sys.stdin)
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
    if kind == "still":
        (seconds,) = map(float, numbers)
        return 0.0, seconds
    slope, seconds = map(float, numbers)
    return {"open": slope, "close": -slope}[kind], seconds


def main():
    """Makes the device that the command line describes."""
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--product", type=lambda text: int(text, 0), default=0x8104)
    parser.add_argument("--angle", type=int, default=100)
    parser.add_argument("--report-bytes", type=int, default=3)
    parser.add_argument("--log")
    parser.add_argument("--keep", action="store_true")
    parser.add_argument("moves", nargs="*", type=_move, metavar="MOVE")
    arguments = parser.parse_args()
    log = make_log(arguments.log)
    motion = Motion(arguments.angle, arguments.moves)
    device = LidDevice(arguments.product, motion, log, arguments.report_bytes)
    run(device, motion, log, arguments.keep)
    device.destroy()
    log("gone")


if __name__ == "__main__":
    main()
