#include "platform/macos/MacEventTapService.h"
#include "tests/contract/EventTapContract.h"
#include "tests/macos/FakeMachine.h"

namespace quorvane {

namespace {

class MacBackend final : public EventTapBackend {
public:
    EventTapService& service() override { return m_taps; }

    void pressKey() override { send(TapEventType::KeyDown); }

    void releaseKey() override { send(TapEventType::KeyUp); }

    void repeatKey() override { send(TapEventType::KeyDown, 1); }

    void pressShift() override { send(TapEventType::FlagsChanged); }

    void releaseShift() override { send(TapEventType::FlagsChanged); }

private:
    static void send(TapEventType type, std::int64_t autorepeat = 0) {
        EXPECT_TRUE(fakes::deliver(static_cast<std::uint32_t>(type), autorepeat));
    }

    FakeMachine m_machine;
    MacEventTapService m_taps;
};

INSTANTIATE_TEST_SUITE_P(MacFake, EventTapContract, on<MacBackend>());
INSTANTIATE_TEST_SUITE_P(MacFake, EventKindsContract, on<MacBackend>());

} // namespace

} // namespace quorvane
