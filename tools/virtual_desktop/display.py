"""A virtual X display with a window manager."""

import os
import subprocess

from . import processes


class Display:
    """An Xvfb on a free display number, by default with an openbox on it."""

    def __init__(self, env, stack, width=1280, height=1024, has_window_manager=True):
        self.name = self._start_server(env, stack, width, height)
        self._env = dict(env, DISPLAY=self.name)
        if has_window_manager:
            self._start_window_manager(stack)

    def _start_window_manager(self, stack):
        manager = processes.Server(["openbox", "--sm-disable"], self._env, stack)
        manager.wait_until(lambda: self._xdotool_works("get_num_desktops"), "the window manager")

    def _start_server(self, env, stack, width, height):
        # With -displayfd Xvfb picks a free number itself, without a race.
        read_end, write_end = os.pipe()
        try:
            server = processes.Server(
                ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{width}x{height}x24",
                 "-nolisten", "tcp", "-noreset"],
                env, stack, pass_fds=(write_end,))
        finally:
            os.close(write_end)
        self.server_pid = server.process.pid
        with os.fdopen(read_end) as answer:
            number = answer.readline().strip()
        if not number:
            # It has closed the pipe, and so is about to end.
            server.log.wait_for_end()
            raise server.failure("it has no display number")
        return f":{number}"

    def _xdotool_works(self, *arguments):
        return subprocess.run(
            ["xdotool", *arguments], env=self._env, capture_output=True).returncode == 0

    def xdotool(self, *arguments):
        """Runs xdotool and returns what it prints; an error if it fails."""
        return subprocess.run(
            ["xdotool", *map(str, arguments)], env=self._env, check=True, capture_output=True,
            text=True, timeout=10).stdout.strip()

    def click(self, x, y):
        """Moves the pointer to a place on the screen and clicks the first button."""
        self.xdotool("mousemove", x, y, "click", 1)

    def drag_with_alt(self, button, start, by):
        """Drags with the Alt key held: with the third button, resizes the window under it."""
        x, y = start
        self.xdotool("keydown", "alt", "mousemove", x, y, "mousedown", button)
        for step in (1, 2, 3):
            self.xdotool("mousemove", x + by[0] * step // 3, y + by[1] * step // 3)
        self.xdotool("mouseup", button, "keyup", "alt")

    def press_key(self, key):
        """Presses and releases a key, by its X name ("Tab", "space")."""
        self.xdotool("key", key)

    def windows(self, title):
        """The ids of the visible windows with exactly this title."""
        found = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], env=self._env,
            capture_output=True, text=True)
        return [int(line) for line in found.stdout.split()]

    def focused(self):
        """The id of the window that has the keyboard focus."""
        return int(self.xdotool("getwindowfocus"))

    def geometry(self, window):
        """Place and size of a window: x, y, width, height."""
        shell = self.xdotool("getwindowgeometry", "--shell", window)
        values = dict(line.split("=") for line in shell.splitlines())
        return tuple(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def close_window(self):
        """Has the window manager close the focused window, as the button in its title bar does."""
        self.press_key("alt+F4")

    def minimise(self, window):
        """Has the window manager minimise a window."""
        self.xdotool("windowminimize", window)

    def restore(self, window):
        """Has the window manager restore a minimised window."""
        self.xdotool("windowactivate", window)

    def screenshot(self, path, window="root"):
        """Writes a picture of the whole screen, or of one window, as PNG."""
        subprocess.run(
            ["import", "-silent", "-window", str(window), f"png:{path}"], env=self._env,
            check=True, capture_output=True, timeout=20)
