"""Judging a recording: when it sounds, and which part of a clip it is."""

import math
import subprocess
import wave

import numpy

WINDOW = 0.01
"""Seconds over which a level is taken."""

SILENCE = -70.0
"""dBFS below which nothing is being played: the loopback adds no noise of its own."""


def _read_wave(path):
    with wave.open(str(path), "rb") as file:
        data = numpy.frombuffer(file.readframes(file.getnframes()), dtype="<i2")
        frames = data.reshape(-1, file.getnchannels()).astype(float).mean(axis=1) / 32768
        return frames, file.getframerate()


def _level(samples):
    power = float(numpy.mean(numpy.square(samples))) if len(samples) else 0.0
    return 10 * math.log10(power) if power > 0 else -math.inf


def _low_pass(samples, rate, cutoff=4000.0):
    # Two resamplers agree on what is well below the highest frequencies, and only on that.
    spectrum = numpy.fft.rfft(samples)
    spectrum[int(cutoff * len(samples) / rate):] = 0
    return numpy.fft.irfft(spectrum, len(samples))


class Recording:
    """A WAV file whose first sample sounded at `start`."""

    def __init__(self, path, start):
        self._samples, self.rate = _read_wave(path)
        self.start = start
        self.end = start + len(self._samples) / self.rate

    def between(self, begin, end):
        """The samples between two instants."""
        first, last = (round((at - self.start) * self.rate) for at in (begin, end))
        return self._samples[max(first, 0):max(last, 0)]

    def level(self, begin, end):
        """Root mean square between two instants, in dBFS."""
        return _level(self.between(begin, end))

    def loud_windows(self, begin, end, threshold=SILENCE):
        """The instants at which windows above `threshold` dBFS begin."""
        size = round(WINDOW * self.rate)
        samples = self.between(begin, end)
        return [begin + i / self.rate for i in range(0, len(samples) - size + 1, size)
                if _level(samples[i:i + size]) > threshold]


class Clip:
    """A sound file of the program's, to be found again in a recording."""

    # An excerpt may begin with a little silence.
    MARGIN = 0.05

    def __init__(self, path, rate, scratch):
        decoded = scratch / "clip.wav"
        subprocess.run(["lame", "--quiet", "--decode", str(path), str(decoded)], check=True,
                       timeout=60)
        samples, own_rate = _read_wave(decoded)
        times = numpy.arange(-self.MARGIN, len(samples) / own_rate, 1 / rate)
        self._samples = _low_pass(
            numpy.interp(times, numpy.arange(len(samples)) / own_rate, samples, 0, 0), rate)
        self._rate = rate

    def locate(self, excerpt):
        """Where in the clip `excerpt` is: seconds from the start, and how alike the two are.

        The likeness is the correlation coefficient, 1 for the same sound at any volume.
        """
        excerpt = _low_pass(excerpt, self._rate)
        size = 1 << (len(self._samples) + len(excerpt)).bit_length()
        spectrum = numpy.fft.rfft(self._samples, size) * numpy.fft.rfft(excerpt, size).conj()
        count = len(self._samples) - len(excerpt) + 1
        products = numpy.fft.irfft(spectrum, size)[:count]
        energy = numpy.cumsum(numpy.concatenate(([0.0], numpy.square(self._samples))))
        local = energy[len(excerpt):len(excerpt) + count] - energy[:count]
        scale = numpy.sqrt(local * float(numpy.sum(numpy.square(excerpt))))
        likeness = numpy.where(scale > 1e-9, products / numpy.maximum(scale, 1e-9), 0.0)
        best = int(numpy.argmax(likeness))
        return best / self._rate - self.MARGIN, float(likeness[best])
