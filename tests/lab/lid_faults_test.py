"""The verdicts on lid_faults.py."""

from verdicts import Scenario, in_every_attempt, main

from virtual_desktop.recording import Recording

RESPONSE = 2.0
"""The most seconds from a press until what it changes can be seen, on an emulated processor; a
reading that is not answered takes five."""

LATE = 1.0
"""The most seconds by which a stop screen is seen late, with the time that a capture takes."""

ONSET = 0.2
"""The most seconds from the beginning of a motion to its sound, as in lids_test.py."""


class HungLid(Scenario):
    """A sensor that stops answering while it is read."""

    NAME = "hung_lid"

    def since(self, begin, end):
        seconds = self.facts[end] - self.facts[begin]
        print(f"{seconds:.3f} s from '{begin}' to '{end}'")
        return seconds

    @in_every_attempt
    def test_sensor_was_read_and_then_did_not_answer(self):
        events = [entry["event"] for entry in self.json_lines("device.log")]
        self.assertGreater(events.count("reading"), 20)
        self.assertGreater(events.count("unanswered"), 0)

    def test_switch_answers_at_once(self):
        self.assertLess(self.since("pressed", "answered"), RESPONSE)

    def test_stop_screen_comes_in_time(self):
        self.assertGreater(self.since("switched", "stop_screen"), 15)
        self.assertLess(self.since("on", "stop_screen"), 15 + LATE)

    def test_stop_button_answers_at_once(self):
        self.assertLess(self.since("leaving", "left"), RESPONSE)

    def test_program_ends_at_once_by_sigterm_with_status_0(self):
        self.assertEqual(self.facts["errors"], [])
        self.assertEqual(self.facts["status"], 0)
        self.assertLess(self.since("sigterm", "ended"), 2)


class RepluggedLid(Scenario):
    """A sensor that is unplugged and plugged in again."""

    NAME = "replugged_lid"

    def setUp(self):
        super().setUp()
        self.sound = Recording.load(self.folder / "sound.wav", self.facts["sound_start"])
        moves = [entry for entry in self.json_lines("device.log") if entry["event"] == "move"]
        begins = [entry["time"] for entry in moves]
        self.spans = [(begin, end) for entry, begin, end in zip(moves, begins, begins[1:])
                      if entry["slope"]]
        self.assertEqual(len(self.spans), 2)

    @in_every_attempt
    def test_sensor_was_plugged_in_twice_with_another_node(self):
        events = [entry["event"] for entry in self.json_lines("device.log")]
        self.assertEqual(events.count("created"), 2)
        self.assertEqual(self.facts["other_nodes"], self.facts["nodes"])
        self.assertNotEqual(self.facts["new_nodes"], self.facts["nodes"])

    @in_every_attempt
    def test_sensor_is_named_once(self):
        lines = [line for line in self.facts["console"] if "[SENSOR]" in line]
        self.assertEqual(lines,
                         ["✅ [SENSOR] Found lid sensor! ProductID=0x8104, angle=100°"])

    def test_creak_follows_the_lid_before_and_after(self):
        for begin, end in self.spans:
            loud = self.sound.loud_windows(begin, end)
            self.assertTrue(loud, "no sound at all")
            print(f"sound after {loud[0] - begin:.3f} s")
            self.assertGreater(loud[0], begin)
            self.assertLess(loud[0] - begin, ONSET)

    def test_nothing_sounds_while_the_sensor_is_away(self):
        (_, first_end), (second_begin, _) = self.spans
        self.assertEqual(self.sound.loud_windows(first_end + 0.5, second_begin), [])

    @in_every_attempt
    def test_program_ends_by_sigterm_with_status_0(self):
        self.assertEqual(self.facts["errors"], [])
        self.assertEqual(self.facts["status"], 0)


if __name__ == "__main__":
    main()
