#!/usr/bin/python3
"""What counts as a standstill, with a log from the machine."""

import unittest

from verdicts import main  # first: it makes virtual_desktop importable

import standstill

# QEMU was stopped for 0.7 s three times; the machine was idle during the first two.
HEARTBEAT = """
{"due": 30.716431223002143, "came": 31.411410242}
{"due": 42.00643122300024, "came": 42.699495681}
{"due": 59.886431222996826, "came": 59.891643538}
""".strip().splitlines()


def standing(*lengths, every=0.05):
    """Spans of these lengths, one every `every` seconds."""
    return [(10 + number * every, 10 + number * every + length)
            for number, length in enumerate(lengths)]


class Beats(unittest.TestCase):
    """Reading the heartbeat's log."""

    def test_late_beat_is_a_standstill_from_when_it_was_due_until_it_came(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual([round(end - begin, 3) for begin, end in spans], [0.695, 0.693, 0.005])
        self.assertEqual(standstill.late_beats([]), [])


class Within(unittest.TestCase):
    """Which spans lie in the timed part."""

    def test_spans_outside_the_timed_part_do_not_count(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual(standstill.within(spans, 32, 42), [])
        self.assertEqual(standstill.within(spans, 31, 42.5),
                         [(31, 31.411410242), (42.00643122300024, 42.5)])


class Complaint(unittest.TestCase):
    """When measured times are void."""

    def test_times_are_void_only_if_a_standstill_overlaps_them(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual(standstill.complaint(standstill.within(spans, 30, 50)),
                         "the machine stood still for 0.69 s within a second")
        self.assertIsNone(standstill.complaint(standstill.within(spans, 50, 70)))
        self.assertIsNone(standstill.complaint([]))

    def test_short_standstills_close_together_add_up(self):
        self.assertIsNotNone(standstill.complaint(standing(0.12)))
        self.assertIsNotNone(standstill.complaint(standing(*[0.01] * 12)))
        self.assertIsNone(standstill.complaint(standing(*[0.01] * 8)))

    def test_only_the_part_of_a_standstill_within_the_second_counts(self):
        self.assertAlmostEqual(standstill.worst_second([(1, 5)]), 1)
        self.assertAlmostEqual(standstill.worst_second([(1, 1.5), (2.25, 2.5)]), 0.5)
        self.assertAlmostEqual(standstill.worst_second([(1, 1.5), (2, 2.25)]), 0.5)
        self.assertAlmostEqual(
            standstill.worst_second([(1, 1.02), (2.5, 2.6), (2.9, 3)]), 0.2)

    def test_short_standstills_far_apart_are_allowed(self):
        self.assertIsNone(standstill.complaint(standing(*[0.04] * 20, every=0.7)))


if __name__ == "__main__":
    main()
