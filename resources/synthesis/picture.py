#!/usr/bin/python3
"""Draws a sound's waveform and spectrogram: picture.py SOUND.mp3 PICTURE.png HIGHEST-HZ WINDOW

WINDOW is the FFT's length in samples: short for resolution in time, long for frequency.
"""

import io
import subprocess
import sys
import wave

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
from PIL import Image


def decode(path):
    wav = subprocess.run(["lame", "--quiet", "--decode", path, "-"], check=True,
                         capture_output=True).stdout
    with wave.open(io.BytesIO(wav)) as sound:
        rate = sound.getframerate()
        # LAME cannot write the length into the header of a pipe: read everything there is.
        frames = sound.readframes(len(wav) // 2)
    return np.frombuffer(frames, "<i2") / 32768, rate


def draw(samples, rate, highest, window):
    figure, (above, below) = plt.subplots(
        2, 1, figsize=(10, 6), sharex=True, height_ratios=[1, 2.4], layout="constrained")
    above.plot(np.arange(len(samples)) / rate, samples, linewidth=0.4)
    above.set_ylim(-1, 1)
    # Inaudible noise, because the logarithm of silence is undefined.
    floor = 1e-7 * np.random.default_rng(0).standard_normal(len(samples))
    overlap = window * 7 // 8 if len(samples) < 4 * rate else window // 2
    below.specgram(samples + floor, NFFT=window, Fs=rate, noverlap=overlap, vmin=-130, vmax=-40,
                   cmap="magma")
    below.set_ylim(0, highest)
    below.set_xlim(0, len(samples) / rate)
    below.set_xlabel("s")
    below.set_ylabel("Hz")
    return figure


def main():
    sound, picture, highest, window = sys.argv[1:]
    figure = draw(*decode(sound), float(highest), int(window))
    pixels = io.BytesIO()
    figure.savefig(pixels, dpi=80)
    # 48 colours look the same and make the file a quarter as large.
    Image.open(pixels).convert("RGB").quantize(48).save(picture, optimize=True)


if __name__ == "__main__":
    main()
