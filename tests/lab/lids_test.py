"""The verdicts on lids.py.

LAB_CLIP is the creak's sound file.
"""

import functools
import os
import pathlib

import numpy

from verdicts import Scenario, in_every_attempt, main

from virtual_desktop.clips import Clip
from virtual_desktop.recording import Recording

CLIP = pathlib.Path(os.environ["LAB_CLIP"])

ONSET = 0.2
"""The most seconds from the beginning of a motion to its sound: a reading every 1/30 s, an update
every 1/60 s and the output's latency, 0.08 in all, and 0.1 of standstill. The first sound comes as
soon as any: the sound server is connected to, and the clip decoded, at the launch."""

RELEASE = (0.14, 0.35)
"""Bounds for the seconds from the end of a motion to silence: 0.2 until the mean slope is 0, a
reading more or less; to the upper bound a buffer and 0.1 of standstill are added."""

PLACE = 0.08
"""Seconds by which a place in the clip may be off. A restart would be off by almost a second."""

SLICE = 0.1
"""Seconds of the excerpts that are searched for in the clip; there may be dropouts between them."""

WITHOUT_GAPS = 0.85
"""The least share of loud windows in a creak: nearly all, less 0.1 of each second of standstill."""

CORRELATION = 0.8
"""The least correlation of an excerpt with the clip at its place; at wrong places it is some 0.5."""


class WithLid(Scenario):
    """A scenario with the program and lid devices."""

    @property
    def console(self):
        return self.facts["console"]

    @property
    def device(self):
        return self.json_lines("device.log")

    def sensor_lines(self):
        return [line for line in self.console if "[SENSOR]" in line]

    def assert_not_used(self, angle):
        """The only device was read, answered with `angle` and was not used."""
        angles = {entry["angle"] for entry in self.device if entry["event"] == "reading"}
        self.assertEqual(angles, {angle})
        self.assertEqual(
            self.sensor_lines(),
            ["⚠️ [SENSOR] No HID lid sensor found — using sleep/wake fallback"])

    def assert_ended_properly(self):
        """The program ran until SIGTERM, ended with status 0 and wrote nothing to standard error."""
        self.assertEqual(self.facts["errors"], [])
        self.assertTrue(self.facts["alive_before_sigterm"])
        self.assertEqual(self.facts["status"], 0)


class Creaking(WithLid):
    """A recorded scenario in which the lid moves and is unplugged during a motion."""

    MOTIONS = 0

    @classmethod
    def open(cls, attempt):
        super().open(attempt)
        facts = cls.json("program.json")
        device = cls.json_lines("device.log")
        cls.sound = Recording.load(cls.folder / "sound.wav", facts["sound_start"])
        cls.moves = [(entry["time"], entry["slope"]) for entry in device
                     if entry["event"] == "move"]
        (cls.gone,) = (entry["time"] for entry in device if entry["event"] == "gone")
        ends = [at for at, _ in cls.moves[1:]] + [cls.gone]
        cls.spans = [(at, end) for (at, slope), end in zip(cls.moves, ends) if slope]
        cls.rests = [(at, end) for (at, slope), end in zip(cls.moves, ends) if not slope]
        if len(cls.spans) != cls.MOTIONS or len(cls.rests) != cls.MOTIONS:
            raise AssertionError(f"not the moves of {cls.NAME}: {cls.moves}")

    @functools.cached_property
    def clip(self):
        """The creak's sound file."""
        return Clip(CLIP, self.sound.rate)

    def creak(self, number):
        """When the sound of a motion began and ended."""
        begin = self.spans[number][0]
        end = self.rests[number + 1][1] if number + 1 < len(self.rests) else self.gone
        loud = self.sound.loud_windows(begin, end)
        self.assertTrue(loud, f"no sound at all in motion {number + 1}")
        return loud[0], self.sound.last_sound(begin, end)

    def places_in_clip(self, number):
        """Where in the clip the sound of a motion began and ended: (earliest, latest) of each.

        The places are known from the first to the last excerpt that was found; before and after
        them the sound was the clip, too, or at worst a dropout.
        """
        begin, end = self.creak(number)
        found = []
        for at in numpy.arange(begin, end - SLICE, SLICE / 2):
            place, correlation = self.clip.locate(self.sound.samples(at, at + SLICE))
            if correlation > CORRELATION:
                found.append((at, place))
        self.assertTrue(found, f"the sound of motion {number + 1} is not the creak")
        first, last = found[0], found[-1]
        began = first[1] - (first[0] - begin), first[1]
        ended = last[1] + SLICE, last[1] + end - last[0]
        print(f"motion {number + 1}: the clip from {began[0]:.3f} to {ended[1]:.3f} s, "
              f"{len(found)} slices found, the first {first[0] - begin:.2f} s after the beginning, "
              f"the last {end - last[0]:.2f} s before the end")
        return began, ended

    def assert_silent_until_the_lid_moves(self):
        moves = self.spans[0][0]
        self.assertGreater(moves - self.sound.start, 1)
        self.assertEqual(self.sound.loud_windows(self.sound.start, moves), [])

    def assert_sensor_was_found(self):
        self.assertEqual(self.sensor_lines(),
                         ["✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=100°"])


