"""polkit in the lab machine, with an agent in the user's session that answers by itself."""

import json
import pathlib

import dbus
import dbus.bus

from virtual_desktop import processes

from logins import members

HERE = pathlib.Path(__file__).resolve().parent
DAEMON = "/usr/lib/polkit-1/polkitd"


class Agent:
    """The agent of the session c1, until `stack` is closed."""

    def __init__(self, env, bus, log, stack):
        self._log = pathlib.Path(log)
        self._process = processes.start_script(HERE / "polkit_agent.py", bus.address, "c1",
                                               members("c1"), log, env=env, stack=stack)

    def will(self, answer):
        """Sets the answer to the next questions: "agree", "refuse" or "wait"."""
        self._process.stdin.write(f"{answer}\n".encode())
        self._process.stdin.flush()
        if self._process.stdout.readline() != b"done\n":
            raise RuntimeError("the polkit agent is gone")

    def log(self):
        """The questions so far, and that they were taken away."""
        return [json.loads(line) for line in self._log.read_text(encoding="utf-8").splitlines()]


def start(env, bus, stack):
    """Starts polkit on the machine's system bus."""
    server = processes.Server([DAEMON, "--no-debug"], env, stack)
    connection = dbus.bus.BusConnection(bus.address)
    try:
        server.wait_until(lambda: connection.name_has_owner("org.freedesktop.PolicyKit1"), "polkit")
    finally:
        connection.close()
