"""clang-tidy on the sources that have changed since it last had no complaints."""

import functools
import hashlib
import json
import os
import re
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path


@functools.cache
def digest(file):
    return hashlib.sha256(Path(file).read_bytes()).hexdigest()


def files_read(listing):
    """What each object file was compiled from, according to `ninja -t deps`."""
    files = {}
    for block in listing.split("\n\n"):
        heading, *lines = block.strip().splitlines() or [""]
        if heading.endswith("(VALID)"):
            files[heading.split(":")[0]] = [line.strip() for line in lines]
    return files


class Tidy:
    """clang-tidy for the sources below `root` as they are compiled in `build`.

    For each source without complaints a stamp keeps a digest of everything that the result depends
    on: clang-tidy, its settings, the compiler's command and every file that the compiler read.
    While the digest stays the same the source is not checked again.
    """

    def __init__(self, build, root):
        self._build = build
        self._root = root
        self._folder = build / "tidy"
        self._folder.mkdir(exist_ok=True)
        self._command = ["clang-tidy", "--quiet", "-p", str(self._folder)]
        plugin = build / "tests/lint/own_code_only.so"
        if plugin.exists():
            self._command.append(f"--load={plugin}")
        self._read_compile_commands()
        listing = subprocess.run(["ninja", "-t", "deps"], cwd=build, check=True,
                                 capture_output=True, text=True).stdout
        self._files_read = files_read(listing)
        self._settings = [
            subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True,
                           text=True).stdout,
            *self._command, *(digest(file) for file in [plugin] if file.exists())]

    def _read_compile_commands(self):
        """Reads each source's commands and writes them for clang, without precompiled headers."""
        commands = json.loads((self._build / "compile_commands.json").read_text())
        self._commands = {}
        for entry in commands:
            entry["command"] = re.sub(
                r" -include \S*/cmake_pch\.hxx| -Winvalid-pch| -fpch-\S+", "", entry["command"])
            name = os.path.relpath(entry["file"], self._root)
            self._commands.setdefault(name, []).append(entry["command"])
        (self._folder / "compile_commands.json").write_text(json.dumps(commands))

    def _stamp(self, name):
        return self._folder / "stamps" / name

    def state(self, name):
        """The digest of everything that the result depends on; None if the build is out of date."""
        parts = list(self._settings)
        for folder in (self._root / name).parents:
            if (folder / ".clang-tidy").exists():
                parts.append(digest(folder / ".clang-tidy"))
            if folder == self._root:
                break
        for command in sorted(self._commands[name]):
            object_file = re.search(r" -o (\S+)", command)[1]
            files = self._files_read.get(object_file)
            compiled = self._build / object_file
            if not files or not compiled.exists():
                return None
            files = [self._build / file for file in files if not file.endswith(".gch")]
            if any(not file.exists() or file.stat().st_mtime > compiled.stat().st_mtime
                   for file in files):
                return None
            parts += [command, *(f"{file} {digest(file)}" for file in files)]
        return hashlib.sha256("\n".join(parts).encode()).hexdigest()

    def is_known(self, name):
        """Whether clang-tidy has checked the source as it is and had no complaints."""
        stamp = self._stamp(name)
        return stamp.exists() and stamp.read_text() == self.state(name)

    def problem(self, name):
        """Checks one source; returns the complaints, or None."""
        state = self.state(name)
        done = subprocess.run([*self._command, str(self._root / name)], cwd=self._root, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        stamp = self._stamp(name)
        if done.returncode:
            stamp.unlink(missing_ok=True)
            return f"{name}:\n{done.stdout.strip()}"
        if state:
            stamp.parent.mkdir(parents=True, exist_ok=True)
            stamp.write_text(state)
        return None

    def problems(self, names):
        """Checks those of the sources that are not known, with one process a core."""
        names = [name for name in names if name in self._commands]
        new = [name for name in names if not self.is_known(name)]
        print(f"{len(new)} of {len(names)} sources are new to clang-tidy")
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            return [problem for problem in pool.map(self.problem, new) if problem]