class ColdCreak(Creaking):
    """The lid opens once, with empty file caches."""

    NAME = "cold_creak"
    MOTIONS = 1

    @in_every_attempt
    def test_console_names_the_sensor(self):
        self.assert_sensor_was_found()

    @in_every_attempt
    def test_nothing_sounds_before_the_lid_moves(self):
        self.assert_silent_until_the_lid_moves()

    def test_creak_begins_in_time_with_empty_file_caches(self):
        begin = self.spans[0][0]
        loud = self.sound.loud_windows(begin, self.facts["switching_off"])
        self.assertTrue(loud, "no sound at all")
        print(f"sound after {loud[0] - begin:.3f} s")
        self.assertLess(loud[0] - begin, ONSET)

    @in_every_attempt
    def test_program_ends_by_sigterm_with_status_0(self):
        self.assert_ended_properly()


class MovingLid(Creaking):
    """The lid rests, opens, rests, closes, rests, opens and is unplugged while it opens."""

    NAME = "moving_lid"
    MOTIONS = 3

    def test_no_sample_of_the_recording_was_lost(self):
        self.assertEqual((self.folder / "recorder.log").read_text(encoding="utf-8"), "")

    @in_every_attempt
    def test_console_names_the_sensor_its_product_and_its_angle(self):
        self.assert_sensor_was_found()

    def test_lid_is_read_thirty_times_a_second(self):
        first, last = self.rests[0][0], self.gone
        rate = sum(entry["event"] == "reading" and first <= entry["time"] < last
                   for entry in self.device) / (last - first)
        print(f"{rate:.2f} readings a second")
        self.assertGreater(rate, 29)
        self.assertLess(rate, 31)

    @in_every_attempt
    def test_nothing_sounds_before_the_lid_moves(self):
        self.assert_silent_until_the_lid_moves()

    def test_creak_begins_soon_after_the_lid_begins_to_move(self):
        for number, (begin, _) in enumerate(self.spans):
            delay = self.creak(number)[0] - begin
            print(f"motion {number + 1}: sound after {delay:.3f} s")
            self.assertGreater(delay, 0)
            self.assertLess(delay, ONSET)

    def test_creak_is_audible_while_the_lid_moves(self):
        for number, (_, end) in enumerate(self.spans):
            level = self.sound.level(self.creak(number)[0], end)
            print(f"motion {number + 1}: {level:.1f} dBFS")
            # As loud as the clip itself.
            self.assertAlmostEqual(level, -23, delta=4)

    def test_creak_has_no_gaps(self):
        for number in range(len(self.spans)):
            begin, end = self.creak(number)
            self.assertGreater(self.sound.loud_time(begin, end), (end - begin) * WITHOUT_GAPS)

    def test_creak_stops_soon_after_the_lid_comes_to_rest(self):
        for number, (_, end) in enumerate(self.spans[:-1]):
            delay = self.creak(number)[1] - end
            print(f"motion {number + 1}: silent after {delay:.3f} s")
            self.assertGreater(delay, RELEASE[0])
            self.assertLess(delay, RELEASE[1])

    def test_first_creak_starts_at_the_start_of_the_clip(self):
        (earliest, latest), _ = self.places_in_clip(0)
        self.assertLess(earliest, PLACE)
        self.assertGreater(latest, -PLACE)

    def test_each_later_creak_resumes_where_the_one_before_paused(self):
        for number in range(1, len(self.spans)):
            _, (paused_earliest, paused_latest) = self.places_in_clip(number - 1)
            (resumed_earliest, resumed_latest), _ = self.places_in_clip(number)
            self.assertGreater(resumed_earliest, PLACE, "this is the start of the clip")
            self.assertLess(resumed_earliest, paused_latest + PLACE)
            self.assertGreater(resumed_latest, paused_earliest - PLACE)

    def test_creak_goes_on_after_the_moving_lid_was_unplugged(self):
        # The last speed is kept: the clip ends and starts again.
        since = self.gone + 0.5
        until = self.facts["switching_off"]
        self.assertGreater(self.sound.loud_time(since, until), (until - since) * WITHOUT_GAPS)
        self.assertIn("✅ [AUDIO] Τελείωσε — ready for next", self.console)

    def test_switch_still_silences_the_creak_after_the_lid_was_unplugged(self):
        end = self.facts["sound_end"]
        self.assertGreater(end - self.facts["switched_off"], 1)
        self.assertEqual(self.sound.loud_windows(self.facts["switched_off"] + 0.15, end), [])

    @in_every_attempt
    def test_program_goes_on_without_the_lid_and_ends_with_status_0(self):
        self.assert_ended_properly()


