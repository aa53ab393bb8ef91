"""Sound files: reading and writing them, and finding them in a recording."""

import pathlib
import subprocess
import tempfile
import wave

import numpy

RATE = 44100


def read_wave(path):
    """The samples of a 16-bit WAV, mixed to mono at full scale 1, and their rate."""
    with wave.open(str(path), "rb") as file:
        data = numpy.frombuffer(file.readframes(file.getnframes()), dtype="<i2")
        return data.reshape(-1, file.getnchannels()).mean(axis=1) / 32768, file.getframerate()


def decode(path):
    """The samples of an MP3, mono at full scale 1, and their rate."""
    with tempfile.TemporaryDirectory() as scratch:
        decoded = pathlib.Path(scratch, "clip.wav")
        subprocess.run(["lame", "--quiet", "--decode", path, decoded], check=True, timeout=60)
        return read_wave(decoded)


def length(path):
    """How long an MP3 is, in seconds, within the 0.05 s by which decoders differ."""
    samples, rate = decode(path)
    return len(samples) / rate


def write_silence(path, seconds):
    """Writes a silent MP3."""
    with tempfile.TemporaryDirectory() as scratch:
        plain = pathlib.Path(scratch, "silence.wav")
        with wave.open(str(plain), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(2)
            file.setframerate(RATE)
            file.writeframes(bytes(2 * round(seconds * RATE)))
        subprocess.run(["lame", "--quiet", plain, path], check=True, timeout=60)


def find(excerpt, samples, count):
    """The best match of `excerpt` among the first `count` places in `samples`.

    Returns the place, the correlation coefficient (1 for the same sound at any volume) and the gain
    (1 for the same volume).
    """
    size = 1 << (len(samples) + len(excerpt)).bit_length()
    products = numpy.fft.irfft(
        numpy.fft.rfft(samples, size) * numpy.fft.rfft(excerpt, size).conj(), size)[:count]
    total = numpy.cumsum(numpy.concatenate(([0.0], numpy.square(samples))))
    energy = total[len(excerpt):len(excerpt) + count] - total[:count]
    scale = numpy.sqrt(numpy.maximum(energy * float(excerpt @ excerpt), 0))
    correlation = numpy.where(scale > 1e-9, products / numpy.maximum(scale, 1e-9), 0)
    best = int(numpy.argmax(correlation))
    return best, float(correlation[best]), float(products[best] / max(energy[best], 1e-9))


def _low_pass(samples, rate, cutoff=4000.0):
    # Two resamplers agree only well below the highest frequencies.
    spectrum = numpy.fft.rfft(samples)
    spectrum[int(cutoff * len(samples) / rate):] = 0
    return numpy.fft.irfft(spectrum, len(samples))


class Clip:
    """An MP3 that is played once, to be found in what was recorded at `rate`."""

    # An excerpt may begin with a little silence.
    MARGIN = 0.05

    def __init__(self, path, rate):
        samples, own_rate = decode(path)
        times = numpy.arange(-self.MARGIN, len(samples) / own_rate, 1 / rate)
        self._samples = _low_pass(
            numpy.interp(times, numpy.arange(len(samples)) / own_rate, samples, 0, 0), rate)
        self._rate = rate

    def locate(self, excerpt):
        """At which second of the clip `excerpt` begins, and the correlation coefficient."""
        place, correlation, _ = find(_low_pass(excerpt, self._rate), self._samples,
                                     len(self._samples) - len(excerpt) + 1)
        return place / self._rate - self.MARGIN, correlation


class Loop:
    """An MP3 that is played over and over, to be found in what was recorded at `rate`."""

    def __init__(self, path, rate):
        samples, own_rate = decode(path)
        self._rate = rate
        self.period = round(len(samples) * rate / own_rate)
        """The length of a round in recorded samples."""
        times = numpy.arange(2 * self.period) * own_rate / rate % len(samples)
        self._twice = _low_pass(
            numpy.interp(times, numpy.arange(len(samples) + 1), [*samples, samples[0]]), rate)

    def locate(self, excerpt):
        """At which recorded sample of a round `excerpt` begins, and the correlation coefficient."""
        place, correlation, _ = find(_low_pass(excerpt, self._rate), self._twice, self.period)
        return place, correlation
