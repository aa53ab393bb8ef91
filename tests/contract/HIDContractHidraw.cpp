// Runs the contract on a real hidraw device, 05AC:8104. The cases fail without it.
// QUORVANE_HIDRAW_ANGLE may give the angle of its lid, in degrees.

#include <cstdlib>

#include "platform/linux/hid/LinuxHID.h"
#include "tests/contract/HIDContract.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class HidrawBackend final : public HIDBackend {
public:
    HIDService& service() override { return m_hid; }

    [[nodiscard]] std::optional<int> productID() const override { return 0x8104; }

    [[nodiscard]] std::optional<int> angle() const override {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the test has one thread.
        const char* angle = std::getenv("QUORVANE_HIDRAW_ANGLE");
        return angle ? std::optional(std::stoi(angle)) : std::nullopt;
    }

private:
    // Without industrial I/O, so that only hidraw devices are found.
    TemporaryFolder m_noSysfs;
    LinuxHID m_hid{m_noSysfs.path()};
};

INSTANTIATE_TEST_SUITE_P(LinuxHidraw, HIDContract, on<HidrawBackend>());

} // namespace

} // namespace quorvane
