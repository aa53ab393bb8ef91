"""A client of a Wayland compositor, in the bytes of its protocol.

Object ids and arguments are 32-bit words, a text has its length in front. The requests and events
of an interface are numbered in the order of the protocol's XML file.
"""

import array
import socket
import struct

_DISPLAY, _REGISTRY = 1, 2
_SYNC, _GET_REGISTRY = 0, 1
_BIND = 0
_ERROR = 0
_GLOBAL = 0


def words(*values):
    """Arguments that are numbers."""
    return struct.pack(f"={len(values)}i", *values)


def text(value):
    """An argument that is a text."""
    data = value.encode() + b"\0"
    return words(len(data)) + data + bytes(-len(data) % 4)


class WaylandClient:
    """A connection to the compositor whose socket is at `path`."""

    def __init__(self, path):
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.connect(path)
        self._received = b""
        self._last = _REGISTRY
        self.send(_DISPLAY, _GET_REGISTRY, words(_REGISTRY))
        self._globals = []
        done = self.new_id()
        self.send(_DISPLAY, _SYNC, words(done))
        while (event := self.receive())[0] != done:
            sender, number, data = event
            if (sender, number) == (_REGISTRY, _GLOBAL):
                name, length = struct.unpack_from("=II", data)
                self._globals.append((name, data[8:7 + length].decode()))

    def close(self):
        self._socket.close()

    def new_id(self):
        """An id for an object that the next request makes."""
        self._last += 1
        return self._last

    def bind(self, interface, version, index=0):
        """Binds the global of this interface; if there are several, the one of the index."""
        name = [number for number, offered in self._globals if offered == interface][index]
        bound = self.new_id()
        self.send(_REGISTRY, _BIND, words(name), text(interface), words(version, bound))
        return bound

    def make(self, target, request, *arguments):
        """Sends a request that makes an object, whose id is its first argument; returns the id."""
        made = self.new_id()
        self.send(target, request, words(made), *arguments)
        return made

    def send(self, target, request, *arguments, file=None):
        """Sends a request with its arguments, and a file if it has one."""
        data = b"".join(arguments)
        message = struct.pack("=IHH", target, request, 8 + len(data)) + data
        files = [] if file is None else [
            (socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", [file]))]
        self._socket.sendmsg([message], files)

    def receive(self):
        """Waits for the next event: the id of its sender, its number, its arguments.

        Files that come with events are closed.
        """
        sender, number, size = struct.unpack("=IHH", self._read(8))
        data = self._read(size - 8)
        if (sender, number) == (_DISPLAY, _ERROR):
            raise RuntimeError(f"the compositor reports an error: {data}")
        return sender, number, data

    def _read(self, size):
        while len(self._received) < size:
            more = self._socket.recv(65536)
            if not more:
                raise EOFError("the compositor has ended")
            self._received += more
        data, self._received = self._received[:size], self._received[size:]
        return data
