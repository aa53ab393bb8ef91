"""Sound files: what is in one, and ones of our own."""

import pathlib
import subprocess
import tempfile
import wave

import numpy

RATE = 44100


def decode(path):
    """The samples of an MP3, mono at full scale 1, and their rate."""
    with tempfile.TemporaryDirectory() as scratch:
        decoded = pathlib.Path(scratch, "clip.wav")
        subprocess.run(["lame", "--quiet", "--decode", path, decoded], check=True, timeout=60)
        with wave.open(str(decoded), "rb") as file:
            data = numpy.frombuffer(file.readframes(file.getnframes()), dtype="<i2")
            return data.reshape(-1, file.getnchannels()).mean(axis=1) / 32768, file.getframerate()


def length(path):
    """How long an MP3 is, in seconds, within the 0.05 s by which decoders differ."""
    samples, rate = decode(path)
    return len(samples) / rate


def write_silence(path, seconds):
    """Writes an MP3 in which nothing is to be heard."""
    with tempfile.TemporaryDirectory() as scratch:
        plain = pathlib.Path(scratch, "silence.wav")
        with wave.open(str(plain), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(2)
            file.setframerate(RATE)
            file.writeframes(bytes(2 * round(seconds * RATE)))
        subprocess.run(["lame", "--quiet", plain, path], check=True, timeout=60)


class Loop:
    """A clip that is played over and over, to be found again in what was recorded at `rate`."""

    def __init__(self, path, rate):
        samples, own_rate = decode(path)
        self._rate = rate
        self.period = round(len(samples) * rate / own_rate)
        """How many recorded samples a round takes."""
        times = numpy.arange(2 * self.period) * own_rate / rate % len(samples)
        self._twice = self._low_pass(
            numpy.interp(times, numpy.arange(len(samples) + 1), [*samples, samples[0]]))

    def _low_pass(self, samples, cutoff=4000.0):
        # Two resamplers agree on what is well below the highest frequencies, and only on that.
        spectrum = numpy.fft.rfft(samples)
        spectrum[int(cutoff * len(samples) / self._rate):] = 0
        return numpy.fft.irfft(spectrum, len(samples))

    def locate(self, excerpt):
        """At which of the recorded samples of a round `excerpt` begins, and how alike they are.

        The likeness is the correlation coefficient, 1 for the same sound at any volume.
        """
        excerpt = self._low_pass(excerpt)
        size = 1 << (len(self._twice) + len(excerpt)).bit_length()
        products = numpy.fft.irfft(
            numpy.fft.rfft(self._twice, size) * numpy.fft.rfft(excerpt, size).conj(),
            size)[:self.period]
        energy = numpy.cumsum(numpy.concatenate(([0.0], numpy.square(self._twice))))
        local = energy[len(excerpt):len(excerpt) + self.period] - energy[:self.period]
        scale = numpy.sqrt(local * float(excerpt @ excerpt))
        likeness = products / numpy.maximum(scale, 1e-9)
        best = int(numpy.argmax(likeness))
        return best, float(likeness[best])
