#include "platform/macos/MacHID.h"
#include "tests/contract/HIDContract.h"
#include "tests/macos/FakeMachine.h"

namespace quorvane {

namespace {

class MacBackend final : public HIDBackend {
public:
    MacBackend() {
        // Another device of the vendor, before the sensor.
        fakes::machine().devices.push_back(std::make_shared<fakes::Device>(
            fakes::Device{.integers = {{"VendorID", 0x05AC}, {"ProductID", 0x0342}}}));
        fakes::machine().devices.push_back(m_sensor);
        setAngle(112);
    }

    HIDService& service() override { return m_hid; }

    [[nodiscard]] std::optional<int> productID() const override { return 0x8104; }

    [[nodiscard]] std::optional<int> angle() const override { return 112; }

    void setAngle(int degrees) override {
        m_sensor->report = {1, static_cast<std::uint8_t>(degrees & 0xFF),
                            static_cast<std::uint8_t>(degrees >> 8)};
    }

    void unplug() override {
        for (const auto& device : fakes::machine().devices)
            device->pluggedIn = false;
    }

private:
    FakeMachine m_machine;
    std::shared_ptr<fakes::Device> m_sensor = std::make_shared<fakes::Device>(
        fakes::Device{.integers = {{"VendorID", 0x05AC}, {"ProductID", 0x8104}}});
    MacHID m_hid;
};

INSTANTIATE_TEST_SUITE_P(MacFake, HIDContract, on<MacBackend>());

} // namespace

} // namespace quorvane
