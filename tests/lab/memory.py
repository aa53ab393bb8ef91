"""Searches a process's memory for keys that were typed, in any form that a program would keep."""

import array
import re
import struct

EV_KEY, DOWN = 1, 1

APART = 16
"""The most events that are between two keys: of one stroke there are six, and some may repeat."""

EVENT = 24
"""The size of an input_event."""

X11_OFFSET = 8
"""What is added to a key's code in X11 and in Wayland's key maps."""


def _downs(keys):
    """The end of each event with which a key goes down; the time stamp comes before it."""
    return [struct.pack("<HHi", EV_KEY, key, DOWN) for key in keys]


def _records(keys):
    """A pattern of these events, in this order, with others between them."""
    between = b"(?s:.{%d})(?s:.{%d}){0,%d}?" % (EVENT - 8, EVENT, APART)
    return re.compile(between.join(map(re.escape, _downs(keys))))


def forms(keys, text):
    """What to search for, by name: what has to be there and, if that is not all, a pattern."""
    found = {"input_event records": (_downs(keys)[0], _records(keys))}
    for offset, whose in ((0, "key codes"), (X11_OFFSET, "X11 key codes")):
        for kind, size in (("B", 8), ("H", 16), ("I", 32)):
            codes = array.array(kind, [key + offset for key in keys]).tobytes()
            found[f"{size}-bit {whose}"] = codes, None
    for encoding in ("utf-8", "utf-16-le", "utf-32-le"):
        found[f"text in {encoding}"] = text.encode(encoding), None
    return found


def _writable(pid):
    """The parts of the memory that the process has written, or may have."""
    with open(f"/proc/{pid}/maps", encoding="ascii") as maps, \
            open(f"/proc/{pid}/mem", "rb", 0) as memory:
        for line in maps:
            place, rights = line.split()[:2]
            if not rights.startswith("rw"):
                continue
            begin, end = (int(part, 16) for part in place.split("-"))
            try:
                memory.seek(begin)
                yield memory.read(end - begin)
            except OSError:
                pass  # not mapped any more, or memory of a device


def search(pid, wanted):
    """Which of the forms are there, and how many bytes were searched; for root only."""
    found, size = set(), 0
    for part in _writable(pid):
        size += len(part)
        found.update(name for name, (literal, pattern) in wanted.items()
                     if literal in part and (not pattern or pattern.search(part)))
    return {"found": sorted(found), "bytes": size}
