"""Fakes of logind, UPower, the settings portal and a screen saver, controlled through standard input.

Usage: services.py BUS-ADDRESS [login] [session:NAME ...] [power] [portal] [saver]

With "login" there is the caller's session; named ones are in addition.
"""

# python3-dbusmock would be shorter, but starts in 0.11 s instead of 0.04 s and needs dbus-x11.

import functools
import sys

import dbus
import dbus.bus
import dbus.lowlevel
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

PROPERTIES = "org.freedesktop.DBus.Properties"
UPOWER = "org.freedesktop.UPower"
LOGIN = "org.freedesktop.login1.Manager"
SESSION = "org.freedesktop.login1.Session"
SAVER = "org.gnome.ScreenSaver"
PORTAL = "org.freedesktop.portal.Settings"
MOTION = ("org.gnome.desktop.interface", "enable-animations")


class Login(dbus.service.Object):
    """The part of logind's manager that is about sleep."""

    def __init__(self, connection):
        name = dbus.service.BusName("org.freedesktop.login1", connection)
        super().__init__(name, "/org/freedesktop/login1")

    @dbus.service.signal(LOGIN, signature="b")
    def PrepareForSleep(self, start):
        pass


class LoginSession(dbus.service.Object):
    """The part of logind's session that is about its lock; `path` is where its signals are from."""

    FOLDER = "/org/freedesktop/login1/session"

    def __init__(self, connection, name, path):
        self._locked = False
        self._path = path
        super().__init__(connection, f"{self.FOLDER}/{name}")

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        if (interface, name) != (SESSION, "LockedHint"):
            raise dbus.DBusException("no such property")
        return dbus.Boolean(self._locked)

    def set_locked(self, locked):
        self._locked = locked
        signal = dbus.lowlevel.SignalMessage(f"{self.FOLDER}/{self._path}", PROPERTIES,
                                             "PropertiesChanged")
        signal.append(SESSION, {"LockedHint": dbus.Boolean(locked)}, [], signature="sa{sv}as")
        self.connection.send_message(signal)


class Power(dbus.service.Object):
    """The part of UPower that is about the lid."""

    def __init__(self, connection):
        self._closed = False
        super().__init__(dbus.service.BusName(UPOWER, connection), "/org/freedesktop/UPower")

    def _properties(self):
        return {"LidIsPresent": dbus.Boolean(True), "LidIsClosed": dbus.Boolean(self._closed),
                "OnBattery": dbus.Boolean(False), "DaemonVersion": dbus.String("0.99")}

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return self._properties()[name]

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return self._properties()

    @dbus.service.signal(PROPERTIES, signature="sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass

    def move_lid(self, closed):
        self._closed = closed
        self.announce()

    def announce(self):
        self.PropertiesChanged(UPOWER, {"LidIsClosed": dbus.Boolean(self._closed)}, [])


class Portal(dbus.service.Object):
    """The part of the settings portal that is about animations."""

    def __init__(self, connection, animations):
        self._animations = animations
        name = dbus.service.BusName("org.freedesktop.portal.Desktop", connection)
        super().__init__(name, "/org/freedesktop/portal/desktop")

    @dbus.service.method(PORTAL, in_signature="ss", out_signature="v")
    def Read(self, group, key):
        if (group, key) != MOTION:
            raise dbus.DBusException("no such setting")
        return dbus.Boolean(self._animations, variant_level=1)

    @dbus.service.signal(PORTAL, signature="ssv")
    def SettingChanged(self, group, key, value):
        pass

    def set_animations(self, animations):
        self._animations = animations
        self.SettingChanged(*MOTION, dbus.Boolean(animations))


class Saver(dbus.service.Object):
    """The part of GNOME's screen saver that is about its lock."""

    def __init__(self, connection):
        self._active = False
        super().__init__(dbus.service.BusName(SAVER, connection), "/org/gnome/ScreenSaver")

    @dbus.service.method(SAVER, out_signature="b")
    def GetActive(self):
        return self._active

    @dbus.service.signal(SAVER, signature="b")
    def ActiveChanged(self, active):
        pass

    def set_active(self, active):
        self._active = active
        self.ActiveChanged(active)


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    connection = dbus.bus.BusConnection(sys.argv[1])
    commands = {}
    if "login" in sys.argv[2:]:
        login = Login(connection)
        commands["sleep"] = lambda: login.PrepareForSleep(True)
        commands["wake"] = lambda: login.PrepareForSleep(False)
        # As logind does: from the session's own path.
        session = LoginSession(connection, "auto", "_31")
        commands["lock"] = lambda: session.set_locked(True)
        commands["unlock"] = lambda: session.set_locked(False)
    for argument in sys.argv[2:]:
        kind, _, name = argument.partition(":")
        if kind == "session":
            named = LoginSession(connection, name, name)
            commands[f"lock {name}"] = functools.partial(named.set_locked, True)
            commands[f"unlock {name}"] = functools.partial(named.set_locked, False)
    if "power" in sys.argv[2:]:
        power = Power(connection)
        commands["lid closed"] = lambda: power.move_lid(True)
        commands["lid open"] = lambda: power.move_lid(False)
        commands["lid same"] = power.announce
    if "portal" in sys.argv[2:]:
        portal = Portal(connection, animations=False)
        commands["motion usual"] = lambda: portal.set_animations(True)
        commands["motion reduced"] = lambda: portal.set_animations(False)
    if "saver" in sys.argv[2:]:
        saver = Saver(connection)
        commands["lock"] = lambda: saver.set_active(True)
        commands["unlock"] = lambda: saver.set_active(False)
    loop = GLib.MainLoop()

    def obey(channel, _condition):
        command = channel.readline()
        if not command:
            loop.quit()
            return False
        commands[command.strip()]()
        connection.flush()
        print("done", flush=True)
        return True

    GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, obey)
    print("ready", flush=True)
    loop.run()


if __name__ == "__main__":
    main()
