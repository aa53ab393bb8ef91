"""The verdicts on force_feedback.py: which effects were played, and when."""

import math
import signal
import statistics

from verdicts import Scenario, in_every_attempt, main

FF_RUMBLE = 0x50

# Length in milliseconds, strong and weak motor.
ALIGNMENT, LEVEL_CHANGE, GENERIC = (25, 0x6000, 0x9000), (25, 0x9000, 0x4000), (20, 0, 0x6000)

FAN_TICK = 0.05
BACK_TO_BACK = 0.005
"""The most seconds between two pulses of one tick, on an emulated processor."""

KEPT, CLOSED_WITHIN = 0.4, 1.7
"""Bounds for the seconds from an effect's end until its device is closed: two checks, half a second
apart, have to find it unused."""

RAMP = 3.0
"""Seconds over which the pulse rate rises."""

TICK = 1 / 60


class WithPad(Scenario):
    """A scenario with logs of its devices."""

    def events(self, kind, begin=-math.inf, end=math.inf, pad="pad"):
        """The events of one kind between two instants."""
        return [entry for entry in self.json_lines(f"{pad}.log")
                if entry["event"] == kind and begin <= entry["time"] < end]

    def times(self, kind, begin=-math.inf, end=math.inf, pad="pad"):
        """The times of these events."""
        return [entry["time"] for entry in self.events(kind, begin, end, pad)]

    def pulses(self, begin, end):
        """The pulses played between two instants: length, strong and weak motor of each."""
        known, played = {}, []
        for entry in self.json_lines("pad.log"):
            if entry["event"] == "upload":
                known[entry["effect"]] = entry["length"], entry["strong"], entry["weak"]
            elif entry["event"] == "play" and begin <= entry["time"] < end:
                played.append(known[entry["effect"]])
        return played

    def assert_erased(self, begin, end):
        """Each effect that was uploaded between two instants is also erased once between them."""
        uploaded = [entry["effect"] for entry in self.events("upload", begin, end)]
        erased = [entry["effect"] for entry in self.events("erase", begin, end)]
        self.assertEqual(len(uploaded), 3)
        self.assertEqual(sorted(erased), sorted(uploaded))


def ideal_pulses(begin, end):
    """How many pulses come from `begin` to `end` seconds after the start, on a perfect clock."""
    count = 0
    for number in range(1, int(end / TICK) + 1):
        elapsed = number * TICK
        rate = min(elapsed / RAMP, 1) * 20 + 5
        if elapsed >= begin and math.fmod(elapsed, 1 / rate) < TICK:
            count += 1
    return count


