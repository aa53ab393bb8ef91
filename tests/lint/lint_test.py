#!/usr/bin/python3
"""The lints themselves: what they must find, and what they must leave alone."""

import unittest

import lint


class Includes(unittest.TestCase):
    def problem(self, name, line):
        quote = line[0]
        return lint.include_problems(name, quote, line.strip('"<>'))

    def test_downwards_is_fine(self):
        self.assertIsNone(self.problem("app/ContentView.cpp", '"effects/creak/AudioManager.h"'))
        self.assertIsNone(self.problem("sensing/LidAngleSensor.h", '"platform/HID.h"'))
        self.assertIsNone(self.problem("base/Format.cpp", "<charconv>"))
        self.assertIsNone(self.problem("platform/linux/LinuxRunLoop.cpp", "<QSocketNotifier>"))
        self.assertIsNone(self.problem("app/main.cpp", '"platform/linux/LinuxPlatform.h"'))

    def test_upwards_and_sideways_is_not(self):
        self.assertIn("up the house", self.problem("base/Format.h", '"platform/HID.h"'))
        self.assertIn("up the house", self.problem("effects/creak/A.h", '"sensing/B.h"'))
        self.assertIn("up the house", self.problem("platform/linux/A.cpp", '"app/B.h"'))
        self.assertIn("another effect", self.problem("effects/creak/A.h", '"effects/fan/B.h"'))

    def test_the_logic_knows_no_toolkit_no_system_and_no_backend(self):
        self.assertIn("includes <QObject>", self.problem("app/ContentView.h", "<QObject>"))
        self.assertIn("includes <unistd.h>", self.problem("sensing/A.cpp", "<unistd.h>"))
        self.assertIn("platform/linux", self.problem("app/A.cpp", '"platform/linux/B.h"'))

    def test_includes_go_by_the_path_from_the_root(self):
        self.assertIn("by its path", self.problem("app/screens/A.cpp", '"A.h"'))


class Clocks(unittest.TestCase):
    def found(self, code):
        return bool(lint.CLOCKS.search(lint.without_comments(code)))

    def test_clocks_and_chance_are_found(self):
        for code in ("auto t = std::chrono::steady_clock::now();", "QElapsedTimer timer;",
                     "clock_gettime(CLOCK_MONOTONIC, &t);", "std::random_device{}()",
                     "std::mt19937 engine(1);", "x = Math.random()", "int n = rand();",
                     "QRandomGenerator::global()", "var d = new Date()"):
            with self.subTest(code):
                self.assertTrue(self.found(code))

    def test_words_that_only_look_alike_are_not(self):
        for code in ("random.uniform(bound);", "// steady_clock::now()", "/* rand() */",
                     "Random& random", "platform.random.uniform(1)", "double currentMediaTime() const;"):
            with self.subTest(code):
                self.assertFalse(self.found(code))


if __name__ == "__main__":
    unittest.main()
