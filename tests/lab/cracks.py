"""Verdicts on the sound of scenarios in which the keyboard cracks."""

from verdicts import Scenario

from virtual_desktop.recording import Recording

ONSET = 0.15
"""The most seconds from a key to its crack: some 0.02, and 0.1 of standstill."""

EARLY = 0.1
"""Seconds that the recording's clock may be ahead; it is silent before every action."""

CRACK = 0.13
"""The most seconds for which one crack is loud: some 0.05, and less than the rate limit."""

AUDIBLE = -50.0

STARTED = "⌨️ [KEYBOARD] Event tap started — global monitoring active"


class WithCracks(Scenario):
    """A scenario with the recorded sound of the program and a log of actions."""

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
