#!/usr/bin/python3
"""The drawings share one style, and the logo is up to date."""

import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import numpy

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))

from virtual_desktop.pictures import pixels  # noqa: E402 (found through the line above)

RESOURCES = ROOT / "resources"
SVG = "{http://www.w3.org/2000/svg}"

SYMBOLS = {
    "door.left.hand.open", "exclamationmark.triangle", "fan", "info.circle", "keyboard", "power",
    "snowflake",
}

STATIC_DRAWING = {"svg", "title", "defs", "g", "linearGradient", "stop", "path", "rect", "circle"}
"""The elements of SVG Tiny 1.2 that the drawings may use; text would need a font."""


def symbol(name):
    return RESOURCES / "symbols" / f"{name}.svg"


def elements(path):
    """The drawing's elements, each with its name without the namespace."""
    return [(element.tag.removeprefix(SVG), element)
            for element in ElementTree.parse(path).getroot().iter()
            if isinstance(element.tag, str)]


def drawn(path, width):
    """The drawing's pixels at a width."""
    with tempfile.NamedTemporaryFile(suffix=".png") as picture:
        subprocess.run(["rsvg-convert", "--width", str(width), "--output", picture.name, path],
                       check=True)
        return pixels(picture.name, "rgba")


class Symbols(unittest.TestCase):
    def test_there_is_one_for_each_name_and_no_other(self):
        names = {path.name.removesuffix(".svg") for path in (RESOURCES / "symbols").iterdir()}
        self.assertEqual(names, SYMBOLS)

    def test_each_has_lines_of_one_weight_with_round_ends_and_joins(self):
        for name in SYMBOLS:
            lines = [element for _, element in elements(symbol(name)) if "stroke" in element.attrib]
            self.assertTrue(lines, name)
            for line in lines:
                kind = [line.get(f"stroke{what}") for what in ("-width", "-linecap", "-linejoin")]
                self.assertEqual(kind, ["2", "round", "round"], name)

    def test_each_is_drawn_in_white_only(self):
        for name in SYMBOLS:
            colours = {element.get(what) for _, element in elements(symbol(name))
                       for what in ("fill", "stroke")} - {None, "none"}
            self.assertEqual(colours, {"#ffffff"}, name)

    def test_each_is_about_as_big_as_the_others_and_not_cut_off(self):
        # At four pixels a unit; nothing may touch the edge.
        for name in SYMBOLS:
            opacity = drawn(symbol(name), 96)[:, :, 3]
            self.assertEqual(opacity.shape, (96, 96), name)
            rows, columns = (numpy.flatnonzero(opacity.max(axis=axis) > 127) for axis in (1, 0))
            height, width = (found[-1] - found[0] + 1 for found in (rows, columns))
            self.assertGreaterEqual(max(width, height), 78, name)
            self.assertGreaterEqual(min(width, height), 60, name)
            edge = numpy.concatenate([opacity[0], opacity[-1], opacity[:, 0], opacity[:, -1]])
            self.assertLess(edge.max(), 128, name)


class Drawings(unittest.TestCase):
    def test_each_has_only_elements_that_qt_can_draw(self):
        files = [symbol(name) for name in SYMBOLS] + [RESOURCES / "logo.svg",
                                                      RESOURCES / "icon.svg"]
        for path in files:
            self.assertLessEqual({name for name, _ in elements(path)}, STATIC_DRAWING, path.name)

    def test_logo_is_large_with_a_transparent_background(self):
        logo = pixels(RESOURCES / "logo.png", "rgba")
        height, width, _ = logo.shape
        self.assertGreaterEqual(width, 1024)
        corners = logo[[0, 0, -1, -1], [0, -1, 0, -1], 3]
        self.assertEqual(corners.tolist(), [0, 0, 0, 0])
        self.assertGreater((logo[:, :, 3] > 127).mean(), 0.3)

    def test_logo_png_shows_logo_svg(self):
        logo = pixels(RESOURCES / "logo.png", "rgba").astype(int)
        redrawn = drawn(RESOURCES / "logo.svg", logo.shape[1]).astype(int)
        self.assertEqual(logo.shape, redrawn.shape)
        # Another version of rsvg-convert may antialias differently.
        different = (numpy.abs(logo - redrawn).max(axis=2) > 32).mean()
        self.assertLess(different, 0.001)

    def test_icon_is_square_with_an_opaque_background(self):
        icon = drawn(RESOURCES / "icon.svg", 256)
        self.assertEqual(icon.shape[:2], (256, 256))
        self.assertEqual(icon[0, 0, 3], 0)
        self.assertEqual(icon[40:216, 40:216, 3].min(), 255)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "--verbose"])
