"""Controls a program as a screen reader would."""

import os
import time
import warnings

import gi

from . import waiting
from .waiting import TimedOut, wait_until

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402 (require_version has to come first)

BUTTON = Atspi.Role.PUSH_BUTTON
# The role of a switch depends on the version of Qt.
SWITCHES = (Atspi.Role.CHECK_BOX, Atspi.Role.TOGGLE_BUTTON)

READABLE_WITHIN = 5.0
"""Seconds for which reading a tree may fail, as it is changing or the program is busy."""


class ScreenReader:
    """The accessibility client of this process, which can connect to one bus only."""

    def __init__(self, bus_address):
        os.environ["AT_SPI_BUS_ADDRESS"] = bus_address
        Atspi.init()
        # The cache is kept up to date by a main loop, and none runs here.
        Atspi.get_desktop(0).set_cache_mask(Atspi.Cache.NONE)
        Atspi.set_timeout(3000, 10000)

    def application(self, program):
        """The accessible tree of a running program; waits until it is on the bus."""
        return Application(wait_until(lambda: self._find(program), "the program on the bus", 15),
                           program)

    @staticmethod
    def _find(program):
        if not program.is_running:
            raise AssertionError("the program has ended before it could be seen")
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            try:
                if child is not None and child.get_process_id() == program.pid:
                    return child
            except GLib.Error:
                pass  # an earlier program that is ending
        return None


class Announcements:
    """The changes of switches that a screen reader is notified of, while the context is open."""

    def __init__(self):
        self._heard = []
        self._listener = Atspi.EventListener.new(self._hear)
        self._listener.register("object:state-changed:checked")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._listener.deregister("object:state-changed:checked")

    def _hear(self, event):
        self._heard.append((event.source.get_name(), bool(event.detail1)))

    def wait_for(self, name, on):
        """Waits for the notification that the switch of this name is on, or off."""
        def heard():
            # The events are delivered by this loop, which nothing else runs.
            while GLib.MainContext.default().iteration(False):
                pass
            return (name, on) in self._heard
        wait_until(heard, f'"{name}" to be announced {"on" if on else "off"}')


def _children(node):
    count = node.get_child_count()
    children = [node.get_child_at_index(index) for index in range(count)]
    # These calls report an error by such values instead of raising.
    if count < 0 or None in children:
        raise GLib.Error("no answer, or the children have just been removed")
    return children


def _shown(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


class Unreadable(AssertionError):
    """The program answers with errors, or not at all."""


class Application:
    """The accessible tree of a running program; once that has ended, every call raises."""

    def __init__(self, root, program):
        self._root = root
        self._program = program

    def _walk(self, node, depth=0):
        yield depth, node
        for child in _children(node):
            if _shown(child):
                yield from self._walk(child, depth + 1)

    def _read(self, evaluate):
        """Calls `evaluate` with the tree's (depth, node) pairs, again if the tree has changed."""
        deadline = time.monotonic() + READABLE_WITHIN * waiting.slowness
        while True:
            try:
                result = evaluate(self._walk(self._root))
                # An empty name may mean that there was no answer; this call would raise then.
                self._root.get_role()
                self._check_that_it_runs()
                return result
            except GLib.Error as error:
                self._check_that_it_runs()
                if time.monotonic() >= deadline:
                    raise Unreadable(f"what is shown cannot be read: {error.message}") from None
                time.sleep(0.02)  # the tree changed during the walk

    def _check_that_it_runs(self):
        if not self._program.is_running:
            raise AssertionError("the program has ended: what it shows cannot be read")

    def _matches(self, name, roles):
        return self._read(lambda nodes: [
            node for _, node in nodes
            if node.get_name() == name and (not roles or node.get_role() in roles)])

    def _matches_by_now(self, name, roles):
        """As `_matches`, but empty if unreadable: a program that starts may not answer yet."""
        try:
            return self._matches(name, roles)
        except Unreadable:
            return []

    def shows(self, name, *roles):
        """Whether something of this name (and one of the roles, if any is given) can be seen."""
        return bool(self._matches(name, roles))

    def find(self, name, *roles, timeout=10.0):
        """Waits until something of this name can be seen and returns it."""
        try:
            return wait_until(lambda: self._matches_by_now(name, roles), f'"{name}" to be shown',
                              timeout, interval=0.05)[0]
        except TimedOut as error:
            raise TimedOut(f"{error}; what is shown:\n{self.describe()}") from None

    def wait_until_gone(self, name, timeout=5.0):
        """Waits until nothing of this name can be seen any more."""
        wait_until(lambda: not self.shows(name), f'"{name}" to go', timeout, interval=0.05)

    def press(self, name, timeout=10.0):
        """Presses a button."""
        _do(self.find(name, BUTTON, timeout=timeout), ("press", "click"))

    def presser(self, name):
        """Finds a button now; returns a function that presses it without another search."""
        button = self.find(name, BUTTON)
        return lambda: _do(button, ("press", "click"))

    def toggle(self, name):
        """Toggles a switch."""
        _do(self.find(name, *SWITCHES), ("toggle", "press", "click"))

    def switch(self, name, on):
        """Toggles a switch and waits until it is on, or off, as `on` says."""
        self.toggle(name)
        wait_until(lambda: self.is_on(name) == on, f'"{name}" to be {"on" if on else "off"}', 5.0)

    def is_on(self, name):
        """Whether a switch is on."""
        states = self.find(name, *SWITCHES).get_state_set()
        return states.contains(Atspi.StateType.CHECKED)

    def is_focused(self, name):
        """Whether the control of this name has the keyboard focus."""
        return any(node.get_state_set().contains(Atspi.StateType.FOCUSED)
                   for node in self._matches(name, ()))

    def description(self, name, *roles):
        """The accessible description."""
        return self.find(name, *roles).get_description()

    def place(self, name, *roles):
        """The place of something on the screen: x, y, width, height."""
        box = self.find(name, *roles).get_extents(Atspi.CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    def settled_place(self, name, *roles):
        """Like `place`, once it no longer changes: controls move while a screen slides in."""
        places = []

        def rests():
            places.append(self.place(name, *roles))
            return len(places) >= 5 and len(set(places[-5:])) == 1
        wait_until(rests, f'"{name}" to come to rest', interval=0.05)
        return places[-1]

    def describe(self):
        """The whole tree as text."""
        try:
            return self._read(lambda nodes: "\n".join(
                f"{'  ' * depth}{node.get_role_name()} '{node.get_name()}'"
                for depth, node in nodes))
        except AssertionError as error:
            return f"({error})"


def _do(node, names):
    with warnings.catch_warnings():
        # The suggested replacement, Action.get_name, is hidden by Accessible.get_name.
        warnings.simplefilter("ignore", DeprecationWarning)
        offered = [node.get_action_name(i).lower() for i in range(node.get_n_actions())]
    for name in names:
        if name in offered:
            if not node.do_action(offered.index(name)):
                raise AssertionError(f"'{node.get_name()}' refused the action '{name}'")
            return
    raise AssertionError(f"'{node.get_name()}' offers {offered}, none of {names}")
