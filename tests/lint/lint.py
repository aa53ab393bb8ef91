#!/usr/bin/python3
"""Checks the sources. Usage: lint.py BUILD_DIR [CHECK ...]; without a CHECK all of them.

Each check prints its problems and then a line with OK or FAIL and its name.
"""

import ast
import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from tidy import Tidy

ROOT = Path(__file__).resolve().parents[2]

# What each layer (a folder of the root) may include, besides itself.
FLOORS = {
    "base": (),
    "platform": ("base",),
    "sensing": ("platform", "base"),
    "effects": ("platform", "base"),
    "app": ("effects", "sensing", "platform", "base"),
}

# The logic includes the standard library and our own interfaces only.
LOGIC = re.compile(r"^(base/|sensing/|effects/|app/[^/]*$|platform/[^/]*$)")
NOT_LOGIC = {"app/main.cpp"}

STANDARD_HEADERS = set(
    """algorithm any array atomic bit bitset cassert cctype cerrno charconv chrono cmath compare
    complex concepts condition_variable cstddef cstdint cstdio cstdlib cstring ctime deque
    exception filesystem format forward_list fstream functional future initializer_list iomanip
    ios iosfwd iostream istream iterator limits list locale map memory memory_resource mutex new
    numbers numeric optional ostream queue random ranges ratio set shared_mutex source_location
    span sstream stack stdexcept stop_token streambuf string string_view system_error thread tuple
    type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector
    version""".split()
)

# Types that read a clock or random numbers, and functions that do, where they are called.
CLOCKS = re.compile(
    r"\b(system_clock|steady_clock|high_resolution_clock|QElapsedTimer|QDateTime|QTime"
    r"|QDeadlineTimer|QRandomGenerator|random_device|mt19937(_64)?|minstd_rand0?"
    r"|default_random_engine|Math\.random|Date\.now|new Date)\b"
    r"|\b(clock_gettime|gettimeofday|timespec_get|localtime|gmtime|time|clock|s?rand|random"
    r"|arc4random\w*|getrandom|getentropy)\s*\("
)

# Tests for a platform: only platform/ may have them, and the main program, which chooses one.
PLATFORM_TESTS = re.compile(r"\b(QUORVANE_MACOS|__APPLE__|__linux__|Q_OS_\w+|Qt\.platform)\b")
MAY_TEST_PLATFORM = re.compile(r"^(platform/|app/main\.cpp$)")

# Measures the sounds in resources/ and runs hardly any code of the program.
NOT_SANITIZED = {"shipped_sounds"}


def tracked(*patterns):
    """The files of the repository, with new ones that are not ignored."""
    listing = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--", *patterns],
        cwd=ROOT, check=True, capture_output=True, text=True,
    ).stdout
    return sorted({name for name in listing.split("\0") if name and (ROOT / name).exists()})


def sources():
    return tracked("*.h", "*.cpp", "*.mm")


def without_comments(text):
    """The code of a C++ or QML file, with comments blanked and lines kept."""
    blank = lambda match: re.sub(r"[^\n]", " ", match.group())
    return re.sub(r"//[^\n]*|/\*.*?\*/", blank, text, flags=re.S)


def compile_commands(build):
    commands = json.loads((build / "compile_commands.json").read_text())
    return {os.path.relpath(entry["file"], ROOT) for entry in commands}


def registered_commands(build):
    """The command lines of every test that CTest knows."""
    listing = subprocess.run(
        ["ctest", "--show-only=json-v1"], cwd=build, check=True, capture_output=True, text=True
    ).stdout
    return [test.get("command", []) for test in json.loads(listing)["tests"]]


def test_classes(path):
    """The classes of a Python file that define tests."""
    return [node.name for node in ast.parse(path.read_text()).body
            if isinstance(node, ast.ClassDef)
            and any(getattr(part, "name", "").startswith("test_") for part in node.body)]


def unsanitized(commands):
    """The test programs among the commands that tests/sanitizers/run does not name."""
    programs = {Path(command[0]).name for command in commands
                if any(word.startswith("--gtest_filter=") for word in command)}
    named = (ROOT / "tests/sanitizers/run").read_text()
    return sorted(name for name in programs - NOT_SANITIZED if f'"{name}"' not in named)


def check_sources(build):
    """Every test source is built, and every test program is run, also with the sanitizers."""
    built = compile_commands(build)
    commands = registered_commands(build)
    paths = {os.path.relpath(word, ROOT) for command in commands for word in command
             if word.startswith("/")}
    classes = {word for command in commands if "unittest" in command for word in command}
    # Only ./test all installs what builds clang-tidy's plug-in.
    if not shutil.which("clang-tidy"):
        built.add("tests/lint/OwnCodeOnly.cpp")
    problems = [f"{name} is not built" for name in tracked("tests/*.cpp") if name not in built]
    for name in tracked("tests/*.py"):
        if name not in paths:
            problems += [f"{name}: {found} is not run" for found in test_classes(ROOT / name)
                         if f"{Path(name).stem}.{found}" not in classes]
    problems += [f"{name} is not run with the sanitizers" for name in unsanitized(commands)]
    if not commands:
        problems.append("no test is registered at all")
    return problems


def linux_service(name):
    """The service in platform/linux that a file belongs to, if any."""
    found = re.match(r"platform/linux/(\w+)/", name)
    return found and found[1]


