"""An emulated Linux machine whose root is the host's, read-only.

The kernel is the distribution's package, unpacked but not installed. The machine writes to its
results folder only.
"""

import contextlib
import lzma
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "tools"))

from virtual_desktop import processes  # noqa: E402 (found through the line above)

MODULES = [
    "hid-generic", "uhid", "uinput", "evdev", "snd-aloop", "virtio_pci", "virtio_rng",
    "9pnet_virtio", "9p", "overlay",
]
KERNEL_METAPACKAGE = "linux-image-amd64"

QEMU = [
    "qemu-system-x86_64", "-accel", "tcg,thread=single", "-machine", "pc",
    # Not recognisable as a virtual machine: PulseAudio would not schedule by timers in one.
    "-cpu", "Nehalem-v1,hypervisor=off",
    "-smbios", "type=1,manufacturer=Lab",
    # The guest's clock counts instructions (one every 2 ns), so a busy host makes the machine slow
    # without making it miss deadlines. Only while the machine is idle does its clock follow the
    # host's, which is why there is standstill.py. If it skipped idle times instead (sleep=off),
    # every answer of the host would seem to take some hundred times as long.
    "-smp", "1", "-icount", "shift=1,sleep=on",
    "-m", "2048", "-nic", "none", "-display", "none", "-monitor", "none",
    "-no-reboot", "-no-user-config", "-nodefaults", "-serial", "stdio",
    "-device", "virtio-rng-pci",
]
COMMAND_LINE = "console=ttyS0 quiet panic=-1 reboot=t mitigations=off tsc=reliable no_timer_check"

# Offsets in the header of a bzImage: the number of setup sectors; offset and length of the payload.
SETUP_SECTORS, PAYLOAD = 0x1F1, 0x248
XZ = b"\xfd7zXZ\0"


class LabError(Exception):
    """The machine could not be prepared, or its job failed."""


def _output(*command, **options):
    try:
        result = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    except FileNotFoundError as error:
        raise LabError(f"{command[0]} is not installed") from error
    if result.returncode != 0:
        raise LabError(f"{' '.join(map(str, command))}: status {result.returncode}\n"
                       f"{result.stdout}{result.stderr}")
    return result.stdout


def _kernel_package():
    depends = _output("apt-cache", "depends", KERNEL_METAPACKAGE)
    found = re.search(r"Depends: (linux-image-\S+)", depends)
    if not found:
        raise LabError(f"apt knows no kernel behind {KERNEL_METAPACKAGE}: run apt-get update")
    return found.group(1)


def _unpack_kernel(package, folder):
    _output("apt-get", "-o", "APT::Sandbox::User=root", "download", package, cwd=folder)
    archive = next(folder.glob("*.deb"))
    _output("dpkg-deb", "-x", archive, folder / "root")
    return folder / "root"


def _modules_in_order(root, release):
    """The files of MODULES and their dependencies, dependencies first."""
    _output("depmod", "-b", root, release)
    files = []
    for module in MODULES:
        lines = _output("modprobe", "-C", "/dev/null", "-d", root, "-S", release,
                        "--show-depends", module)
        for line in lines.splitlines():
            if line.startswith("insmod ") and line.split()[1] not in files:
                files.append(line.split()[1])
    return files


def _unpacked(vmlinuz):
    """The kernel in a bzImage: unpacking it at boot takes an emulated processor seconds."""
    image = vmlinuz.read_bytes()
    sectors = image[SETUP_SECTORS]
    offset, length = struct.unpack_from("<II", image, PAYLOAD)
    begin = (sectors + 1) * 512 + offset
    payload = image[begin:begin + length]
    # With another compression the kernel unpacks itself.
    return lzma.LZMADecompressor().decompress(payload) if payload.startswith(XZ) else image


def _static_busybox():
    busybox = shutil.which("busybox")
    if not busybox or "busybox-static" not in _output("dpkg", "-S", "/bin/busybox"):
        raise LabError("the package busybox-static is not installed")
    return busybox


