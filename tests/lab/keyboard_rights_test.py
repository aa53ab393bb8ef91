"""The verdicts on keyboard_rights.py."""

from verdicts import Scenario, in_every_attempt, main

from cracks import STARTED, WithCracks

ACTION = "org.quorvane.key-reader"
NOBODY = "65534"
READER = "/usr/libexec/quorvane-key-reader"


class WithProbe(Scenario):
    """The output of the probe, run by a user without rights."""

    @classmethod
    def open(cls, attempt):
        super().open(attempt)
        cls.probe = cls.json("probe.json")

    def assert_ended_properly(self):
        self.assertEqual(self.probe["status"], 0)

    def assert_asked_once(self):
        self.assertEqual([entry.get("asked") for entry in self.probe["asked"]], [ACTION])


class Refused(WithProbe):
    """A user who closes polkit's question."""

    NAME = "refused"

    def test_user_is_asked_once_and_permission_checked_once_more(self):
        lines = [line for line in self.probe["lines"] if line.startswith("trusted")]
        self.assertEqual(lines, ["trusted no", "trusted, with a prompt no", "trusted no"])
        self.assert_asked_once()

    def test_effect_is_neither_active_nor_permitted(self):
        self.assertEqual(self.probe["lines"][-2:],
                         ["at the end active no", "at the end permitted no"])
        self.assertNotIn(STARTED, self.probe["lines"])

    def test_probe_ends_with_status_0(self):
        self.assert_ended_properly()


class Permitted(WithProbe):
    """A user who agrees to polkit's question at once."""

    NAME = "permitted"

    @in_every_attempt
    def test_probe_ends_with_status_0(self):
        self.assert_ended_properly()

    def test_retry_finds_the_permission(self):
        lines = [line for line in self.probe["lines"] if not line.startswith("✅")]
        self.assertEqual(lines, ["trusted no", "trusted, with a prompt no", "started",
                                 "trusted yes", "active yes", STARTED,
                                 "at the end active yes", "at the end permitted yes"])
        self.assert_asked_once()


class Granted(WithCracks):
    """The program with a reader that polkit has started, until it is killed."""

    NAME = "granted"

    def test_key_cracks(self):
        self.assert_one_crack("stroke")

    @in_every_attempt
    def test_user_is_asked_once_and_told_for_how_long(self):
        question, = self.facts["asked"]
        self.assertEqual(question["asked"], ACTION)
        self.assertIn("Until Quorvane ends", question["message"])
        self.assertEqual(question["icon"], "quorvane")

    @in_every_attempt
    def test_program_itself_has_no_keyboard_open(self):
        self.assertEqual(self.facts["devices_of_the_program"], [])

    @in_every_attempt
    def test_reader_keeps_no_right_of_root(self):
        status = self.facts["rights"]["status"]
        self.assertEqual(status["Uid"], [NOBODY] * 4)
        self.assertNotIn("0", status["Gid"])
        self.assertEqual(len(status["Groups"]), 1)
        for capabilities in ("CapPrm", "CapEff", "CapAmb"):
            self.assertEqual(int(status[capabilities][0], 16), 0, capabilities)
        self.assertEqual(status["NoNewPrivs"], ["1"])

    @in_every_attempt
    def test_reader_leaves_no_core(self):
        self.assertFalse(self.facts["rights"]["can_be_dumped"])
        self.assertEqual(self.facts["rights"]["core_limits"], ["0", "0"])

    @in_every_attempt
    def test_other_programs_of_the_user_read_neither_the_keyboard_nor_the_reader(self):
        self.assertFalse(self.facts["rights"]["others_may_read_the_node"])
        self.assertFalse(self.facts["rights"]["others_may_read_its_memory"])

    @in_every_attempt
    def test_user_can_end_the_reader(self):
        self.assertTrue(self.facts["rights"]["others_may_signal_it"])

    @in_every_attempt
    def test_system_log_names_the_user_and_the_device(self):
        lines = [line for line in self.facts["log"] if "quorvane-key-reader" in line]
        print("\n".join(lines))
        self.assertTrue([line for line in lines if NOBODY in line or "nobody" in line])
        self.assertTrue([line for line in lines if "lab keyboard one" in line])

    @in_every_attempt
    def test_no_key_is_found_in_the_program_and_the_reader(self):
        kept = self.facts["kept"]
        for process in ("program", "reader"):
            print(process, kept[process])
            self.assertEqual(kept[process]["found"], [], process)
            self.assertGreater(kept[process]["bytes"], 100_000, process)

    def test_reader_ends_within_a_second_of_a_killed_program(self):
        outlived_by = self.facts["outlived_by"]
        print(f"the reader ended {outlived_by:.3f} s after the program was killed")
        self.assertLess(outlived_by, 1.0)


class Withdrawn(Scenario):
    """The control panel is left, and then the program, while polkit's question is open."""

    NAME = "withdrawn"

    @in_every_attempt
    def test_question_is_taken_away(self):
        self.assertEqual([entry.get("asked", "taken away") for entry in self.facts["asked"]],
                         [ACTION, "taken away", ACTION, "taken away"])

    @in_every_attempt
    def test_program_ends_by_sigterm_with_status_0(self):
        self.assertEqual(self.facts["status"], 0)


class GrantedLate(Scenario):
    """A user who takes longer to agree than the effect waits."""

    NAME = "granted_late"

    @in_every_attempt
    def test_nothing_is_open_until_it_is_switched_on_again(self):
        self.assertEqual(self.facts["devices_before"], [])

    @in_every_attempt
    def test_hint_says_what_to_do_until_it_is_done(self):
        print(self.facts["hint"])
        self.assertIn("again", self.facts["hint"])
        self.assertEqual(self.facts["hint_at_last"], "")

    @in_every_attempt
    def test_user_is_asked_once(self):
        self.assertEqual([entry.get("asked") for entry in self.facts["asked"]],
                         [ACTION])


if __name__ == "__main__":
    main()
