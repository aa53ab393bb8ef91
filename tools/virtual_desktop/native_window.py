"""A full-screen Wayland window of one colour that prints which keys and clicks reach it.

Usage: native_window.py RRGGBB OUTPUT; the outputs are numbered from 0. Prints "shown" when it is on
its output, "focus" or "no focus" when it gets or loses the keyboard, "key" or "click" for each press.
"""

import contextlib
import os
import struct
import sys

from wayland_client import WaylandClient, words

# Requests and events, by their numbers in the protocols.
_CREATE_SURFACE, _ATTACH, _DAMAGE, _COMMIT = 0, 1, 2, 6
_SHOWN = 0
_CREATE_POOL, _CREATE_BUFFER = 0, 0
_GET_POINTER, _GET_KEYBOARD = 0, 1
_GET_XDG_SURFACE, _PONG, _GET_TOPLEVEL, _ACK_CONFIGURE = 2, 3, 1, 4
_SET_FULLSCREEN = 11
_PING, _CONFIGURE, _SIZE, _CAPABILITIES = 0, 0, 0, 0
_ENTER, _LEAVE, _KEY = 1, 2, 3
_BUTTON = 3

_HAS_POINTER, _HAS_KEYBOARD = 1, 2
_XRGB = 1


class Window:
    """The window, and the mouse and keyboard of the compositor."""

    def __init__(self, color, output):
        self._color = color
        self._size = (1, 1)
        client = self._client = WaylandClient(os.environ["WAYLAND_DISPLAY"])
        self._memory = client.bind("wl_shm", 1)
        self._seat = client.bind("wl_seat", 1)
        self._pointer = self._keyboard = None
        self._shell = client.bind("xdg_wm_base", 1)
        self._surface = client.make(client.bind("wl_compositor", 1), _CREATE_SURFACE)
        self._role = client.make(self._shell, _GET_XDG_SURFACE, words(self._surface))
        self._toplevel = client.make(self._role, _GET_TOPLEVEL)
        client.send(self._toplevel, _SET_FULLSCREEN, words(client.bind("wl_output", 1, output)))
        client.send(self._surface, _COMMIT)

    def _paint(self):
        width, height = self._size
        file = os.memfd_create("window")
        os.write(file, self._color * (width * height))
        size = width * height * 4
        pool = self._client.new_id()
        self._client.send(self._memory, _CREATE_POOL, words(pool), words(size), file=file)
        os.close(file)
        buffer = self._client.make(pool, _CREATE_BUFFER, words(0, width, height, width * 4, _XRGB))
        self._client.send(self._surface, _ATTACH, words(buffer, 0, 0))
        self._client.send(self._surface, _DAMAGE, words(0, 0, width, height))
        self._client.send(self._surface, _COMMIT)

    def _use_devices(self, capabilities):
        if capabilities & _HAS_POINTER and not self._pointer:
            self._pointer = self._client.make(self._seat, _GET_POINTER)
        if capabilities & _HAS_KEYBOARD and not self._keyboard:
            self._keyboard = self._client.make(self._seat, _GET_KEYBOARD)

    def handle(self, sender, event, data):
        """Answers an event, or prints it."""
        values = struct.unpack(f"={len(data) // 4}I", data)
        if (sender, event) == (self._shell, _PING):
            self._client.send(self._shell, _PONG, data)
        elif (sender, event) == (self._toplevel, _SIZE):
            # Zero leaves the size to the window.
            self._size = max(values[0], 1), max(values[1], 1)
        elif (sender, event) == (self._role, _CONFIGURE):
            self._client.send(self._role, _ACK_CONFIGURE, data)
            self._paint()
        elif (sender, event) == (self._seat, _CAPABILITIES):
            self._use_devices(values[0])
        elif (sender, event) == (self._surface, _SHOWN):
            print("shown", flush=True)
        elif (sender, event) == (self._keyboard, _ENTER):
            print("focus", flush=True)
        elif (sender, event) == (self._keyboard, _LEAVE):
            print("no focus", flush=True)
        elif (sender, event) == (self._keyboard, _KEY) and values[-1]:
            print("key", flush=True)
        elif (sender, event) == (self._pointer, _BUTTON) and values[-1]:
            print("click", flush=True)

    def run(self):
        """Handles events until the compositor ends."""
        while True:
            self.handle(*self._client.receive())


def main():
    # In memory the bytes of a colour are blue, green, red and one that is unused.
    window = Window(bytes.fromhex(sys.argv[1])[::-1] + b"\xff", int(sys.argv[2]))
    with contextlib.suppress(EOFError):
        window.run()


if __name__ == "__main__":
    main()
