#!/usr/bin/python3
"""What lint.py finds and what it accepts."""

import unittest

import lint


class Includes(unittest.TestCase):
    def problem(self, name, line):
        quote = line[0]
        return lint.include_problems(name, quote, line.strip('"<>'))

    def test_includes_downwards_are_accepted(self):
        self.assertIsNone(self.problem("app/ContentView.cpp", '"effects/creak/AudioManager.h"'))
        self.assertIsNone(self.problem("sensing/LidAngleSensor.h", '"platform/HID.h"'))
        self.assertIsNone(self.problem("base/Format.cpp", "<charconv>"))
        self.assertIsNone(self.problem("platform/linux/system/LinuxRunLoop.cpp", "<QSocketNotifier>"))
        self.assertIsNone(self.problem("app/main.cpp", '"platform/linux/LinuxPlatform.h"'))
        self.assertIsNone(
            self.problem("platform/linux/hid/A.cpp", '"platform/linux/common/SysfsText.h"'))
        self.assertIsNone(
            self.problem("platform/linux/LinuxPlatform.h", '"platform/linux/hid/LinuxHID.h"'))

    def test_includes_upwards_and_sideways_are_problems(self):
        self.assertIn("a floor above", self.problem("base/Format.h", '"platform/HID.h"'))
        self.assertIn("a floor above", self.problem("effects/creak/A.h", '"sensing/B.h"'))
        self.assertIn("a floor above", self.problem("platform/linux/A.cpp", '"app/B.h"'))
        self.assertIn("another effect", self.problem("effects/creak/A.h", '"effects/fan/B.h"'))
        self.assertIn("another service",
                      self.problem("platform/linux/hid/A.h", '"platform/linux/haptics/B.h"'))

    def test_the_logic_includes_no_qt_no_system_header_and_no_platform(self):
        self.assertIn("includes <QObject>", self.problem("app/ContentView.h", "<QObject>"))
        self.assertIn("includes <unistd.h>", self.problem("sensing/A.cpp", "<unistd.h>"))
        self.assertIn("platform/linux", self.problem("app/A.cpp", '"platform/linux/B.h"'))

    def test_an_include_without_the_path_from_the_root_is_a_problem(self):
        self.assertIn("by its path", self.problem("app/screens/A.cpp", '"A.h"'))


class Reliability(unittest.TestCase):
    HEAD = "| fault | what the person notices | test |\n|---|---|---|\n"

    def problems(self, rows):
        return lint.reliability_problems(self.HEAD + rows, {"A.b", "C.test_d"})

    def test_rows_with_tests_are_accepted(self):
        self.assertEqual(self.problems("| `x` hangs | nothing | `A.b`, `C.test_d` |\n"), [])

    def test_rows_without_a_test_that_exists_are_problems(self):
        self.assertIn("no test:", self.problems("| `A.b` hangs | nothing | later |\n")[0])
        self.assertIn("no test A.c", self.problems("| it hangs | nothing | `A.b`, `A.c` |\n")[0])

    def test_tests_of_both_languages_are_known(self):
        tests = lint.defined_tests()
        self.assertIn("NthCallFailsTest.TheRulesHoldWhicheverCallFails", tests)
        self.assertIn("Reliability.test_tests_of_both_languages_are_known", tests)


class Clocks(unittest.TestCase):
    def found(self, code):
        return bool(lint.CLOCKS.search(lint.without_comments(code)))

    def test_clocks_and_random_sources_are_found(self):
        for code in ("auto t = std::chrono::steady_clock::now();", "QElapsedTimer timer;",
                     "clock_gettime(CLOCK_MONOTONIC, &t);", "std::random_device{}()",
                     "std::mt19937 engine(1);", "x = Math.random()", "int n = rand();",
                     "QRandomGenerator::global()", "var d = new Date()"):
            with self.subTest(code):
                self.assertTrue(self.found(code))

    def test_similar_words_are_accepted(self):
        for code in ("random.uniform(bound);", "// steady_clock::now()", "/* rand() */",
                     "Random& random", "platform.random.uniform(1)", "double currentMediaTime() const;"):
            with self.subTest(code):
                self.assertFalse(self.found(code))


class Platforms(unittest.TestCase):
    def test_only_platform_and_main_may_test_for_a_platform(self):
        for code in ("#ifdef QUORVANE_MACOS", "#if defined(__APPLE__)", "#ifndef __linux__",
                     "#if defined(Q_OS_WIN)", 'source: Qt.platform.os === "osx" ? a : b'):
            with self.subTest(code):
                self.assertEqual(len(lint.platform_problems("app/screens/A.cpp", code)), 1)
                self.assertEqual(lint.platform_problems("app/main.cpp", code), [])
                self.assertEqual(lint.platform_problems("platform/linux/A.cpp", code), [])
                self.assertEqual(lint.platform_problems("app/screens/A.cpp", f"// {code}"), [])


if __name__ == "__main__":
    unittest.main()
