"""A running recording, and how loud it was when."""

import math
import threading
import time
import wave

import numpy

from .waiting import wait_until

SILENCE = -70.0
"""dBFS below which nothing is being played: a null sink adds no noise of its own."""


class Recording:
    """Mono 16-bit samples from a pipe, on the clock of time.monotonic(), within some 40 ms."""

    def __init__(self, pipe, rate):
        self._pipe = pipe
        self._rate = rate
        self._lock = threading.Lock()
        self._samples = bytearray()
        # When the first sample sounded, by the block that came with the least delay. The server
        # mixes a block of 20 ms ahead of its time, so this is early rather than late.
        self._start = math.inf
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        while True:
            block = self._pipe.read1(65536)
            if not block:
                return
            now = time.monotonic()
            with self._lock:
                self._samples += block
                self._start = min(self._start, now - len(self._samples) / 2 / self._rate)

    def wait_for_start(self):
        """Waits until sound arrives, be it silence; the server takes 2 s to its first block."""
        wait_until(lambda: self.end > -math.inf, "the recorder's first samples")

    @property
    def end(self):
        """The instant up to which sound has been received."""
        with self._lock:
            if not self._samples:
                return -math.inf
            return self._start + len(self._samples) / 2 / self._rate

    def samples(self, begin=-math.inf, end=math.inf):
        """The samples between two instants, at full scale 1."""
        with self._lock:
            count = len(self._samples) // 2
            if not count:
                return numpy.zeros(0)
            first = round(min(max((begin - self._start) * self._rate, 0), count))
            last = round(min(max((end - self._start) * self._rate, 0), count))
            data = bytes(self._samples[first * 2:last * 2])
        return numpy.frombuffer(data, dtype="<i2").astype(float) / 32768

    def level(self, begin, end):
        """Root mean square between two instants, in dBFS; waits until that time has been."""
        self._wait_until_recorded(begin, end)
        return _level(self.samples(begin, end))

    def _wait_until_recorded(self, begin, end):
        if begin < self._start:
            raise ValueError("asked for the time before the recording")
        patience = max(0.0, end - time.monotonic()) + 5.0
        wait_until(lambda: self.end >= end, "the recorder to catch up", patience)

    def levels(self, begin, end, window=0.02):
        """Pairs of the instant at which a window of `window` seconds begins, and its level."""
        self._wait_until_recorded(begin, end)
        samples = self.samples(begin, end)
        size = int(window * self._rate)
        return [(begin + i / self._rate, _level(samples[i:i + size]))
                for i in range(0, len(samples) - size + 1, size)]

    def wait_for_sound(self, since, timeout=5.0, threshold=-50.0):
        """Waits for a window above `threshold` dBFS after `since`; returns when it began."""
        def first_loud():
            now = self.end
            loud = [at for at, level in self.levels(since, now) if level > threshold]
            return loud[0] if loud else None
        return wait_until(first_loud, f"sound within {timeout:g} s", timeout)

    def last_sound(self, begin, end, threshold=SILENCE):
        """When the last window above `threshold` between two instants ended; None if all quiet."""
        loud = [at for at, level in self.levels(begin, end) if level > threshold]
        return loud[-1] + 0.02 if loud else None

    def save(self, path, begin=-math.inf, end=math.inf):
        """Writes the sound between two instants as WAV."""
        samples = numpy.round(self.samples(begin, end) * 32768).astype("<i2")
        with wave.open(str(path), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(2)
            file.setframerate(self._rate)
            file.writeframes(samples.tobytes())


def _level(samples):
    if len(samples) == 0:
        return -math.inf
    power = float(numpy.mean(numpy.square(samples)))
    return 10 * math.log10(power) if power > 0 else -math.inf
