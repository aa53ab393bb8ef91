"""A sound server with one sink, its output recorded and its dropouts counted."""

import math
import os
import subprocess

from . import processes
from .recording import LiveRecording


DRY = ("Implicit underrun of", "due to end of underrun")
"""What the server logs of an underrun: at once for a stream that must not stop, for any other once
it has samples again."""

FRESH = ("Created input", "due to uncorking")
"""What it logs of a stream that begins or goes on after a pause; underruns are normal then."""

SETTLED = 0.1
"""Seconds for which underruns of such a stream do not count."""


class SoundServer:
    """A PulseAudio of our own with one sink, by default a null sink.

    `directory` is a folder that this server alone uses; clients find it through `address`, which
    is known before `start`, so that a server can also come late. `sink` is the sink's module with
    its arguments.
    """

    SINK = "quorvane_sink"
    RATE = 48000

    def __init__(self, env, directory, sink="module-null-sink"):
        self._directory = directory
        self._sink = sink
        socket = os.path.join(directory, "native")
        self.address = f"unix:{socket}"
        self._env = dict(env, PULSE_SERVER=self.address, PULSE_RUNTIME_PATH=directory,
                         PULSE_STATE_PATH=directory)
        self._socket = socket

    def start(self, stack):
        """Starts the server and returns once it can be used."""
        os.makedirs(self._directory, mode=0o700, exist_ok=True)
        server = processes.Server(
            ["pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
             "--disallow-exit", "--realtime=no", "--high-priority=no", "--log-level=debug",
             "--log-target=stderr",
             "-L", f"{self._sink} sink_name={self.SINK} rate={self.RATE} channels=2",
             "-L", f"module-native-protocol-unix auth-anonymous=1 socket={self._socket}"],
            self._env, stack)
        self.pids = [server.process.pid]
        self.log = server.log
        server.wait_until(self._answers, "the sound server")

    def _answers(self):
        return subprocess.run(
            ["pactl", "info"], env=self._env, capture_output=True, timeout=10).returncode == 0

    def dropouts(self, begin, end):
        """How many underruns of playing streams there were between two instants.

        The server plays silence then: the machine was too busy.
        """
        count, fresh = 0, -math.inf
        for arrived, line in self.log.timed():
            if any(word in line for word in FRESH):
                fresh = arrived
            elif begin <= arrived <= end and arrived > fresh + SETTLED:
                count += any(word in line for word in DRY)
        return count

    def record(self, stack, latency=20):
        """Starts to record what is played; see LiveRecording.wait_for_start.

        `latency`, in milliseconds, is how late the recorder lets the samples come. It also bounds
        the latency at which the server plays.
        """
        recorder = processes.start(
            ["parec", f"--device={self.SINK}.monitor", f"--rate={self.RATE}", "--channels=1",
             "--format=s16le", f"--latency-msec={latency}", "--client-name=e2e-recorder"],
            self._env, stack, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        return LiveRecording(recorder.stdout, self.RATE)
