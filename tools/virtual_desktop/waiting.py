"""Waiting until a condition holds."""

import time

slowness = 1.0
"""The factor of the timeouts of `wait_until`, for an emulated machine."""


class TimedOut(AssertionError):
    """What was waited for did not happen in time."""


def wait_until(condition, what, timeout=10.0, interval=0.02):
    """Polls `condition` until it returns something true, and returns that; else raises TimedOut."""
    deadline = time.monotonic() + timeout * slowness
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() >= deadline:
            raise TimedOut(f"waited {timeout * slowness:g} s in vain for {what}")
        time.sleep(interval)
