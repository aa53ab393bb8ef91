"""A window of one colour that prints which keys and clicks reach it.

Usage: window.py RRGGBB [WIDTHxHEIGHT+X+Y]; without a place it is full screen. Prints its id in
decimal once it is shown, then "key" or "click" for each press.
"""

import ctypes
import re
import sys

_xlib = ctypes.CDLL("libX11.so.6")
_ATOM_TYPE = 4
_EVENTS = {2: "key", 4: "click"}
_EXPOSE = 12
_KEY_PRESS_MASK, _BUTTON_PRESS_MASK, _EXPOSURE_MASK = 1 << 0, 1 << 2, 1 << 15
_POSITION_GIVEN = 1 << 2


class _Event(ctypes.Union):
    _fields_ = [("type", ctypes.c_int), ("room", ctypes.c_long * 24)]


class _SizeHints(ctypes.Structure):
    _fields_ = [("flags", ctypes.c_long), ("rest", ctypes.c_long * 24)]


_xlib.XOpenDisplay.restype = ctypes.c_void_p
_xlib.XOpenDisplay.argtypes = [ctypes.c_char_p]
_xlib.XDefaultRootWindow.restype = ctypes.c_ulong
_xlib.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
_xlib.XCreateSimpleWindow.restype = ctypes.c_ulong
_xlib.XCreateSimpleWindow.argtypes = [
    ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint, ctypes.c_uint,
    ctypes.c_uint, ctypes.c_ulong, ctypes.c_ulong]
_xlib.XInternAtom.restype = ctypes.c_ulong
_xlib.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
_xlib.XChangeProperty.argtypes = [
    ctypes.c_void_p, ctypes.c_ulong, ctypes.c_ulong, ctypes.c_ulong, ctypes.c_int, ctypes.c_int,
    ctypes.c_void_p, ctypes.c_int]
_xlib.XStoreName.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_char_p]
_xlib.XSetWMNormalHints.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_void_p]
_xlib.XSelectInput.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_long]
_xlib.XMapWindow.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
_xlib.XNextEvent.argtypes = [ctypes.c_void_p, ctypes.c_void_p]


def _make_full_screen(display, window):
    state = _xlib.XInternAtom(display, b"_NET_WM_STATE", 0)
    full = ctypes.c_ulong(_xlib.XInternAtom(display, b"_NET_WM_STATE_FULLSCREEN", 0))
    _xlib.XChangeProperty(display, window, state, _ATOM_TYPE, 32, 0, ctypes.byref(full), 1)


def main():
    color = int(sys.argv[1], 16)
    display = _xlib.XOpenDisplay(None)
    place = re.fullmatch(r"(\d+)x(\d+)\+(\d+)\+(\d+)", "".join(sys.argv[2:]) or "200x200+0+0")
    width, height, x, y = map(int, place.groups())
    window = _xlib.XCreateSimpleWindow(
        display, _xlib.XDefaultRootWindow(display), x, y, width, height, 0, 0, color)
    _xlib.XStoreName(display, window, b"beneath")
    if len(sys.argv) > 2:
        _xlib.XSetWMNormalHints(display, window, ctypes.byref(_SizeHints(_POSITION_GIVEN)))
    else:
        _make_full_screen(display, window)
    _xlib.XSelectInput(display, window, _KEY_PRESS_MASK | _BUTTON_PRESS_MASK | _EXPOSURE_MASK)
    _xlib.XMapWindow(display, window)
    event = _Event()
    shown = False
    while True:
        _xlib.XNextEvent(display, ctypes.byref(event))
        if event.type in _EVENTS:
            print(_EVENTS[event.type], flush=True)
        elif event.type == _EXPOSE and not shown:
            shown = True
            print(window, flush=True)


if __name__ == "__main__":
    main()
