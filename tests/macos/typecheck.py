#!/usr/bin/python3
"""Type-checks platform/macos against the declarations in tests/macos/frameworks.

Usage: typecheck.py [FILE ...]; without a FILE every file of platform/macos. Prints the problems;
the status is 1 if there are any.
"""

import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DECLARATIONS = ROOT / "tests/macos/frameworks"

LANGUAGE = ["-x", "objective-c++", "-std=c++20", "-fobjc-arc", "-fblocks",
            "-fobjc-runtime=macosx-13.0", "-fsyntax-only"]
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow",
            "-Wnullable-to-nonnull-conversion", "-Wunguarded-availability", "-Werror"]
INCLUDES = ["-I", str(ROOT), "-I", str(DECLARATIONS)]


def sources():
    folder = ROOT / "platform/macos"
    return sorted([*folder.glob("*.mm"), *folder.glob("*.cpp")])


def system_includes(language):
    """Where this machine's own compiler finds the standard library."""
    done = subprocess.run(["clang++", "-E", "-v", "-x", language, os.devnull], check=True,
                          capture_output=True, text=True)
    listing = done.stderr.split("#include <...> search starts here:")[1]
    return [line.strip() for line in listing.split("End of search list")[0].splitlines()
            if line.strip()]


def targets():
    """Options for each target that the files are compiled for: this machine, and a Mac.

    Availability is checked for a Mac only. That target gets this machine's standard library, which
    needs _GNU_SOURCE and defines __nonnull as a macro.
    """
    mac = ["-target", "x86_64-apple-macosx13.0", "-D_GNU_SOURCE", "-U__nonnull", "-nostdinc++"]
    for folder in system_includes("c++"):
        mac += ["-isystem", folder]
    return {"this machine": [], "macOS 13": mac}


def problems(source, options):
    done = subprocess.run(["clang++", *LANGUAGE, *WARNINGS, *options, *INCLUDES, str(source)],
                          cwd=ROOT, capture_output=True, text=True)
    if done.returncode == 0 and not done.stderr:
        return ""
    return done.stderr or f"clang++ ended with status {done.returncode}"


def main():
    files = [Path(name) for name in sys.argv[1:]] or sources()
    jobs = [(file, target, options) for target, options in targets().items() for file in files]
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        found = list(pool.map(lambda job: problems(job[0], job[2]), jobs))
    for (file, target, _), text in zip(jobs, found):
        if text:
            print(f"{file.relative_to(ROOT)}, compiled for {target}:\n{text}")
    print(f"{len(jobs)} compilations, {sum(1 for text in found if text)} with problems")
    return 1 if any(found) or not jobs else 0


if __name__ == "__main__":
    sys.exit(main())
