"""The program's screens: what their controls are called, and the way to the control panel."""

import pathlib

TITLE = "Quorvane"

CHECK = "CHECK HARDWARE 🔍"
CONTINUE = "CONTINUE"
ENTER = "MAKE ME SUFFER 😭"
LEAVE = "STOP, I'M SUFFERING 😭"

BUILD_QUALITY = "Build quality"
KEYBOARD = "Keyboard"
THERMALS = "Thermals"
STABILITY = "Stability"
PERFORMANCE = "Performance"
STARTUP = "Startup"


def settings_file(environment):
    """Where a program with this environment keeps its settings."""
    return pathlib.Path(environment["XDG_CONFIG_HOME"], "quorvane", "quorvane.ini")


def skip_hardware_check(environment):
    """Makes the next launch with this environment a later one, which opens on the warning."""
    file = settings_file(environment)
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_text("[General]\nhardwareChecked=true\n", encoding="utf-8")


def wait_for_first_frame(program, timeout=10.0):
    """Waits until the program has drawn its window; earlier presses would be lost."""
    # The creak's clip is loaded with the first frame, and only the line about it has no tag.
    program.console.wait_for(lambda line: "[" not in line, "about the creak", timeout)


def open_control_panel(reader, program, timeout=10.0):
    """Goes on from the warning to the control panel; returns the accessible tree."""
    tree = reader.application(program)
    wait_for_first_frame(program, timeout)
    tree.press(ENTER, timeout)
    tree.find(LEAVE, timeout=timeout)
    return tree
