"""An empty Debian 12 in a folder, and commands that run in it."""

import os
import pathlib
import re
import shutil
import subprocess

SUITE = "bookworm"

# Its own process ids and /proc, the host's /dev, temporary folders in memory.
ENTER = """
set -e
mount --bind "$ARCHIVES" "$ROOT/var/cache/apt/archives"
mount --rbind /dev "$ROOT/dev"
mount -t tmpfs -o mode=1777 tmpfs "$ROOT/dev/shm"
mount -t tmpfs -o mode=1777 tmpfs "$ROOT/tmp"
mount -t tmpfs tmpfs "$ROOT/run"
exec chroot --userspec="$ACCOUNT" "$ROOT" env -i HOME="$FOLDER" PATH="$SEARCH" /bin/sh -c 'cd "$HOME" && exec "$@"' sh "$@"
"""


class CannotBeMade(Exception):
    """The empty system cannot be made, and why."""


def _mirror():
    """The mirror that this machine's apt uses, as a list; empty if unknown."""
    targets = subprocess.run(["apt-get", "indextargets", "--format", "$(SITE) $(RELEASE)"],
                             capture_output=True, text=True).stdout
    return re.findall(rf"^(\S+) {SUITE}$", targets, re.M)[:1]


class EmptyRoot:
    """An empty system below `folder`, which also keeps the downloads."""

    def __init__(self, folder):
        if os.geteuid() != 0:
            raise CannotBeMade("only root can make an empty system: run this test as root")
        if not shutil.which("debootstrap"):
            raise CannotBeMade("debootstrap is not installed")
        self.path = folder / "root"
        self._archives = folder / "archives"
        downloads = folder / "debootstrap"
        for needed in (self._archives / "partial", downloads):
            needed.mkdir(parents=True, exist_ok=True)
        shutil.rmtree(self.path, ignore_errors=True)
        done = subprocess.run(
            ["debootstrap", "--variant=minbase", "--include=git", f"--cache-dir={downloads}", SUITE,
             str(self.path), *_mirror()],
            capture_output=True, text=True)
        if done.returncode != 0:
            raise CannotBeMade(f"debootstrap failed:\n{done.stdout}{done.stderr}")

    def command(self, *words, account="root", folder="/root", search=None, network=True):
        """A command line that runs `words` in the system and ends all processes that they start."""
        environment = {
            "ROOT": str(self.path), "ARCHIVES": str(self._archives), "ACCOUNT": account,
            "FOLDER": folder, "SEARCH": search or "/usr/sbin:/usr/bin:/sbin:/bin",
        }
        isolation = ["--mount", "--pid", "--fork", "--kill-child", f"--mount-proc={self.path}/proc"]
        if not network:
            isolation.append("--net")
        return ["env", *(f"{name}={value}" for name, value in environment.items()),
                "unshare", *isolation, "sh", "-c", ENTER, "sh", *words]

    def run(self, *words, **options):
        """Runs a command; returns its status and its output."""
        done = subprocess.run(self.command(*words, **options), stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return done.returncode, done.stdout

    def file(self, path):
        """The path, on this machine, of a file in the system."""
        return pathlib.Path(self.path, path.lstrip("/"))
