"""The verdicts on machine_sleep.py."""

from verdicts import Scenario, in_every_attempt, main

from virtual_desktop.recording import Recording

SOON = 0.4
"""The most seconds from a cause to its sound: as in the scenarios of each effect, and some more."""


class MachineSleep(Scenario):
    """What was on before a sleep goes on after it."""

    NAME = "machine_sleep"

    def setUp(self):
        super().setUp()
        self.sound = Recording.load(self.folder / "sound.wav", self.facts["sound_start"])

    def assert_sounds_soon(self, begin):
        loud = self.sound.loud_windows(begin, begin + 0.7)
        self.assertTrue(loud, "no sound at all")
        print(f"sound after {loud[0] - begin:.3f} s")
        self.assertLess(loud[0] - begin, SOON)

    @in_every_attempt
    def test_machine_slept(self):
        self.assertGreater(self.facts["awake"] - self.facts["asleep"], 0.9)

    def test_fan_goes_on(self):
        begin, end = self.sound.start + 0.1, self.facts["fan_off"]
        self.assertGreater(self.sound.loud_time(begin, end), 0.85 * (end - begin))

    def test_key_cracks(self):
        self.assertEqual(
            self.sound.loud_windows(self.facts["fan_off"] + 0.7, self.facts["key"]), [])
        self.assert_sounds_soon(self.facts["key"])

    def test_lid_creaks(self):
        (begin,) = (entry["time"] for entry in self.json_lines("device.log")
                    if entry["event"] == "move" and entry["slope"])
        self.assert_sounds_soon(begin)

    @in_every_attempt
    def test_stop_screen_comes_and_the_stop_button_works(self):
        self.assertGreater(self.facts["stop_screen"], self.facts["awake"])

    @in_every_attempt
    def test_program_ends_by_sigterm_with_status_0(self):
        self.assertEqual(self.facts["errors"], [])
        self.assertEqual(self.facts["status"], 0)


if __name__ == "__main__":
    main()
