"""A silent sound server whose output is recorded."""

import os
import subprocess

from . import processes
from .recording import Recording


class SoundServer:
    """A PulseAudio of our own with one null sink.

    `directory` is a folder that this server alone uses; clients find it through `address`, which
    is known before `start`, so that a server can also come late.
    """

    SINK = "quorvane_null"
    RATE = 48000

    def __init__(self, env, directory):
        self._directory = directory
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
             "--disallow-exit", "--realtime=no", "--high-priority=no", "--log-level=error",
             "-L", f"module-null-sink sink_name={self.SINK} rate={self.RATE} channels=2",
             "-L", f"module-native-protocol-unix auth-anonymous=1 socket={self._socket}"],
            self._env, stack)
        server.wait_until(self._answers, "the sound server")

    def _answers(self):
        return subprocess.run(
            ["pactl", "info"], env=self._env, capture_output=True, timeout=10).returncode == 0

    def record(self, stack):
        """Starts to record all that is played from soon on; see Recording.wait_for_start."""
        recorder = processes.start(
            ["parec", f"--device={self.SINK}.monitor", f"--rate={self.RATE}", "--channels=1",
             "--format=s16le", "--latency-msec=20", "--client-name=e2e-recorder"],
            self._env, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        stack.callback(processes.end, recorder)
        return Recording(recorder.stdout, self.RATE)
