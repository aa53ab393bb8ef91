"""The verdicts on keyboards.py."""

from verdicts import Scenario, in_every_attempt, main

from cracks import STARTED, WithCracks


class Typing(WithCracks):
    """Typing on two uinput keyboards, one of which is replugged."""

    NAME = "typing"

    def test_no_sample_of_the_recording_was_lost(self):
        self.assertEqual((self.folder / "recorder.log").read_text(encoding="utf-8"), "")

    @in_every_attempt
    def test_console_has_the_lines_of_the_keyboard(self):
        lines = [line for line in self.facts["console"] if "[KEYBOARD]" in line]
        self.assertEqual(lines, ["✅ [KEYBOARD] keyboard.mp3 loaded", STARTED])

    @in_every_attempt
    def test_standard_error_is_empty(self):
        self.assertEqual(self.facts["errors"], [])

    def test_each_of_two_keyboards_cracks(self):
        self.assert_one_crack("stroke on the first")
        self.assert_one_crack("stroke on the second")

    def test_shift_alone_is_silent(self):
        self.assert_silent("shift alone")

    def test_held_key_cracks_once(self):
        self.assert_one_crack("held key")

    def test_every_stroke_cracks_while_another_keyboard_is_replugged(self):
        strokes = [name for name in self.actions
                   if name.startswith("stroke ") and name[-1].isdigit()]
        self.assertEqual(len(strokes), 6)
        for stroke in strokes:
            self.assert_one_crack(stroke)

    def test_replugged_keyboard_cracks(self):
        self.assert_one_crack("stroke on the replugged")

    def test_burst_cracks_once_and_is_not_replayed(self):
        self.assert_one_crack("burst")

    def test_keys_crack_after_a_keyboard_was_unplugged_in_mid_event(self):
        self.assert_one_crack("stroke after all that")

    @in_every_attempt
    def test_program_ends_by_sigterm_with_status_0(self):
        self.assertTrue(self.facts["alive_before_sigterm"])
        self.assertEqual(self.facts["status"], 0)

    def test_keys_are_silent_when_switched_off(self):
        self.assert_silent("switched off")

    @in_every_attempt
    def test_program_itself_has_no_keyboard_open(self):
        self.assertEqual(self.facts["devices_of_the_program"], [])

    @in_every_attempt
    def test_no_keyboard_is_open_after_switching_off(self):
        self.assertEqual(self.facts["devices_when_off"], [])

    @in_every_attempt
    def test_a_user_who_may_read_keyboards_is_asked_nothing(self):
        self.assertEqual(self.facts["asked"], [])


class Contract(Scenario):
    """The contract test of the event taps, on uinput keyboards."""

    NAME = "uinput_contract"

    def test_contract_is_kept(self):
        self.assert_contract_kept(15)


if __name__ == "__main__":
    main()