def _pack_initramfs(tree, archive):
    names = "\n".join(str(path.relative_to(tree)) for path in sorted(tree.rglob("*")))
    with open(archive, "wb") as out:
        result = subprocess.run(["cpio", "-o", "-H", "newc", "--quiet", "-R", "0:0"], cwd=tree,
                                input=names.encode(), stdout=out, stderr=subprocess.PIPE,
                                check=False)
    if result.returncode != 0:
        raise LabError(f"cpio: {result.stderr.decode()}")


def prepare(folder):
    """The kernel and initramfs; rebuilt only for another kernel package or after changes here."""
    package = _kernel_package()
    kernel = folder / package / "kernel"
    initramfs = folder / package / "initramfs"
    sources = max((HERE / name).stat().st_mtime for name in ("init", "machine.py"))
    if kernel.exists() and initramfs.exists() and initramfs.stat().st_mtime > sources:
        return kernel, initramfs
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=folder) as scratch_name:
        scratch = pathlib.Path(scratch_name)
        root = _unpack_kernel(package, scratch)
        release = package.removeprefix("linux-image-")
        tree = scratch / "initramfs"
        (tree / "bin").mkdir(parents=True)
        (tree / "modules").mkdir()
        shutil.copy(_static_busybox(), tree / "bin/busybox")
        shutil.copy(HERE / "init", tree / "init")
        (tree / "init").chmod(0o755)
        for number, file in enumerate(_modules_in_order(root, release)):
            shutil.copy(file, tree / "modules" / f"{number:02}-{pathlib.Path(file).name}")
        kernel.parent.mkdir(exist_ok=True)
        kernel.write_bytes(_unpacked(root / "boot" / f"vmlinuz-{release}"))
        _pack_initramfs(tree, scratch / "packed")
        os.replace(scratch / "packed", initramfs)
    return kernel, initramfs


def _share(name, path, *options):
    fsdev = ",".join(["local", f"id={name}", f"path={path}", "security_model=none",
                      "multidevs=remap", *options])
    return ["-fsdev", fsdev, "-device", f"virtio-9p-pci,fsdev={name},mount_tag={name}"]


def _stream(source, log_path, started):
    with open(log_path, "w", encoding="utf-8") as log:
        for raw in source:
            line = raw.decode("utf-8", "replace").rstrip()
            log.write(line + "\n")
            log.flush()
            print(f"[{time.monotonic() - started:6.1f}] {line}", flush=True)


def run_first():
    """Gives this process and its children real-time priority, where that is permitted.

    A nice value would not help: autogroups ignore it between sessions.
    """
    with contextlib.suppress(PermissionError):
        os.sched_setscheduler(0, os.SCHED_RR, os.sched_param(1))


def boot(kernel, initramfs, results, job, time_limit):
    """Runs the shell script `job` in a new machine with the folder `results` at /run/results.

    Raises LabError unless the job ended by itself with status 0 within `time_limit` seconds.
    """
    shutil.rmtree(results, ignore_errors=True)
    results.mkdir(parents=True)
    (results / "job").write_text(job, encoding="utf-8")
    command = [*QEMU, "-kernel", str(kernel), "-initrd", str(initramfs), "-append", COMMAND_LINE,
               *_share("host", "/", "readonly=on"), *_share("results", results)]
    if not shutil.which(QEMU[0]):
        raise LabError(f"{QEMU[0]} is not installed")
    if not pathlib.Path("/proc/self/fd").exists():
        raise LabError("/proc is not mounted here: the machine could not write its results")
    started = time.monotonic()
    with contextlib.ExitStack() as stack:
        qemu = processes.start(command, dict(os.environ), stack, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT)
        reader = threading.Thread(target=_stream,
                                  args=(qemu.stdout, results / "console.log", started))
        reader.start()
        stack.callback(reader.join)
        stack.callback(qemu.kill)
        try:
            qemu.wait(time_limit)
        except subprocess.TimeoutExpired as error:
            raise LabError(f"the machine was still running after {time_limit:g} s") from error
    status_file = results / "status"
    if not status_file.exists():
        raise LabError(f"the machine ended (status {qemu.returncode}) before its job did")
    status = status_file.read_text(encoding="utf-8").strip()
    if status != "0":
        raise LabError(f"the job ended with status {status}")