class FoundByScan(WithLid):
    """A product that is not in the program's list."""

    NAME = "found_by_scan"

    def test_console_names_the_product_and_its_angle(self):
        self.assertEqual(self.sensor_lines(),
                         ["✅ [SENSOR] Found lid sensor via scan! ProductID=0xabc1, angle=100°"])

    def test_program_ends_by_sigterm_with_status_0(self):
        self.assert_ended_properly()


class FirstReading0(WithLid):
    """A reading of an angle that no open lid has."""

    NAME = "first_reading_0"

    def test_device_is_read_and_not_used(self):
        self.assert_not_used(0)

    def test_program_ends_by_sigterm_with_status_0(self):
        self.assert_ended_properly()


class FirstReading200(WithLid):
    """A reading beyond what a hinge opens to."""

    NAME = "first_reading_200"

    def test_device_is_read_and_not_used(self):
        self.assert_not_used(200)

    def test_program_ends_by_sigterm_with_status_0(self):
        self.assert_ended_properly()


class ReportOf2Bytes(WithLid):
    """A lid's angle without its high byte."""

    NAME = "report_of_2_bytes"

    def test_device_is_read_and_not_used(self):
        self.assert_not_used(100)

    def test_program_ends_by_sigterm_with_status_0(self):
        self.assert_ended_properly()


class SleepingLid(WithLid):
    """A sensor that has to wake up before its first answer."""

    NAME = "sleeping_lid"

    def test_sensor_is_found(self):
        self.assertEqual(self.sensor_lines(),
                         ["✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=100°"])

    def test_program_ends_by_sigterm_with_status_0(self):
        self.assert_ended_properly()


class SilentLid(WithLid):
    """A device that never answers; the kernel gives up each reading after five seconds."""

    NAME = "silent_lid"

    def test_launch_goes_on_without_the_sensor(self):
        self.assertTrue([entry for entry in self.device if entry["event"] == "unanswered"])
        self.assertEqual(
            self.sensor_lines(),
            ["⚠️ [SENSOR] No HID lid sensor found — using sleep/wake fallback"])
        waited = self.facts["sensor"] - self.facts["before_sensor"]
        print(f"{waited:.3f} s from the line before")
        self.assertLess(waited, 1)

    def test_program_ends_at_once_by_sigterm_with_status_0(self):
        self.assert_ended_properly()
        self.assertLess(self.facts["ended"] - self.facts["sigterm"], 2)


if __name__ == "__main__":
    main()
