"""Plays scenarios, and repeats those whose timed part had a standstill."""

import pathlib
import traceback

RETRIES = 2
"""The most retries in one run, of all scenarios together; with more, the host is too busy."""


class TooManyRetries(Exception):
    """The host is too busy."""


class Player:
    """Plays scenarios one at a time, as they share the machine's HID devices and sound.

    Plays those with the `wanted` names only, if any are given. Every attempt leaves a folder: void
    ones are judged, too, except for their times.
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
        self._lab.save(name, "standstill.json", {"spans": spans, "complaint": complaint})
        self._lab.move_to_results(name, f"attempt-{attempt}")
        if complaint:
            print(f"lab: {name}, attempt {attempt} is void: {complaint}", flush=True)
        return complaint

    def finish(self):
        """Returns a summary of the run; raises LookupError if a wanted name does not exist."""
        if unknown := self._wanted - self._played:
            raise LookupError(f"no such scenario: {', '.join(sorted(unknown))}")
        return f"{len(self._played)} scenarios, {len(self._void)} of {RETRIES} retries"
