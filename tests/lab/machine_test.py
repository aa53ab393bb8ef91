"""What the machine's kernel and its udev make of the program, and what counts as standing still."""

from verdicts import Scenario, main


class HidrawContract(Scenario):
    """The HID service's own test program, run in the machine."""

    NAME = "hidraw_contract"

    def test_contract_is_kept_on_a_device_of_the_kernel(self):
        self.assert_contract_kept(12)


class DeviceRights(Scenario):
    """What udev makes of the program's rules: who may open which device."""

    NAME = "device_rights"

    @classmethod
    def open(cls, attempt):
        super().open(attempt)
        rights = cls.json("rights.json")
        cls.without = {name for name, given in rights["without"].items() if given}
        cls.given = {name for name, given in rights["with"].items() if given}
        cls.devices = set(rights["with"])

    def test_without_the_rules_the_person_is_let_at_no_device(self):
        self.assertEqual(self.without, set())

    def test_person_is_let_at_the_lid_sensors_and_at_what_buzzes_and_has_no_keys(self):
        self.assertEqual(self.given, {"0x8103", "0x8104", "0x8105", "0x8262",
                                      "touchpad that buzzes"})

    def test_person_is_not_let_at_keyboards_nor_other_devices(self):
        self.assertEqual(self.devices - self.given, {"0xabc1", "touchpad", "keyboard",
                                                     "keyboard that buzzes"})


class Asking(Scenario):
    """One second of questions to the host."""

    NAME = "asking"

    def test_waiting_for_the_hosts_files_is_no_standstill(self):
        # Else all attempts were void, and the machine's run has failed.
        self.assertGreater(self.json("asked.json")["asked"], 500)
        self.assertLess(sum(end - begin for begin, end in self.json("standstill.json")["spans"]),
                        0.1)


if __name__ == "__main__":
    main()
