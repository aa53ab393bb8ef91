"""Which devices udev opens to the user at the seat, with and without the program's rules."""

import contextlib
import pathlib
import re
import shutil
import subprocess

from virtual_desktop.waiting import wait_until

from input_device import (ABS_X, ABS_Y, BTN_TOOL_FINGER, BTN_TOUCH, EV_ABS, EV_FF, EV_KEY,
                          FF_RUMBLE, KEYBOARD_KEYS, InputDevice)
from lid_device import UnansweredLid

RULES = pathlib.Path(__file__).resolve().parents[2] / "resources/70-quorvane.rules"
PLACE = pathlib.Path("/run/udev/rules.d")

# Without 0x8102, which has its own kernel driver.
LIDS = (0x8103, 0x8104, 0x8105, 0x8262)
OTHER_PRODUCT = 0xABC1

FINGER = {EV_KEY: (BTN_TOUCH, BTN_TOOL_FINGER), EV_ABS: (ABS_X, ABS_Y)}
KEYS = {EV_KEY: KEYBOARD_KEYS}
BUZZ = {EV_FF: (FF_RUMBLE,)}
INPUT_DEVICES = {
    "touchpad": FINGER,
    "touchpad that buzzes": FINGER | BUZZ,
    "keyboard": KEYS,
    "keyboard that buzzes": KEYS | BUZZ,
}


def _hidraw_node():
    # The node appears a little after the device.
    nodes = pathlib.Path("/sys/class/hidraw")
    wait_until(lambda: any(nodes.iterdir()), "the node of the HID device", 10)
    node, = nodes.iterdir()
    return node


def _given_to_the_seat(node):
    """Whether udev would open this device to the user at the seat."""
    rules = subprocess.run(["udevadm", "test", "--action=add", node], check=True,
                           capture_output=True, text=True)
    # Rules that only set a tag are mentioned only if they are wrong.
    output = rules.stdout + rules.stderr
    if re.search(rf"{re.escape(RULES.name)}:\d+ ", output):
        raise RuntimeError(f"udev rejects the rules:\n{output}")
    # Not TAGS, which has those of earlier devices with this number, too.
    return re.search(r"^CURRENT_TAGS=.*:uaccess:", output, re.M) is not None


@contextlib.contextmanager
def _lid(product):
    """A lid sensor that never answers, as it is not read."""
    device = UnansweredLid(product)
    try:
        yield
    finally:
        device.unplug()


def _read():
    """The name of each device and whether the user may open it."""
    rights = {}
    for product in (*LIDS, OTHER_PRODUCT):
        with _lid(product):
            rights[f"{product:#06x}"] = _given_to_the_seat(_hidraw_node())
    for name, codes in INPUT_DEVICES.items():
        with contextlib.closing(InputDevice(name, codes)) as device:
            rights[name] = _given_to_the_seat(device.node)
    return rights


def read():
    """The rights without and with the rules."""
    without = _read()
    PLACE.mkdir(parents=True)
    shutil.copy(RULES, PLACE)
    return {"without": without, "with": _read()}
