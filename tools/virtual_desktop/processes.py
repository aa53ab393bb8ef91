"""Child processes, which end with the process that started them."""

import ctypes
import os
import signal
import subprocess
import sys
import threading
import time

from .waiting import TimedOut, wait_until

_libc = ctypes.CDLL(None, use_errno=True)
_PR_SET_PDEATHSIG = 1


def _end_with_parent():
    # CTest kills a test that times out, which then cannot end its own processes.
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGTERM)


def start(command, env, stack, **popen_options):
    """Starts `command` (a list) with the environment `env`; closing `stack` ends it."""
    popen_options.setdefault("stdin", subprocess.DEVNULL)
    process = subprocess.Popen(command, env=env, preexec_fn=_end_with_parent, **popen_options)
    stack.callback(end, process)
    return process


class NotStarted(RuntimeError):
    """A server that could not be started.

    `step` names it, `output` is what it wrote.
    """

    def __init__(self, step, reason, output=""):
        super().__init__(f"{step} did not start: {reason}")
        self.step = step
        self.output = output


def start_script(path, *arguments, env, stack):
    """Starts one of our own Python scripts that prints "ready" and ends with its standard input."""
    process = start([sys.executable, path, *arguments], env, stack, stdin=subprocess.PIPE,
                    stdout=subprocess.PIPE)
    if process.stdout.readline() != b"ready\n":
        raise NotStarted(os.path.basename(path), "it was not ready")
    return process


class Server:
    """A server of the desktop, until `stack` is closed; `log` has its lines on standard error."""

    def __init__(self, command, env, stack, **popen_options):
        self._name = os.path.basename(command[0])
        popen_options.setdefault("stdout", subprocess.DEVNULL)
        try:
            self.process = start(command, env, stack, stderr=subprocess.PIPE, **popen_options)
        except FileNotFoundError:
            raise NotStarted(self._name, "it is not installed") from None
        self.log = Lines(self.process.stderr)
        # Not closed by end(): that would wait for the reader, for as long as a child of the server
        # keeps the pipe open.
        self.process.stderr = None

    def wait_until(self, condition, what):
        """Waits until `condition` returns something true, and returns that; else NotStarted."""
        def check():
            if self.process.poll() is not None:
                raise self.failure(f"it ended with status {self.process.returncode}")
            return condition()
        try:
            return wait_until(check, what)
        except TimedOut as error:
            raise self.failure(str(error)) from None

    def failure(self, reason):
        """The error to raise when the server does not work."""
        if self.process.poll() is not None:
            self.log.wait_for_end()
        return NotStarted(self._name, reason, "".join(f"{line}\n" for line in self.log.text))


def end(process, timeout=3.0):
    """Ends `process` by SIGTERM, after `timeout` seconds by SIGKILL, and closes its pipes."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(timeout)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
    for pipe in (process.stdin, process.stdout, process.stderr):
        if pipe is not None:
            pipe.close()


def base_environment(home):
    """The environment of every process of a desktop: the caller's PATH and folders below `home`."""
    environment = {
        "PATH": os.environ.get("PATH", os.defpath),
        "HOME": home,
        "LANG": "C.UTF-8",
        "XDG_RUNTIME_DIR": os.path.join(home, "runtime"),
        "XDG_CONFIG_HOME": os.path.join(home, "config"),
        "XDG_CACHE_HOME": os.path.join(home, "cache"),
        "XDG_DATA_HOME": os.path.join(home, "data"),
    }
    for name in ("XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"):
        os.makedirs(environment[name], mode=0o700, exist_ok=True)
    # The options of the sanitizers come from the caller, too.
    environment.update({k: v for k, v in os.environ.items() if k.endswith("SAN_OPTIONS")})
    return environment


class Lines:
    """Reads a pipe's lines in a thread and remembers when each one arrived."""

    def __init__(self, pipe):
        self._pipe = pipe
        self._lines = []
        self._changed = threading.Condition()
        self._closed = False
        self._thread = threading.Thread(target=self._read, daemon=True)
        self._thread.start()

    def _read(self):
        for raw in self._pipe:
            self._append(raw.decode("utf-8", errors="backslashreplace").rstrip("\n"))
        with self._changed:
            self._closed = True
            self._changed.notify_all()

    def _append(self, text):
        with self._changed:
            self._lines.append((time.monotonic(), text))
            self._changed.notify_all()

    @property
    def text(self):
        """The lines so far, without their times."""
        with self._changed:
            return [text for _, text in self._lines]

    def timed(self):
        """The lines so far as (instant, text)."""
        with self._changed:
            return list(self._lines)

    def times(self, text):
        """When each line came that is exactly `text`."""
        with self._changed:
            return [arrived for arrived, line in self._lines if line == text]

    def since(self, start):
        """The lines so far as text, each with its seconds since `start` in front."""
        with self._changed:
            return [f"{arrived - start:7.2f}  {text}" for arrived, text in self._lines]

    def wait_for(self, matches, what, timeout=10.0):
        """Waits for a line for which `matches(text)` holds; returns (instant, text).

        `waiting.slowness` does not apply.
        """
        deadline = time.monotonic() + timeout
        seen = 0
        with self._changed:
            while True:
                for arrived, text in self._lines[seen:]:
                    if matches(text):
                        return arrived, text
                seen = len(self._lines)
                left = deadline - time.monotonic()
                if left <= 0 or self._closed:
                    raise TimedOut(f"no line that is {what}, in: {[t for _, t in self._lines]}")
                self._changed.wait(left)

    def wait_for_end(self, timeout=5.0):
        """Waits until the writer has closed its end."""
        self._thread.join(timeout)
