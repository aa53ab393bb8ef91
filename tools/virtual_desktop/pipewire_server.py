"""PipeWire in the place of PulseAudio, with a null sink."""

import os
import pathlib
import subprocess

from . import processes
from .sound_server import SoundServer

GRAPH = """
context.properties = { support.dbus = false }
context.objects = [
    { factory = adapter
      args = {
          factory.name = support.null-audio-sink
          node.name = SINK
          media.class = Audio/Sink
          audio.position = [ FL FR ]
          audio.rate = RATE
          monitor.channel-volumes = true
          object.linger = true
      }
    }
]
"""

PULSE_SERVER = """
context.properties = { support.dbus = false }
context.spa-libs = {
    audio.convert.* = audioconvert/libspa-audioconvert
    support.* = support/libspa-support
}
context.modules = [
    { name = libpipewire-module-rt flags = [ ifexists nofail ] }
    { name = libpipewire-module-protocol-native }
    { name = libpipewire-module-client-node }
    { name = libpipewire-module-adapter }
    { name = libpipewire-module-metadata }
    { name = libpipewire-module-protocol-pulse
      args = { server.address = [ "SOCKET" ] }
    }
]
"""

# Nothing that needs hardware, a message bus or files.
SESSION = """
alsa_monitor.enabled = false
v4l2_monitor.enabled = false
libcamera_monitor.enabled = false
default_access.properties["enable-flatpak-portal"] = false
device_defaults.properties["use-persistent-storage"] = false
"""
BLUETOOTH = "bluez_monitor.enabled = false\n"


class PipeWireServer(SoundServer):
    """A PipeWire of our own with one null sink, which PulseAudio's clients find at `address`."""

    def start(self, stack):
        """Starts the server and returns once it can be used."""
        folder = pathlib.Path(self._directory)
        env = dict(self._env, XDG_RUNTIME_DIR=str(folder), XDG_CONFIG_HOME=str(folder / "config"),
                   XDG_STATE_HOME=str(folder / "state"),
                   DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")
        for name, text in {
                "pipewire/pipewire.conf.d/sink.conf":
                    GRAPH.replace("SINK", self.SINK).replace("RATE", str(self.RATE)),
                "pipewire/pulse-server.conf": PULSE_SERVER.replace("SOCKET", self.address),
                "wireplumber/main.lua.d/51-no-hardware.lua": SESSION,
                "wireplumber/bluetooth.lua.d/51-no-hardware.lua": BLUETOOTH}.items():
            file = folder / "config" / name
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        graph = processes.Server(["pipewire"], env, stack)
        graph.wait_until((folder / "pipewire-0").exists, "PipeWire")
        processes.Server(["wireplumber"], env, stack)
        pulse = processes.Server(["pipewire", "-c", "pulse-server.conf"], env, stack)
        self.pids = [graph.process.pid, pulse.process.pid]
        pulse.wait_until(self._plays_to_the_sink, "the sound server")

    def _plays_to_the_sink(self):
        answer = subprocess.run(["pactl", "get-default-sink"], env=self._env, capture_output=True,
                                text=True, timeout=10)
        return answer.stdout.strip() == self.SINK

    def dropouts(self, begin, end):
        """Not known of this server."""
        raise NotImplementedError
