"""Key events through XTEST, at known instants."""

import ctypes
import time

_xlib = ctypes.CDLL("libX11.so.6")
_xtst = ctypes.CDLL("libXtst.so.6")
_xlib.XOpenDisplay.restype = ctypes.c_void_p
_xlib.XOpenDisplay.argtypes = [ctypes.c_char_p]
_xlib.XCloseDisplay.argtypes = [ctypes.c_void_p]
_xlib.XStringToKeysym.restype = ctypes.c_ulong
_xlib.XStringToKeysym.argtypes = [ctypes.c_char_p]
_xlib.XKeysymToKeycode.restype = ctypes.c_ubyte
_xlib.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
_xlib.XSync.argtypes = [ctypes.c_void_p, ctypes.c_int]
_xtst.XTestFakeKeyEvent.argtypes = [
    ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong]


class KeySender:
    """The keyboard of a display, until `stack` is closed."""

    def __init__(self, display, stack):
        self._display = _xlib.XOpenDisplay(display.encode())
        if not self._display:
            raise RuntimeError(f"{display} does not answer")
        stack.callback(_xlib.XCloseDisplay, self._display)

    def press(self, *keys):
        """Presses keys, by X name, at once; returns the earliest and latest possible instant."""
        return self._send(keys, True)

    def release(self, *keys):
        """As `press`."""
        return self._send(keys, False)

    def stroke(self, key):
        """Presses and releases a key; returns the earliest and latest instant of the press."""
        instants = self.press(key)
        self.release(key)
        return instants

    def _send(self, keys, is_press):
        codes = [_xlib.XKeysymToKeycode(self._display, _xlib.XStringToKeysym(key.encode()))
                 for key in keys]
        _xlib.XSync(self._display, 0)
        earliest = time.monotonic()
        for code in codes:
            _xtst.XTestFakeKeyEvent(self._display, code, int(is_press), 0)
        _xlib.XSync(self._display, 0)
        return earliest, time.monotonic()
