"""What keyboards.py left behind is what it should be. LAB_RESULTS names the folder of the run."""

import json
import os
import pathlib
import unittest

import sound

RESULTS = pathlib.Path(os.environ["LAB_RESULTS"])

ONSET = 0.4
"""Seconds from a key to its crack on an emulated processor."""

EARLY = 0.1
"""Seconds by which the recording's clock may be ahead; it is silent before every deed."""

CRACK = 0.35
"""Seconds that one crack lasts at most, with the output's buffer."""

AUDIBLE = -50.0

STARTED = "⌨️ [KEYBOARD] Event tap started — global monitoring active"
INPUT_FILES = ("/dev/input/", "anon_inode:inotify")


def _folder(scenario):
    folder = RESULTS / scenario
    failure = folder / "failure"
    if failure.exists():
        raise AssertionError(f"{scenario} failed in the machine:\n{failure.read_text()}")
    return folder


def _json(scenario, name):
    return json.loads((_folder(scenario) / name).read_text(encoding="utf-8"))


class Typing(unittest.TestCase):
    """The program, in a session whose keys are the kernel's."""

    @classmethod
    def setUpClass(cls):
        cls.facts = _json("typing", "program.json")
        cls.deeds = {deed["deed"]: deed for deed in cls.facts["deeds"]}
        cls.sound = sound.Recording(_folder("typing") / "sound.wav", cls.facts["sound_start"])

    def loud(self, deed):
        """When it is loud between a deed's beginning and end, in seconds from the beginning."""
        begin, end = self.deeds[deed]["begin"], self.deeds[deed]["end"]
        return [at - begin for at in self.sound.loud_windows(begin - EARLY, end - EARLY, AUDIBLE)]

    def assert_one_crack(self, deed):
        loud = self.loud(deed)
        self.assertTrue(loud, f"{deed}: no sound")
        print(f"{deed}: sound from {loud[0]:.3f} to {loud[-1]:.3f} s")
        self.assertLess(loud[0], ONSET, deed)
        self.assertLess(loud[-1] - loud[0], CRACK, deed)

    def test_no_sample_of_the_recording_was_lost(self):
        log = (_folder("typing") / "recorder.log").read_text(encoding="utf-8")
        self.assertEqual(log, "")

    def test_console_tells_that_keys_are_listened_to(self):
        lines = [line for line in self.facts["console"] if "[KEYBOARD]" in line]
        self.assertEqual(lines, ["✅ [KEYBOARD] keyboard.mp3 loaded", STARTED])

    def test_standard_error_tells_of_no_keyboard(self):
        self.assertEqual(
            [line for line in self.facts["errors"] if "input" in line or "key" in line.lower()], [])

    def test_each_of_two_keyboards_cracks(self):
        self.assert_one_crack("stroke on the first")
        self.assert_one_crack("stroke on the second")

    def test_shift_alone_is_silent(self):
        self.assertEqual(self.loud("shift alone"), [])

    def test_held_key_cracks_once(self):
        self.assert_one_crack("held key")

    def test_every_stroke_cracks_while_another_keyboard_goes_and_comes_back(self):
        strokes = [name for name in self.deeds if name.startswith("stroke ") and name[-1].isdigit()]
        self.assertEqual(len(strokes), 6)
        for stroke in strokes:
            self.assert_one_crack(stroke)

    def test_keyboard_that_was_plugged_in_again_cracks(self):
        self.assert_one_crack("stroke on the replugged")

    def test_burst_cracks_once_and_is_not_replayed(self):
        self.assert_one_crack("burst")

    def test_keyboard_that_vanishes_in_mid_event_harms_nothing(self):
        self.assert_one_crack("stroke after all that")
        self.assertTrue(self.facts["alive_before_sigterm"])
        self.assertEqual(self.facts["status"], 0)

    def test_switched_off_it_is_silent(self):
        self.assertEqual(self.loud("switched off"), [])

    def test_nothing_of_a_keyboard_is_open_before_the_switch_goes_on_or_after_it_goes_off(self):
        for files in (self.facts["files_before"], self.facts["files_after"]):
            self.assertEqual([file for file in files if file.startswith(INPUT_FILES)], [])
        sockets = [sum(file.startswith("socket:") for file in self.facts[when])
                   for when in ("files_before", "files_after")]
        # The sound's own connections may have come in between.
        print(f"sockets before and after: {sockets}")


class Contract(unittest.TestCase):
    """The taps' own test program, on a keyboard of the machine's kernel."""

    def test_contract_is_kept(self):
        result = _json("uinput_contract", "result.json")
        print(result["output"])
        self.assertEqual(result["status"], 0)
        self.assertRegex(result["output"], r"\[  PASSED  \] 1\d tests")


class Refused(unittest.TestCase):
    """A user who may not read the keyboard, and does not get the right in time."""

    @classmethod
    def setUpClass(cls):
        cls.probe = _json("refused", "probe.json")

    def test_person_is_asked_once_and_trust_looked_at_once_more(self):
        lines = [line for line in self.probe["lines"] if line.startswith("trusted")]
        self.assertEqual(lines, ["trusted no", "trusted, with a prompt no", "trusted no"])
        self.assertEqual(len(self.probe["asked"]), 1)
        self.assertRegex(self.probe["asked"][0],
                         r"^--disable-internal-agent /\S*/quorvane-keyboard-access$")

    def test_effect_is_neither_active_nor_permitted(self):
        self.assertEqual(self.probe["lines"][-2:],
                         ["at the end active no", "at the end permitted no"])
        self.assertNotIn(STARTED, self.probe["lines"])

    def test_program_ends_well(self):
        self.assertEqual(self.probe["status"], 0)


class Permitted(unittest.TestCase):
    """A user who may not read the keyboard, and agrees when asked."""

    @classmethod
    def setUpClass(cls):
        cls.probe = _json("permitted", "probe.json")

    def test_retry_finds_the_right_that_the_helper_gave(self):
        lines = [line for line in self.probe["lines"] if not line.startswith("✅")]
        self.assertEqual(lines, ["trusted no", "trusted, with a prompt no", "started",
                                 "trusted yes", "active yes", STARTED,
                                 "at the end active yes", "at the end permitted yes"])


class ReadableLater(unittest.TestCase):
    """A keyboard that is there all along, and may be read from some time on."""

    def test_it_is_heard_from_then_on(self):
        probe = _json("readable_later", "probe.json")
        self.assertEqual(probe["lines"], ["tap yes", "key", "key"])
        self.assertEqual(probe["status"], 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
