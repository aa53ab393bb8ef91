#!/usr/bin/python3
"""The macOS bundle, as far as it can be tested without a Mac."""

import plistlib
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
RESOURCES = ROOT / "resources"
BUNDLE = (ROOT / "app/MacBundle.cmake").read_text()

# The two parts of the build that are for macOS only, with an empty program.
PROJECT = f"""
cmake_minimum_required(VERSION 3.25)
project(Quorvane VERSION 1.2.3 LANGUAGES CXX)
add_library(quorvane_platform INTERFACE)
add_subdirectory({ROOT}/platform/macos macos)
add_executable(quorvane main.cpp)
include({ROOT}/app/MacBundle.cmake)
"""
SETTINGS = {
    "CMAKE_SYSTEM_NAME": "Darwin",
    "CMAKE_CXX_COMPILER": "/usr/bin/clang++",
    "CMAKE_OBJCXX_COMPILER": "/usr/bin/clang++",
    "CMAKE_CXX_COMPILER_WORKS": "ON",
    "CMAKE_OBJCXX_COMPILER_WORKS": "ON",
    "CMAKE_INSTALL_NAME_TOOL": "/bin/true",
    "QUORVANE_MACDEPLOYQT": "/opt/tools/macdeployqt",
    "QUORVANE_RSVG_CONVERT": "/opt/tools/rsvg-convert",
}


def configured(folder, **settings):
    """The build folder of that project, configured as on a Mac."""
    (folder / "CMakeLists.txt").write_text(PROJECT)
    (folder / "main.cpp").write_text("int main() {}\n")
    (folder / "resources").symlink_to(RESOURCES)
    options = [f"-D{name}={value}" for name, value in {**SETTINGS, **settings}.items()]
    subprocess.run(["cmake", "-S", folder, "-B", folder / "build", "-G", "Ninja", *options],
                   check=True, capture_output=True, text=True)
    return folder / "build"


FOLDER = tempfile.TemporaryDirectory()


def setUpModule():
    configured(Path(FOLDER.name))


def tearDownModule():
    FOLDER.cleanup()


class Build(unittest.TestCase):
    def setUp(self):
        self.build = Path(FOLDER.name) / "build"
        self.commands = (self.build / "build.ninja").read_text()
        self.installing = (self.build / "cmake_install.cmake").read_text()

    def test_every_icon_is_drawn_at_its_size(self):
        drawn = re.findall(r"--width (\d+) --height (\d+) --output \S+/Quorvane.iconset/(\S+)",
                           self.commands)
        expected = {(size * scale, f"icon_{size}x{size}{'@2x' * (scale - 1)}.png")
                    for size in (16, 32, 128, 256, 512) for scale in (1, 2)}
        self.assertEqual({(int(width), name) for width, _, name in drawn}, expected)
        self.assertTrue(all(width == height for width, height, _ in drawn))
        self.assertRegex(self.commands, r"iconutil --convert icns --output \S+/Quorvane.icns")

    def test_the_native_side_is_compiled_with_arc(self):
        objects = re.findall(r"^build \S+\.mm\.o: OBJCXX_COMPILER.*?(?=^build )", self.commands,
                             re.M | re.S)
        self.assertTrue(objects)
        for each in objects:
            self.assertIn("-fobjc-arc", each)

    def test_the_resources_and_the_icon_go_into_the_bundle(self):
        for name in ("creaking.mp3", "fanmac.mp3", "keyboard.mp3", "tractor.mp3", "logo.png",
                     "Quorvane.icns"):
            self.assertIn(f"Quorvane.app/Contents/Resources/{name}", self.commands)

    def test_installing_completes_the_bundle_and_signs_it_last(self):
        deploy = self.installing.index('"/opt/tools/macdeployqt" "${bundle}"')
        sign = self.installing.index("codesign --force --options runtime --timestamp=none")
        self.assertLess(deploy, sign)
        self.assertIn('"$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/Quorvane.app"', self.installing)
        self.assertIn('--sign "-" "${bundle}"', self.installing)

    def test_the_package_is_a_disk_image(self):
        self.assertIn('set(CPACK_GENERATOR "DragNDrop")',
                      (self.build / "CPackConfig.cmake").read_text())

    def test_an_identity_signs_for_notarisation(self):
        with tempfile.TemporaryDirectory() as folder:
            build = configured(Path(folder), QUORVANE_SIGNING_IDENTITY="Developer ID: A B (C)")
            installing = (build / "cmake_install.cmake").read_text()
        self.assertIn('"-sign-for-notarization=Developer ID: A B (C)"', installing)
        self.assertIn("--options runtime --timestamp\n", installing)
        self.assertIn('--sign "Developer ID: A B (C)" "${bundle}"', installing)