class Felt(WithPad):
    """The fan, then the engine, then the fan until the end."""

    NAME = "felt"

    @in_every_attempt
    def test_nothing_is_uploaded_before_an_effect_is_switched_on(self):
        self.assertTrue(self.facts["untouched"])

    @in_every_attempt
    def test_each_start_uploads_three_rumbles(self):
        uploads = [(effect["type"], effect["length"], effect["strong"], effect["weak"])
                   for effect in self.events("upload")]
        self.assertEqual(uploads, 3 * [(FF_RUMBLE, *ALIGNMENT), (FF_RUMBLE, *LEVEL_CHANGE),
                                       (FF_RUMBLE, *GENERIC)])

    def test_fan_plays_twenty_pairs_of_pulses_a_second(self):
        plays = self.times("play", self.facts["fan_on"], self.facts["switching_off"])
        firsts, seconds = plays[:-1:2], plays[1::2]
        gaps = [later - earlier for earlier, later in zip(firsts, firsts[1:])]
        within = [second - first for first, second in zip(firsts, seconds)]
        length = firsts[-1] - firsts[0]
        rate = len(gaps) / length
        print(f"{len(plays)} pulses in {length:.2f} s: {rate:.2f} pairs a second, a pair "
              f"{statistics.median(within) * 1000:.1f} ms apart, the longest pause {max(gaps):.3f} s")
        self.assertGreater(length, 4)
        self.assertAlmostEqual(statistics.median(gaps), FAN_TICK, delta=0.003)
        self.assertLess(statistics.median(within), BACK_TO_BACK)
        # Only ticks that the emulated processor missed are skipped.
        self.assertGreater(rate, 18)
        self.assertLess(rate, 20.2)

    @in_every_attempt
    def test_each_pair_is_a_level_change_and_a_generic_pulse(self):
        for begin, end in (("fan_on", "fan_off"), ("fan_on_again", "ended")):
            pulses = self.pulses(self.facts[begin], self.facts[end])
            self.assertGreater(len(pulses), 20)
            self.assertEqual(pulses[::2], [LEVEL_CHANGE] * len(pulses[::2]))
            self.assertEqual(pulses[1::2], [GENERIC] * len(pulses[1::2]))

    @in_every_attempt
    def test_console_has_the_lines_of_the_engine(self):
        self.assertEqual(self.facts["console"][-6:], [
            "🚜 [STARTUP] Playing tractor + rumble + haptic!",
            "🔊 [RUMBLE] Started with 3.0s ramp-up", "📳 [HAPTIC] Started with ramp-up",
            "🔊 [RUMBLE] Stopped", "📳 [HAPTIC] Stopped", "🚜 [STARTUP] Sequence complete"])
        self.assertEqual(self.facts["errors"], [])

    @in_every_attempt
    def test_engine_plays_alignment_pulses_only(self):
        pulses = self.pulses(self.facts["awake"], self.facts["complete"])
        self.assertGreater(len(pulses), 20)
        self.assertEqual(pulses, [ALIGNMENT] * len(pulses))

    def test_effects_stop_and_are_erased_soon_after_the_fan_stops(self):
        off = self.facts["fan_off"]
        self.assert_erased(self.facts["fan_on"], self.facts["awake"])
        erased = self.times("erase", off)[0] - off
        print(f"erased {erased:.2f} s after the fan stopped")
        self.assertGreater(erased, KEPT)
        self.assertLess(erased, CLOSED_WITHIN)
        last = self.times("play", self.facts["fan_on"], self.facts["awake"])[-1]
        self.assertLess(last - off, 0.1)

    def test_startup_pulses_rise_from_five_to_twenty_five_a_second(self):
        begin = self.facts["awake"]
        plays = self.times("play", begin, self.facts["complete"])
        # A late tick can drop or double a pulse; the first pulses come while the device is opened.
        for since, until, spare in ((0, 1, 4), (1, 2, 3), (2, 3, 3), (3, 5, 5)):
            felt = sum(begin + since <= at < begin + until for at in plays)
            ideal = ideal_pulses(since, until)
            print(f"second {since} to {until}: {felt} pulses, {ideal} on a perfect clock")
            self.assertAlmostEqual(felt, ideal, delta=spare)

    def test_effects_stop_and_are_erased_after_the_startup_sound(self):
        complete = self.facts["complete"]
        plays = self.times("play", self.facts["awake"], self.facts["fan_on_again"])
        self.assertLess(plays[-1] - complete, 0.1)
        self.assert_erased(self.facts["awake"], self.facts["fan_on_again"])
        erased = self.times("erase", complete)[0] - complete
        print(f"erased {erased:.2f} s after the engine stopped")
        self.assertGreater(erased, KEPT)
        self.assertLess(erased, CLOSED_WITHIN)

    @in_every_attempt
    def test_sigterm_erases_the_effects(self):
        self.assertEqual(self.facts["status"], 0)
        self.assert_erased(self.facts["fan_on_again"], self.facts["ended"])
        self.assertEqual(self.times("play", self.facts["ended"]), [])


class Unplugged(WithPad):
    """The device is unplugged and another one is plugged in."""

    NAME = "unplugged"

    def test_first_device_rumbles_until_it_is_unplugged(self):
        plays = self.times("play", pad="first")
        self.assertGreater(len(plays), 20)

    def test_running_fan_does_not_move_to_the_second_device(self):
        self.assertEqual(self.times("play", self.facts["unplugging"],
                                    self.facts["switching_off"], pad="second"), [])

    def test_next_start_of_the_fan_uses_the_second_device(self):
        self.assertGreaterEqual(len(self.times("play", pad="second")), 2)

    def test_standard_error_is_empty(self):
        self.assertEqual(self.facts["errors"], [])

    def test_program_goes_on_and_ends_with_status_0(self):
        self.assertTrue(self.facts["alive_before_sigterm"])
        self.assertEqual(self.facts["status"], 0)


class Killed(WithPad):
    """The program is killed and cannot clean up."""

    NAME = "killed"

    @in_every_attempt
    def test_kernel_erases_the_effects_of_a_killed_program(self):
        self.assertEqual(self.facts["status"], -signal.SIGKILL)
        self.assert_erased(-math.inf, math.inf)

    def test_nothing_is_played_after_the_kill(self):
        self.assertEqual(self.times("play", self.facts["killed"] + 0.1), [])


if __name__ == "__main__":
    main()
