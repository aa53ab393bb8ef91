#!/usr/bin/python3
"""What the type-check finds, and that correct code compiles."""

import tempfile
import unittest
from pathlib import Path

import typecheck

TARGETS = typecheck.targets()
HERE = TARGETS["this machine"]
MAC = TARGETS["macOS 13"]


def problems(code, options):
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder) / "Sample.mm"
        source.write_text("#import <AppKit/AppKit.h>\n" + code)
        return typecheck.problems(source, options)


class TypeCheck(unittest.TestCase):
    def assert_found(self, expected, code, options):
        self.assertIn(expected, problems(code, options))

    def test_correct_code_compiles(self):
        code = "void f() { [NSScreen.mainScreen frame]; }"
        self.assertEqual(problems(code, HERE), "")
        self.assertEqual(problems(code, MAC), "")

    def test_an_undeclared_selector_is_found(self):
        for options in (HERE, MAC):
            self.assert_found("no visible @interface", "void f(NSView* v) { [v shimmer]; }", options)

    def test_a_value_of_the_wrong_type_is_found(self):
        code = "void f(NSPanel* p) { p.backgroundColor = @\"blue\"; }"
        for options in (HERE, MAC):
            self.assert_found("incompatible pointer types", code, options)

    def test_a_nullable_value_where_null_is_not_allowed_is_found(self):
        code = "void f(NSFont* n) { NSString* _Nonnull s = n.familyName; (void)s; }"
        for options in (HERE, MAC):
            self.assert_found("nullable pointer", code, options)

    def test_a_missing_method_is_found(self):
        code = """
        @interface Performer : NSObject <NSHapticFeedbackPerformer>
        @end
        @implementation Performer
        @end"""
        for options in (HERE, MAC):
            self.assert_found("not implemented", code, options)

    def test_an_api_newer_than_the_oldest_system_is_found(self):
        code = """
        void newer(void) __attribute__((availability(macos, introduced = 14.0)));
        void f() { newer(); }"""
        self.assert_found("only available on macOS 14.0", code, MAC)

    def test_code_is_compiled_with_arc(self):
        for options in (HERE, MAC):
            self.assert_found("requires a bridged cast", "void* f(NSView* v) { return (void*)v; }", options)

    def test_every_declaration_names_its_framework(self):
        headers = sorted(typecheck.DECLARATIONS.glob("*/**/*.h"))
        self.assertTrue(headers)
        for header in headers:
            with self.subTest(header.name):
                self.assertRegex(header.read_text(), r"// (The C library|The Objective-C runtime"
                                                     r"|libdispatch|Framework: )")


if __name__ == "__main__":
    unittest.main()
