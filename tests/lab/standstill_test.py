#!/usr/bin/python3
"""What counts as a standstill of the machine, by logs as the machine wrote them."""

import math
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

import standstill  # noqa: E402 (it imports from the folder above)

# QEMU was stopped for 0.7 s, three times; twice the machine had nothing to do just then.
HEARTBEAT = """
{"due": 30.716431223002143, "came": 31.411410242}
{"due": 42.00643122300024, "came": 42.699495681}
{"due": 59.886431222996826, "came": 59.891643538}
""".strip().splitlines()

TRACE = """
# tracer: nop
#           TASK-PID     CPU#  |||||  TIMESTAMP  FUNCTION
#              | |         |   |||||     |         |
        quorvane-211     [000] .....    50.365776: 9p_client_req: client 18446613525533394240 request P9_TWALK tag  0
        quorvane-211     [000] .....    50.365912: 9p_client_res: client 18446613525533394240 response P9_TWALK tag  0 err 0
        quorvane-211     [000] .....    50.366182: 9p_client_req: client 18446613525533394240 request P9_TREADLINK tag  0
 QSGRenderThread-214     [000] .....    50.366190: 9p_client_req: client 18446613525533394240 request P9_TREAD tag  1
        quorvane-211     [000] .....    50.366276: 9p_client_res: client 18446613525533394240 response P9_TREADLINK tag  0 err 0
 QSGRenderThread-214     [000] .....    50.866190: 9p_client_res: client 18446613525533394240 response P9_TREAD tag  1 err 0
        quorvane-211     [000] .....    50.900000: 9p_client_req: client 18446613525533394240 request P9_TREAD tag  0
""".strip().splitlines()


def standing(*lengths, every=0.05):
    """As many spans, one after the other."""
    return [(10 + number * every, 10 + number * every + length)
            for number, length in enumerate(lengths)]


class Witnesses(unittest.TestCase):
    """What the two logs say."""

    def test_late_beat_is_a_standstill_from_when_it_was_due_until_it_came(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual([round(end - begin, 3) for begin, end in spans], [0.695, 0.693, 0.005])
        self.assertEqual(standstill.late_beats([]), [])

    def test_request_to_the_host_is_one_until_its_own_answer(self):
        spans = standstill.waits(TRACE)
        lengths = sorted(round(end - begin, 6) for begin, end in spans)
        self.assertEqual(lengths, [0.000094, 0.000136, 0.5, math.inf])

    def test_trace_of_nothing_has_none(self):
        self.assertEqual(standstill.waits(TRACE[:3]), [])


class Within(unittest.TestCase):
    """What lies in the timed part."""

    def test_what_is_outside_does_not_count(self):
        spans = standstill.late_beats(HEARTBEAT)
        self.assertEqual(standstill.within(spans, 32, 42), [])
        self.assertEqual(standstill.within(spans, 31, 42.5),
                         [(31, 31.411410242), (42.00643122300024, 42.5)])

    def test_what_both_witnesses_saw_counts_once(self):
        self.assertEqual(standstill.within([(5, 6), (5.5, 5.6), (1, 2), (5.9, 7)], 0, 9),
                         [(1, 2), (5, 7)])

    def test_request_without_an_answer_lasts_to_the_end(self):
        self.assertEqual(standstill.within([(5, math.inf)], 0, 9), [(5, 9)])


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

    def test_short_ones_far_apart_are_not(self):
        self.assertIsNone(standstill.complaint(standing(*[0.04] * 20, every=0.7)))


if __name__ == "__main__":
    unittest.main()
