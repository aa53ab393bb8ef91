"""The verdicts on key_reader.py and key_traces.py."""

from verdicts import Scenario, in_every_attempt, main

SILENT_WITHIN = 0.5
"""The most seconds until the devices are closed, which takes some 0.01, with the standstill."""

KEY_CODES = 578
"""All but modifiers and locks (13), and the buttons of pointers, pads and remote controls (176)."""


class KeyReaderScenario(Scenario):
    """A scenario with the reader alone."""

    @property
    def facts(self):
        return self.json("facts.json")


class EveryKey(KeyReaderScenario):
    """Every key code from 1 to KEY_MAX."""

    NAME = "every_key"

    @in_every_attempt
    def test_nothing_but_one_value_is_on_the_pipe(self):
        self.assertEqual(self.facts["values"], [ord("k")])

    @in_every_attempt
    def test_every_key_is_one_byte(self):
        self.assertEqual(self.facts["keys"], KEY_CODES)


class Plugging(KeyReaderScenario):
    """Keyboards that come and go."""

    NAME = "plugging"

    @in_every_attempt
    def test_key_is_one_byte_however_long_it_is_held(self):
        self.assertEqual(self.facts["stroke"], 1)
        self.assertEqual(self.facts["held"], 1)

    @in_every_attempt
    def test_shift_alone_is_none(self):
        self.assertEqual(self.facts["shift"], 0)

    @in_every_attempt
    def test_keyboard_that_is_plugged_in_is_heard(self):
        self.assertEqual(self.facts["plugged in"], 1)

    @in_every_attempt
    def test_keyboard_that_goes_with_a_key_down_leaves_the_other(self):
        self.assertEqual(self.facts["unplugged with a key down"], 1)
        self.assertEqual(self.facts["the one left"], 1)

    @in_every_attempt
    def test_keyboards_are_heard_after_they_were_all_enumerated_again(self):
        self.assertEqual(self.facts["re-enumerated"], [1, 1])

    @in_every_attempt
    def test_nothing_is_heard_while_closed(self):
        self.assertEqual(self.facts["closed"], 0)
        self.assertEqual(self.facts["opened again"], 1)


class Away(KeyReaderScenario):
    """The user's session is not in front, or locked."""

    NAME = "away"

    def each(self):
        self.assertEqual(len(self.facts), 6)
        for cause, facts in self.facts.items():
            with self.subTest(cause):
                yield cause, facts

    def test_devices_are_closed_in_half_a_second(self):
        for cause, facts in self.each():
            print(f"{cause}: closed after {facts['closed after']:.3f} s")
            self.assertLess(facts["closed after"], SILENT_WITHIN)

    @in_every_attempt
    def test_nothing_is_heard_meanwhile(self):
        for _, facts in self.each():
            self.assertEqual(facts["away"], 0)

    @in_every_attempt
    def test_keys_are_heard_before_and_after(self):
        for _, facts in self.each():
            self.assertEqual((facts["before"], facts["back"]), (1, 1))


class AtRest(KeyReaderScenario):
    """A reader whose keyboard rests for 10 s."""

    NAME = "at_rest"

    @in_every_attempt
    def test_it_never_wakes_up(self):
        self.assertEqual(self.facts["at rest"], 0)

    @in_every_attempt
    def test_a_key_wakes_it_up(self):
        self.assertGreater(self.facts["by a key"], 0)


class Kept(KeyReaderScenario):
    """What is in memory while a password is typed."""

    NAME = "kept"

    @in_every_attempt
    def test_every_form_is_found_in_a_process_that_keeps_the_keys(self):
        self.assertEqual(self.facts["keeper"]["found"], self.facts["forms"])
        self.assertEqual(len(self.facts["forms"]), 10)

    @in_every_attempt
    def test_none_is_found_in_the_reader(self):
        self.assertEqual(len(self.facts["reader"]), 9)
        for search in self.facts["reader"]:
            self.assertEqual(search["found"], [])
            self.assertGreater(search["bytes"], 100_000)

    @in_every_attempt
    def test_the_reader_heard_every_key(self):
        self.assertEqual(self.facts["keys"], 14)


class Latency(KeyReaderScenario):
    """How long a key takes; the scenario prints it, as only ratios can be compared."""

    NAME = "latency"

    def test_every_key_was_timed(self):
        self.assertEqual(self.facts, {"reader": 200, "node": 200})


if __name__ == "__main__":
    main()
