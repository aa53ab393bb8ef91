"""The verdicts on keyboards.py and keyboard_rights.py."""

from verdicts import Scenario, in_every_attempt, main

from virtual_desktop.recording import Recording

ONSET = 0.15
"""The most seconds from a key to its crack: some 0.02, and 0.1 of standstill."""

EARLY = 0.1
"""Seconds that the recording's clock may be ahead; it is silent before every action."""

CRACK = 0.13
"""The most seconds for which one crack is loud: some 0.05, and less than the rate limit."""

AUDIBLE = -50.0

STARTED = "⌨️ [KEYBOARD] Event tap started — global monitoring active"
INPUT_FILES = ("/dev/input/", "anon_inode:inotify")


class Typing(Scenario):
    """Typing on two uinput keyboards, one of which is replugged."""

    NAME = "typing"

    @classmethod
    def open(cls, attempt):
        super().open(attempt)
        facts = cls.json("program.json")
        cls.actions = {action["action"]: action for action in facts["actions"]}
        cls.sound = Recording.load(cls.folder / "sound.wav", facts["sound_start"])

    def loud(self, action):
        """When it is loud during an action, in seconds after its beginning."""
        begin, end = self.actions[action]["begin"], self.actions[action]["end"]
        return [at - begin for at in self.sound.loud_windows(begin - EARLY, end - EARLY, AUDIBLE)]

    def assert_one_crack(self, action):
        loud = self.loud(action)
        self.assertTrue(loud, f"{action}: no sound")
        print(f"{action}: sound from {loud[0]:.3f} to {loud[-1]:.3f} s")
        self.assertLess(loud[0], ONSET, action)
        self.assertLess(loud[-1] - loud[0], CRACK, action)

    def assert_silent(self, action):
        self.assertGreater(self.sound.end, self.actions[action]["end"] - EARLY)
        self.assertEqual(self.loud(action), [])

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
    def test_no_input_device_is_open_before_switching_on_and_after_switching_off(self):
        for files in (self.facts["files_before"], self.facts["files_after"]):
            self.assertTrue(files)
            self.assertEqual([file for file in files if file.startswith(INPUT_FILES)], [])


class Contract(Scenario):
    """The contract test of the event taps, on uinput keyboards."""

    NAME = "uinput_contract"

    def test_contract_is_kept(self):
        self.assert_contract_kept(15)


class WithProbe(Scenario):
    """The output of the probe, run by a user without rights."""

    @classmethod
    def open(cls, attempt):
        super().open(attempt)
        cls.probe = cls.json("probe.json")

    def assert_ended_properly(self):
        self.assertEqual(self.probe["errors"], [])
        self.assertEqual(self.probe["status"], 0)


class Refused(WithProbe):
    """A user who gets the permission to read the keyboard only after the retry."""

    NAME = "refused"

    def test_user_is_asked_once_and_permission_checked_once_more(self):
        lines = [line for line in self.probe["lines"] if line.startswith("trusted")]
        self.assertEqual(lines, ["trusted no", "trusted, with a prompt no", "trusted no"])
        self.assertEqual(len(self.probe["asked"]), 1)
        self.assertRegex(self.probe["asked"][0],
                         r"^--disable-internal-agent /\S*/quorvane-keyboard-access$")

    def test_effect_is_neither_active_nor_permitted(self):
        self.assertEqual(self.probe["lines"][-2:],
                         ["at the end active no", "at the end permitted no"])
        self.assertNotIn(STARTED, self.probe["lines"])

    def test_probe_ends_with_status_0(self):
        self.assert_ended_properly()


class Permitted(WithProbe):
    """A user who may not read the keyboard and agrees to the prompt."""

    NAME = "permitted"

    @in_every_attempt
    def test_probe_ends_with_status_0(self):
        self.assert_ended_properly()

    def test_retry_finds_the_permission_that_the_helper_gave(self):
        lines = [line for line in self.probe["lines"] if not line.startswith("✅")]
        self.assertEqual(lines, ["trusted no", "trusted, with a prompt no", "started",
                                 "trusted yes", "active yes", STARTED,
                                 "at the end active yes", "at the end permitted yes"])


class ReadableLater(WithProbe):
    """A keyboard that becomes readable only after the tap was started."""

    NAME = "readable_later"

    def test_its_keys_are_read_once_it_is_readable(self):
        self.assertEqual(self.probe["lines"], ["tap yes", "key", "key"])

    def test_probe_ends_with_status_0(self):
        self.assert_ended_properly()


if __name__ == "__main__":
    main()
