"""Plays scenarios, and once more what was timed while the machine stood still."""

import pathlib
import traceback

RETRIES = 2
"""In one run, over all scenarios. A host that needs more is too busy for anything to be timed."""


class TooManyRetries(Exception):
    """The host is too busy."""


class Player:
    """Plays one scenario after the other: each owns the machine's HID devices and sound.

    Of `wanted` names only, if there are any. Every attempt leaves a folder of its own: only its
    times are void when the machine stood still, the rest is judged as well.
    """

    def __init__(self, lab, wanted=()):
        self._lab = lab
        self._wanted = set(wanted)
        self._played = set()
        self._void = []

    def __call__(self, name, scenario, *arguments, **options):
        """Plays `scenario(lab, name, ...)`; its failure does not stop the others."""
        if self._wanted and name not in self._wanted:
            return
        self._played.add(name)
        attempt = 1
        while complaint := self._attempt(attempt, name, scenario, *arguments, **options):
            self._void.append(f"{name}: {complaint}")
            if len(self._void) > RETRIES:
                raise TooManyRetries(
                    f"this host is too busy: {len(self._void)} attempts were void, and no more "
                    f"than {RETRIES} may be repeated in one run ({'; '.join(self._void)})")
            attempt += 1

    def _attempt(self, attempt, name, scenario, *arguments, **options):
        print(f"lab: {name}, attempt {attempt}", flush=True)
        try:
            scenario(self._lab, name, *arguments, **options)
        except Exception:  # pylint: disable=broad-except
            failure = traceback.format_exc()
            pathlib.Path(self._lab.folder(name), "failure").write_text(failure, encoding="utf-8")
            print(failure, flush=True)
        spans, complaint = self._lab.watch.take()
        self._lab.leave(name, "standstill.json", {"spans": spans, "complaint": complaint})
        self._lab.hand_over(name, f"attempt-{attempt}")
        if complaint:
            print(f"lab: {name}, attempt {attempt} is void: {complaint}", flush=True)
        return complaint

    def finish(self):
        """What the run was, in a line; not every name that was wanted may exist."""
        if unknown := self._wanted - self._played:
            raise LookupError(f"no such scenario: {', '.join(sorted(unknown))}")
        return f"{len(self._played)} scenarios, {len(self._void)} of {RETRIES} retries"
