"""Waiting for a condition instead of for a guessed length of time."""

import time


class TimedOut(AssertionError):
    """What was waited for did not happen in time."""


def wait_until(condition, what, timeout=10.0, interval=0.02):
    """Polls `condition` until it returns something true, and returns that."""
    deadline = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() >= deadline:
            raise TimedOut(f"waited {timeout:g} s in vain for {what}")
        time.sleep(interval)
