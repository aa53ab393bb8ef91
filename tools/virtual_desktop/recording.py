"""Recorded sound, with instants of time.monotonic(), and its level over time."""

import math
import threading
import time
import wave

import numpy

from . import clips
from .waiting import wait_until

WINDOW = 0.01
"""Seconds over which a level is taken where sound is searched for."""

SILENCE = -70.0
"""dBFS below which nothing is being played: neither a null sink nor a loopback adds noise."""


class Recording:
    """Mono samples at full scale 1, the first of which sounded at `start`."""

    def __init__(self, samples, rate, start):
        self._samples = samples
        self.rate = rate
        self.start = start

    @classmethod
    def load(cls, path, start):
        """A recording that was saved as WAV."""
        return cls(*clips.read_wave(path), start)

    @property
    def end(self):
        """The instant up to which there are samples."""
        return self.start + len(self._samples) / self.rate

    def samples(self, begin=-math.inf, end=math.inf):
        """The samples between two instants, at full scale 1."""
        first, last = (round(min(max((at - self.start) * self.rate, 0), len(self._samples)))
                       for at in (begin, end))
        return self._samples[first:last]

    def level(self, begin, end):
        """Root mean square between two instants, in dBFS."""
        return _level(self.samples(begin, end))

    def loud_windows(self, begin, end, threshold=SILENCE):
        """The instants at which windows of WINDOW seconds above `threshold` dBFS begin."""
        samples = self.samples(begin, end)
        size = round(WINDOW * self.rate)
        return [begin + i / self.rate for i in range(0, len(samples) - size + 1, size)
                if _level(samples[i:i + size]) > threshold]

    def loud_time(self, begin, end, threshold=SILENCE):
        """How many seconds of that time are above `threshold` dBFS."""
        return len(self.loud_windows(begin, end, threshold)) * WINDOW

    def last_sound(self, begin, end, threshold=SILENCE):
        """When the last window above `threshold` dBFS in that time ended; None if there is none."""
        loud = self.loud_windows(begin, end, threshold)
        return loud[-1] + WINDOW if loud else None

    def save(self, path, begin=-math.inf, end=math.inf):
        """Writes the sound between two instants as WAV."""
        samples = numpy.round(self.samples(begin, end) * 32768).astype("<i2")
        with wave.open(str(path), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(2)
            file.setframerate(self.rate)
            file.writeframes(samples.tobytes())


class LiveRecording(Recording):
    """A recording in progress: mono 16-bit samples from a pipe, timed within some 40 ms."""

    def __init__(self, pipe, rate):
        self._pipe = pipe
        self._lock = threading.Lock()
        # `start` is estimated from the block that came with the least delay. The server mixes a
        # block of 20 ms ahead of its time, so the estimate is early rather than late.
        super().__init__(bytearray(), rate, math.inf)
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        while block := self._pipe.read1(65536):
            now = time.monotonic()
            with self._lock:
                self._samples += block
                self.start = min(self.start, now - len(self._samples) / 2 / self.rate)

    def wait_for_start(self):
        """Waits for the first samples, which may be silence; the server takes 2 s to send them."""
        wait_until(lambda: self.end > -math.inf, "the recorder's first samples")

    @property
    def end(self):
        """The instant up to which samples have been received."""
        with self._lock:
            if not self._samples:
                return -math.inf
            return self.start + len(self._samples) / 2 / self.rate

    def samples(self, begin=-math.inf, end=math.inf):
        """The samples between two instants; waits until `end` has been recorded.

        Raises ValueError if the recording began after `begin`.
        """
        if -math.inf < begin < self.start:
            raise ValueError("asked for the time before the recording")
        if end < math.inf:
            wait_until(lambda: self.end >= end, "the recorder to catch up",
                       max(0.0, end - time.monotonic()) + 5.0)
        with self._lock:
            if not self._samples:
                return numpy.zeros(0)
            first, last = (2 * round(min(max((at - self.start) * self.rate, 0),
                                         len(self._samples) // 2)) for at in (begin, end))
            data = bytes(self._samples[first:last])
        return numpy.frombuffer(data, dtype="<i2").astype(float) / 32768

    def wait_for_sound(self, since, timeout=5.0, threshold=-50.0):
        """Waits for a window above `threshold` dBFS after `since`; returns when it began."""
        return wait_until(lambda: self.loud_windows(since, self.end, threshold),
                          f"sound within {timeout:g} s", timeout)[0]


def _level(samples):
    power = float(numpy.mean(numpy.square(samples))) if len(samples) else 0.0
    return 10 * math.log10(power) if power > 0 else -math.inf
