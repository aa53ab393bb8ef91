"""A polkit agent that answers by itself, for the session whose processes it is one of.

    polkit_agent.py BUS-ADDRESS SESSION MEMBERS LOG

MEMBERS is the list of the processes in the session's control group, from which polkit tells it.

Answers "agree" or "refuse" to the questions that are open and to those that come, or leaves them
open on "wait": the last line on standard input counts, with which it ends. Each question is a line
of JSON in the log, and so is its being taken away.
"""

import json
import sys
import time

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

AUTHORITY = "org.freedesktop.PolicyKit1.Authority"
AGENT = "org.freedesktop.PolicyKit1.AuthenticationAgent"
CANCELLED = "org.freedesktop.PolicyKit1.Error.Cancelled"
PATH = "/org/quorvane/LabAgent"


class Agent(dbus.service.Object):
    """The agent; it runs as root, whom polkit believes that somebody has proved who they are."""

    def __init__(self, connection, session, log):
        super().__init__(connection, PATH)
        self._log = log
        self._open = {}
        self._answer = "wait"
        authority = connection.get_object("org.freedesktop.PolicyKit1",
                                          "/org/freedesktop/PolicyKit1/Authority",
                                          introspect=False)
        self._authority = dbus.Interface(authority, AUTHORITY)
        subject = ("unix-session", dbus.Dictionary({"session-id": session}, signature="sv"))
        self._authority.RegisterAuthenticationAgent(subject, "C", PATH)

    def _note(self, **facts):
        facts["at"] = time.monotonic()
        self._log.write(json.dumps(facts) + "\n")

    @dbus.service.method(AGENT, in_signature="sssa{ss}sa(sa{sv})",
                         async_callbacks=("succeed", "fail"))
    def BeginAuthentication(self, action, message, icon, _details, cookie, identities, succeed,
                            fail):
        self._note(asked=action, message=message, icon=icon)
        self._open[cookie] = identities[0], succeed, fail
        self.answer(self._answer)

    def answer(self, answer):
        """Answers what is open, and what comes."""
        self._answer = answer
        if answer == "wait":
            return
        for cookie, (identity, succeed, fail) in self._open.items():
            if answer == "agree":
                self._authority.AuthenticationAgentResponse2(
                    dbus.UInt32(0), cookie, identity, reply_handler=succeed, error_handler=fail)
            else:
                fail(dbus.DBusException("closed", name=CANCELLED))
        self._open.clear()

    @dbus.service.method(AGENT, in_signature="s")
    def CancelAuthentication(self, cookie):
        self._note(taken_away=True)
        if question := self._open.pop(cookie, None):
            question[2](dbus.DBusException("taken away", name=CANCELLED))


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    address, session, members, log_file = sys.argv[1:]
    with open(members, "w", encoding="ascii") as file:
        file.write("0")
    connection = dbus.bus.BusConnection(address)
    with open(log_file, "w", encoding="utf-8", buffering=1) as log:
        agent = Agent(connection, session, log)
        loop = GLib.MainLoop()

        def obey(channel, _condition):
            line = channel.readline()
            if not line:
                loop.quit()
                return False
            agent.answer(line.strip())
            print("done", flush=True)
            return True

        GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, obey)
        print("ready", flush=True)
        loop.run()


if __name__ == "__main__":
    main()
