"""Mouse and keyboard of a Wayland compositor, through its protocols for tools."""

import os

from .wayland_client import WaylandClient, text, words

_LEFT_BUTTON = 0x110

# The compositor compiles it, with its own files.
_KEYMAP = b"""xkb_keymap {
xkb_keycodes { include "evdev" };
xkb_types { include "complete" };
xkb_compat { include "complete" };
xkb_symbols { include "pc+us+inet(evdev)" };
};
\0"""


class KWinInput:
    """KWin's, until `stack` is closed."""

    # Requests, by their numbers in the protocol.
    _AUTHENTICATE, _BUTTON, _MOVE_TO, _KEY = 0, 2, 9, 10

    def __init__(self, path, stack):
        self._client = WaylandClient(path)
        stack.callback(self._client.close)
        self._input = self._client.bind("org_kde_kwin_fake_input", 4)
        self._send(self._AUTHENTICATE, text("tests"), text("tests"))

    def _send(self, request, *arguments):
        self._client.send(self._input, request, *arguments)

    def click(self, x, y):
        """Moves the pointer to a place, in the compositor's units, and clicks the first button."""
        # Places are sent in 1/256 of a unit.
        self._send(self._MOVE_TO, words(x * 256, y * 256))
        for pressed in (1, 0):
            self._send(self._BUTTON, words(_LEFT_BUTTON, pressed))

    def press_key(self, code):
        """Presses and releases a key, by the kernel's number."""
        for pressed in (1, 0):
            self._send(self._KEY, words(code, pressed))


class WlrootsInput:
    """A virtual mouse and keyboard of sway, until `stack` is closed."""

    _CREATE = 0
    _MOVE_TO, _BUTTON, _FRAME = 1, 2, 4
    _SET_KEYMAP, _KEY = 0, 1
    _XKB = 1

    def __init__(self, path, size, stack):
        self._size = size
        self._client = client = WaylandClient(path)
        stack.callback(client.close)
        seat = client.bind("wl_seat", 1)
        self._pointer = self._create("zwlr_virtual_pointer_manager_v1", seat)
        self._keyboard = self._create("zwp_virtual_keyboard_manager_v1", seat)
        file = os.memfd_create("keymap")
        os.write(file, _KEYMAP)
        client.send(self._keyboard, self._SET_KEYMAP, words(self._XKB), words(len(_KEYMAP)),
                    file=file)
        os.close(file)

    def _create(self, manager, seat):
        factory = self._client.bind(manager, 1)
        created = self._client.new_id()
        self._client.send(factory, self._CREATE, words(seat, created))
        return created

    def click(self, x, y):
        """As KWinInput's."""
        self._client.send(self._pointer, self._MOVE_TO, words(0, x, y, *self._size))
        self._client.send(self._pointer, self._FRAME)
        for pressed in (1, 0):
            self._client.send(self._pointer, self._BUTTON, words(0, _LEFT_BUTTON, pressed))
            self._client.send(self._pointer, self._FRAME)

    def press_key(self, code):
        """As KWinInput's."""
        for pressed in (1, 0):
            self._client.send(self._keyboard, self._KEY, words(0, code, pressed))
