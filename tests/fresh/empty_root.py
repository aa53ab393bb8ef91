"""An empty Debian 12 in a folder, in which commands run as on a machine of its own."""

import os
import pathlib
import re
import shutil
import subprocess

SUITE = "bookworm"

# The machine's own /proc and processes, with device nodes of the host's; temporary folders in memory.
ENTER = """
set -e
mount --bind "$ARCHIVES" "$ROOT/var/cache/apt/archives"
mount --rbind /dev "$ROOT/dev"
mount -t tmpfs -o mode=1777 tmpfs "$ROOT/dev/shm"
mount -t tmpfs -o mode=1777 tmpfs "$ROOT/tmp"
mount -t tmpfs tmpfs "$ROOT/run"
exec chroot --userspec="$PERSON" "$ROOT" env -i HOME="$PLACE" PATH="$SEARCH" /bin/sh -c 'cd "$HOME" && exec "$@"' sh "$@"
"""


class CannotBeMade(Exception):
    """Why there is no empty system here."""


def _mirror():
    """Where this machine's own packages come from; none if apt does not know."""
    told = subprocess.run(["apt-get", "indextargets", "--format", "$(SITE) $(RELEASE)"],
                          capture_output=True, text=True).stdout
    return re.findall(rf"^(\S+) {SUITE}$", told, re.M)[:1]


class EmptyRoot:
    """`folder` is kept: what was downloaded is there the next time."""

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

    def command(self, *words, person="root", place="/root", search=None, network=True):
        """A command line that runs `words` in there, and ends all that it started."""
        environment = {
            "ROOT": str(self.path), "ARCHIVES": str(self._archives), "PERSON": person,
            "PLACE": place, "SEARCH": search or "/usr/sbin:/usr/bin:/sbin:/bin",
        }
        isolation = ["--mount", "--pid", "--fork", "--kill-child", f"--mount-proc={self.path}/proc"]
        if not network:
            isolation.append("--net")
        return ["env", *(f"{name}={value}" for name, value in environment.items()),
                "unshare", *isolation, "sh", "-c", ENTER, "sh", *words]

    def run(self, *words, **options):
        """Runs it to its end; returns its status and all that it wrote."""
        done = subprocess.run(self.command(*words, **options), stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return done.returncode, done.stdout

    def file(self, path):
        """Where a file of its is, seen from here."""
        return pathlib.Path(self.path, path.lstrip("/"))
