#!/usr/bin/python3
"""What counts as a standstill of the machine, by a log as the machine wrote it."""

import unittest

from verdicts import main  # first: it makes virtual_desktop importable

import standstill

# QEMU was stopped for 0.7 s, three times; twice the machine had nothing to do just then.
HEARTBEAT = """
{"due": 30.716431223002143, "came": 31.411410242}
{"due": 42.00643122300024, "came": 42.699495681}
{"due": 59.886431222996826, "came": 59.891643538}
""".strip().splitlines()


def standing(*lengths, every=0.05):
    """As many spans, one after the other."""
    return [(10 + number * every, 10 + number * every + length)
            for number, length in enumerate(lengths)]


class Beats(unittest.TestCase):
    """What the heartbeat's log says."""

    def test_late_beat_is_a_standstill_from_when_it_was_due_until_it_came(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual([round(end - begin, 3) for begin, end in spans], [0.695, 0.693, 0.005])
        self.assertEqual(standstill.late_beats([]), [])


class Within(unittest.TestCase):
    """What lies in the timed part."""

    def test_what_is_outside_does_not_count(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual(standstill.within(spans, 32, 42), [])
        self.assertEqual(standstill.within(spans, 31, 42.5),
                         [(31, 31.411410242), (42.00643122300024, 42.5)])


class Complaint(unittest.TestCase):
    """Whether a measurement stands."""

    def test_recorded_standstills_make_it_void_only_if_they_fall_into_it(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual(standstill.complaint(standstill.within(spans, 30, 50)),
                         "the machine stood still for 0.69 s within a second")
        self.assertIsNone(standstill.complaint(standstill.within(spans, 50, 70)))
        self.assertIsNone(standstill.complaint([]))

    def test_many_short_ones_close_together_are_as_bad_as_a_long_one(self):
        self.assertIsNotNone(standstill.complaint(standing(0.12)))
        self.assertIsNotNone(standstill.complaint(standing(*[0.01] * 12)))
        self.assertIsNone(standstill.complaint(standing(*[0.01] * 8)))

    def test_long_one_takes_no_more_of_a_second_than_there_is(self):
        self.assertAlmostEqual(standstill.worst_second([(1, 5)]), 1)
        self.assertAlmostEqual(standstill.worst_second([(1, 1.5), (2.25, 2.5)]), 0.5)
        self.assertAlmostEqual(standstill.worst_second([(1, 1.5), (2, 2.25)]), 0.5)
        self.assertAlmostEqual(
            standstill.worst_second([(1, 1.02), (2.5, 2.6), (2.9, 3)]), 0.2)

    def test_short_ones_far_apart_are_not(self):
        self.assertIsNone(standstill.complaint(standing(*[0.04] * 20, every=0.7)))


if __name__ == "__main__":
    main()
