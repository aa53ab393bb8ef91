"""Reads a display's pixels directly, without a picture file."""

import ctypes

import numpy

_xcb = ctypes.CDLL("libxcb.so.1")
_libc = ctypes.CDLL(None)
_Z_PIXMAP = 2
_ALL_PLANES = 0xFFFFFFFF


class _Cookie(ctypes.Structure):
    _fields_ = [("sequence", ctypes.c_uint)]


class _Screens(ctypes.Structure):
    _fields_ = [("data", ctypes.POINTER(ctypes.c_uint32)), ("rem", ctypes.c_int),
                ("index", ctypes.c_int)]


_xcb.xcb_connect.restype = ctypes.c_void_p
_xcb.xcb_connect.argtypes = [ctypes.c_char_p, ctypes.c_void_p]
_xcb.xcb_disconnect.argtypes = [ctypes.c_void_p]
_xcb.xcb_connection_has_error.argtypes = [ctypes.c_void_p]
_xcb.xcb_get_setup.restype = ctypes.c_void_p
_xcb.xcb_get_setup.argtypes = [ctypes.c_void_p]
_xcb.xcb_setup_roots_iterator.restype = _Screens
_xcb.xcb_setup_roots_iterator.argtypes = [ctypes.c_void_p]
_xcb.xcb_intern_atom.restype = _Cookie
_xcb.xcb_intern_atom.argtypes = [
    ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint16, ctypes.c_char_p]
_xcb.xcb_intern_atom_reply.restype = ctypes.c_void_p
_xcb.xcb_intern_atom_reply.argtypes = [ctypes.c_void_p, _Cookie, ctypes.c_void_p]
_xcb.xcb_get_selection_owner.restype = _Cookie
_xcb.xcb_get_selection_owner.argtypes = [ctypes.c_void_p, ctypes.c_uint32]
_xcb.xcb_get_selection_owner_reply.restype = ctypes.c_void_p
_xcb.xcb_get_selection_owner_reply.argtypes = [ctypes.c_void_p, _Cookie, ctypes.c_void_p]
_xcb.xcb_get_image.restype = _Cookie
_xcb.xcb_get_image.argtypes = [
    ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint32, ctypes.c_int16, ctypes.c_int16,
    ctypes.c_uint16, ctypes.c_uint16, ctypes.c_uint32]
_xcb.xcb_get_image_reply.restype = ctypes.c_void_p
_xcb.xcb_get_image_reply.argtypes = [ctypes.c_void_p, _Cookie, ctypes.c_void_p]
_xcb.xcb_get_image_data.restype = ctypes.c_void_p
_xcb.xcb_get_image_data.argtypes = [ctypes.c_void_p]
_libc.free.argtypes = [ctypes.c_void_p]


# The 32-bit word of a reply that holds its one number, an atom or a window.
_NUMBER = 2


def _number(reply):
    if not reply:
        raise RuntimeError("the display does not answer")
    try:
        return ctypes.cast(reply, ctypes.POINTER(ctypes.c_uint32))[_NUMBER]
    finally:
        _libc.free(reply)


class ScreenCapture:
    """The pixels of an X display of 24-bit colours, by one thread at a time."""

    def __init__(self, display, stack):
        self._connection = _xcb.xcb_connect(display.encode(), None)
        stack.callback(_xcb.xcb_disconnect, self._connection)
        if _xcb.xcb_connection_has_error(self._connection):
            raise RuntimeError(f"no connection to the display {display}")
        screen = _xcb.xcb_setup_roots_iterator(_xcb.xcb_get_setup(self._connection)).data
        # The root's id is the screen's first field, its size in pixels the sixth.
        self._root = screen[0]
        self.width, self.height = screen[5] & 0xFFFF, screen[5] >> 16

    def capture(self, x=0, y=0, width=None, height=None):
        """A part of the screen, or all of it, as an array of height x width x 3 bytes."""
        width, height = width or self.width, height or self.height
        cookie = _xcb.xcb_get_image(self._connection, _Z_PIXMAP, self._root, x, y, width, height,
                                    _ALL_PLANES)
        reply = _xcb.xcb_get_image_reply(self._connection, cookie, None)
        if not reply:
            raise RuntimeError("that part is off the screen, or the display has ended")
        try:
            data = ctypes.string_at(_xcb.xcb_get_image_data(reply), width * height * 4)
        finally:
            _libc.free(reply)
        pixels = numpy.frombuffer(data, dtype=numpy.uint8).reshape(height, width, 4)
        return pixels[:, :, 2::-1]

    def pixel(self, x, y):
        """The colour at a place, as three numbers from 0 to 255."""
        return tuple(int(value) for value in self.capture(x, y, 1, 1)[0, 0])

    def is_composited(self):
        """Whether a compositor blends the windows of the first screen."""
        name = b"_NET_WM_CM_S0"
        cookie = _xcb.xcb_intern_atom(self._connection, 0, len(name), name)
        atom = _number(_xcb.xcb_intern_atom_reply(self._connection, cookie, None))
        cookie = _xcb.xcb_get_selection_owner(self._connection, atom)
        return _number(_xcb.xcb_get_selection_owner_reply(self._connection, cookie, None)) != 0
