"""Reading, comparing and writing pictures."""

import subprocess

import numpy


def pixels(path, channels="rgb"):
    """A PNG's pixels as an array of bytes: height x width x channels."""
    size = subprocess.run(["identify", "-format", "%w %h", path], check=True, capture_output=True,
                          text=True).stdout.split()
    width, height = map(int, size)
    raw = subprocess.run(
        ["stream", "-map", channels, "-storage-type", "char", path, "-"], check=True,
        capture_output=True).stdout
    return numpy.frombuffer(raw, dtype=numpy.uint8).reshape(height, width, len(channels))


def change(before, after):
    """The share of pixels that differ at all between two pictures of one size."""
    return float((before != after).any(axis=2).mean())


def detail(path):
    """How much is drawn: the share of pixels that differ clearly from their right neighbour.

    An empty window, or one with nothing but its vertical gradient, has none; a screen of text and
    buttons has some hundredths.
    """
    steps = numpy.abs(numpy.diff(pixels(path).astype(int), axis=1)).max(axis=2)
    return float((steps > 24).mean())


def near(seen, wanted, tolerance=4):
    """Whether colours are the same within `tolerance`: a bool for each pixel."""
    return (numpy.abs(numpy.asarray(seen).astype(int) - wanted) <= tolerance).all(axis=-1)


def save(seen, path):
    """Writes pixels as PNG."""
    height, width, _ = seen.shape
    subprocess.run(["convert", "-size", f"{width}x{height}", "-depth", "8", "rgb:-",
                    f"png:{path}"], input=seen.tobytes(), check=True, timeout=20)