class InfoPropertyList(unittest.TestCase):
    def setUp(self):
        file = Path(FOLDER.name) / "build/Quorvane.app/Contents/Info.plist"
        self.info = plistlib.loads(file.read_bytes())

    def test_every_value_is_filled_in(self):
        for key, value in self.info.items():
            with self.subTest(key):
                self.assertTrue(value)
                self.assertNotIn("$", str(value))

    def test_it_names_and_identifies_the_program(self):
        self.assertEqual(self.info["CFBundleName"], "Quorvane")
        self.assertEqual(self.info["CFBundleExecutable"], "Quorvane")
        self.assertRegex(self.info["CFBundleIdentifier"], r"^[A-Za-z0-9-]+(\.[A-Za-z0-9-]+)+$")
        self.assertRegex(self.info["CFBundleShortVersionString"], r"^\d+\.\d+\.\d+$")
        self.assertEqual(self.info["CFBundleVersion"], self.info["CFBundleShortVersionString"])
        self.assertEqual(self.info["CFBundlePackageType"], "APPL")
        self.assertTrue(self.info["LSApplicationCategoryType"].startswith("public.app-category."))

    def test_it_runs_from_macos_13_on_in_high_resolution_and_in_the_dock(self):
        self.assertEqual(self.info["LSMinimumSystemVersion"], "13.0")
        self.assertIs(self.info["NSHighResolutionCapable"], True)
        self.assertNotIn("LSUIElement", self.info)

    def test_the_deployment_target_is_the_same_system(self):
        build = (ROOT / "CMakeLists.txt").read_text()
        oldest = re.search(r"CMAKE_OSX_DEPLOYMENT_TARGET (\S+) CACHE", build).group(1)
        self.assertEqual(oldest, self.info["LSMinimumSystemVersion"])
        self.assertLess(build.index("CMAKE_OSX_DEPLOYMENT_TARGET"), build.index("project("))


class Entitlements(unittest.TestCase):
    def test_jit_is_the_only_one_and_the_sandbox_is_off(self):
        entitlements = plistlib.loads((RESOURCES / "macos/Quorvane.entitlements").read_bytes())
        # A sandbox forbids event taps; other entitlements would weaken the hardened runtime.
        self.assertEqual(entitlements, {"com.apple.security.cs.allow-jit": True})


class Sources(unittest.TestCase):
    def test_every_file_of_the_native_side_is_built(self):
        folder = ROOT / "platform/macos"
        there = {file.name for file in folder.iterdir() if file.suffix in (".mm", ".cpp")}
        named = re.findall(r"\b\w+\.(?:mm|cpp)\b", (folder / "CMakeLists.txt").read_text())
        self.assertEqual(sorted(named), sorted(there))

    def test_every_framework_that_is_used_is_linked(self):
        declared = ROOT / "tests/macos/frameworks"
        frameworks = {folder.name for folder in declared.iterdir() if folder.is_dir()}
        # Parts of the C library, not frameworks; CoreGraphics comes with ApplicationServices.
        frameworks -= {"dispatch", "sys", "CoreGraphics"}
        linked = re.findall(r"-framework (\w+)",
                            (ROOT / "platform/macos/CMakeLists.txt").read_text())
        self.assertEqual(set(linked), frameworks)

    def test_every_resource_that_the_program_asks_for_is_in_the_bundle(self):
        bundled = set(re.findall(r"\$\{resources\}/(\w+\.(?:mp3|png))", BUNDLE))
        there = {file.name for file in RESOURCES.iterdir() if file.suffix in (".mp3", ".png")}
        self.assertEqual(bundled, there)


if __name__ == "__main__":
    unittest.main()