def include_problems(name, line, target):
    floor = name.split("/")[0]
    system = line.startswith("<")
    if LOGIC.match(name) and name not in NOT_LOGIC:
        if system and target not in STANDARD_HEADERS:
            return f"{name}: the logic includes <{target}>"
        if not system and re.match(r"platform/(linux|macos|simulated)/", target):
            return f"{name}: the logic includes {target}"
    if system or floor not in FLOORS:
        return None
    target_floor = target.split("/")[0]
    if target_floor not in FLOORS:
        return f"{name}: {target} is not included by its path from the root"
    if target_floor != floor and target_floor not in FLOORS[floor]:
        return f"{name}: {target} is on a floor above"
    service, target_service = linux_service(name), linux_service(target)
    if service and target_service and target_service not in (service, "common"):
        return f"{name}: {target} belongs to another service"
    if floor == target_floor == "effects" and name.split("/")[1] != target.split("/")[1]:
        return f"{name}: {target} belongs to another effect"
    return None


def check_includes(_build):
    """No include points up or at another service; no Qt or system header in the logic."""
    problems = []
    for name in sources():
        text = without_comments((ROOT / name).read_text())
        for quote, target in re.findall(r'^\s*#\s*(?:include|import)\s*(["<])([^">]+)', text, re.M):
            problem = include_problems(name, quote, target)
            if problem:
                problems.append(problem)
    return problems


def defined_tests():
    """The tests of the repository: Suite.Case in C++, Class.method in Python."""
    found = set()
    for name in tracked("tests/*.cpp", "tests/*.h"):
        code = without_comments((ROOT / name).read_text())
        found |= {".".join(words)
                  for words in re.findall(r"\bTEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)", code)}
    for name in tracked("tests/*.py"):
        for node in ast.parse((ROOT / name).read_text()).body:
            if isinstance(node, ast.ClassDef):
                found |= {f"{node.name}.{part.name}" for part in node.body
                          if getattr(part, "name", "").startswith("test_")}
    return found


def reliability_problems(text, tests):
    """What is wrong with the rows of docs/reliability.md: each ends with the names of its tests."""
    problems = []
    for row in re.findall(r"^\| .*", text, re.M):
        names = re.findall(r"`([^`]*)`", row.rstrip("| ").rpartition("|")[2])
        if not names and not row.startswith("| fault |"):
            problems.append(f"docs/reliability.md: no test: {row}")
        problems += [f"docs/reliability.md: there is no test {name}"
                     for name in names if name not in tests]
    return problems


def check_reliability(_build):
    """Each fault in docs/reliability.md has a test."""
    return reliability_problems((ROOT / "docs/reliability.md").read_text(), defined_tests())


def check_clocks(_build):
    """No clock or random source is read outside platform/."""
    problems = []
    for name in tracked("app/*", "base/*", "sensing/*", "effects/*"):
        if not name.endswith((".h", ".cpp", ".mm", ".qml", ".js")):
            continue
        text = without_comments((ROOT / name).read_text())
        for match in CLOCKS.finditer(text):
            line = text.count("\n", 0, match.start()) + 1
            problems.append(f"{name}:{line}: reads {match.group().strip()}")
    return problems


def platform_problems(name, code):
    if MAY_TEST_PLATFORM.match(name):
        return []
    return [f"{name}: tests {found}" for found in PLATFORM_TESTS.findall(without_comments(code))]


def check_platforms(_build):
    """Only platform/ and app/main.cpp test for a platform."""
    return [problem for name in sources() + tracked("*.qml")
            for problem in platform_problems(name, (ROOT / name).read_text())]


def run(command):
    done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True)
    output = (done.stdout + done.stderr).strip()
    if done.returncode:
        return [output or f"{command[0]} ended with status {done.returncode}"]
    return []


def check_format(_build):
    """clang-format would change nothing."""
    return run(["clang-format", "--dry-run", "--Werror", *sources()])


def check_tidy(build):
    """clang-tidy has no complaints."""
    return Tidy(build, ROOT).problems(sources())


def check_qml(build):
    """qmllint has no complaints about any QML file."""
    # Through the build, which passes each module's resources; without them singletons are unknown.
    done = subprocess.run(["cmake", "--build", str(build), "--target", "all_qmllint", "--verbose"],
                          capture_output=True, text=True)
    output = done.stdout + done.stderr
    names = tracked("*.qml")
    # Only ./test all builds the benchmarks.
    if "QUORVANE_BENCHMARKS:BOOL=ON" not in (build / "CMakeCache.txt").read_text():
        names = [name for name in names if not name.startswith("bench/")]
    problems = [f"{name} is not checked" for name in names if str(ROOT / name) not in output]
    if done.returncode or re.search(r"^(Warning|Error|Info):", output, re.M):
        problems.append(output)
    return problems


CHECKS = {
    "sources": check_sources,
    "includes": check_includes,
    "reliability": check_reliability,
    "clocks": check_clocks,
    "platforms": check_platforms,
    "format": check_format,
    "tidy": check_tidy,
    "qml": check_qml,
}


def main():
    build = Path(sys.argv[1]).resolve()
    failed = False
    for name in sys.argv[2:] or CHECKS:
        problems = CHECKS[name](build)
        for problem in problems:
            print(problem)
        print("FAIL" if problems else "OK", name, "-", CHECKS[name].__doc__)
        failed = failed or bool(problems)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
