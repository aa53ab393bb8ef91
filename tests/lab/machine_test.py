"""Verdicts on the HID contract on a real kernel, the udev rules, and file lookups."""

from verdicts import Scenario, main


class HidrawContract(Scenario):
    """The HID service's own test program, run in the machine."""

    NAME = "hidraw_contract"

    def test_contract_is_kept_on_a_device_of_the_kernel(self):
        self.assert_contract_kept(12)


class DeviceRights(Scenario):
    """Which devices the udev rules open to the user at the seat."""

    NAME = "device_rights"

    @classmethod
    def open(cls, attempt):
        super().open(attempt)
        rights = cls.json("rights.json")
        cls.without = {name for name, given in rights["without"].items() if given}
        cls.given = {name for name, given in rights["with"].items() if given}
        cls.devices = set(rights["with"])

    def test_without_the_rules_the_user_may_open_no_device(self):
        self.assertEqual(self.without, set())

    def test_user_may_open_the_lid_sensors_and_rumbling_devices_without_keys(self):
        self.assertEqual(self.given, {"0x8103", "0x8104", "0x8105", "0x8262",
                                      "touchpad that buzzes"})

    def test_user_may_open_neither_keyboards_nor_other_devices(self):
        self.assertEqual(self.devices - self.given, {"0xabc1", "touchpad", "keyboard",
                                                     "keyboard that buzzes"})


class FileLookups(Scenario):
    """One second of looking up files of the host."""

    NAME = "file_lookups"

    def test_waiting_for_files_of_the_host_is_no_standstill(self):
        self.assertGreater(self.json("lookups.json")["count"], 500)
        self.assertLess(sum(end - begin for begin, end in self.json("standstill.json")["spans"]),
                        0.1)


if __name__ == "__main__":
    main()
