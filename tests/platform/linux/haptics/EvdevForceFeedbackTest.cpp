#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/input.h>
#include <linux/ioctl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/haptics/EvdevForceFeedback.h"
#include "tests/support/FakeIoctl.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;

/// A device whose node is a named pipe, with a fake ioctl.
class EvdevForceFeedbackTest : public testing::Test {
protected:
    EvdevForceFeedbackTest() {
        EXPECT_EQ(mkfifo(m_node.node.c_str(), 0600), 0);
        m_reader = ::open(m_node.node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }

    ~EvdevForceFeedbackTest() override { closeReader(); }

    void closeReader() {
        if (m_reader >= 0)
            close(m_reader);
        m_reader = -1;
    }

    std::optional<int> ioctlResult(int descriptor, unsigned long request, void* argument) {
        if (_IOC_TYPE(request) != 'E')
            return std::nullopt;
        m_access = fcntl(descriptor, F_GETFL);
        if (_IOC_NR(request) == _IOC_NR(EVIOCGBIT(EV_FF, 0)) && m_has >= 0) {
            constexpr int bits = sizeof(long) * CHAR_BIT;
            static_cast<unsigned long*>(argument)[m_has / bits] = 1UL << m_has % bits;
            return 16;
        }
        if (request == EVIOCSFF && m_takesEffects) {
            auto& effect = *static_cast<ff_effect*>(argument);
            m_uploaded.push_back(effect);
            effect.id = 7;
            return 0;
        }
        if (request == EVIOCRMFF) {
            m_erased.push_back(static_cast<int>(reinterpret_cast<std::uintptr_t>(argument)));
            return 0;
        }
        errno = EINVAL;
        return -1;
    }

    std::unique_ptr<ForceFeedbackPort> open() { return m_devices.open(m_node); }

    FakeIoctl m_kernel{[this](int descriptor, unsigned long request, void* argument) {
        return ioctlResult(descriptor, request, argument);
    }};
    int m_has = FF_RUMBLE;
    bool m_takesEffects = true;
    std::vector<ff_effect> m_uploaded;
    std::vector<int> m_erased;
    int m_access = -1;

    TemporaryFolder m_folder;
    HapticNode m_node{.node = m_folder.path() / "event0", .number = 0, .kind = HapticKind::Rumble};
    int m_reader = -1;
    EvdevForceFeedback m_devices;
};

TEST_F(EvdevForceFeedbackTest, ADeviceIsOpenedOnlyToWriteAndWithoutWaiting) {
    ASSERT_TRUE(open());
    EXPECT_EQ(m_access & O_ACCMODE, O_WRONLY);
    EXPECT_NE(m_access & O_NONBLOCK, 0);
}

TEST_F(EvdevForceFeedbackTest, ANodeThatIsNotThereDoesNotOpen) {
    m_node.node = m_folder.path() / "event1";
    EXPECT_FALSE(open());
}

TEST_F(EvdevForceFeedbackTest, ANodeThatNowBelongsToAnotherDeviceDoesNotOpen) {
    const auto before = openDescriptors();
    for (const int other : {-1, 0x4F, FF_SPRING}) {
        m_has = other;
        EXPECT_FALSE(open()) << other;
    }
    EXPECT_EQ(openDescriptors(), before);
    m_has = 0x4F;
    m_node.kind = HapticKind::Touchpad;
    EXPECT_TRUE(open());
}

TEST_F(EvdevForceFeedbackTest, ADeviceIsClosedWithItsPort) {
    const auto before = openDescriptors();
    auto port = open();
    EXPECT_EQ(openDescriptors().size(), before.size() + 1);
    port.reset();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(EvdevForceFeedbackTest, AnEffectHasTheNumberFromTheKernel) {
    const auto port = open();
    ff_effect effect{};
    effect.id = -1;
    effect.type = FF_RUMBLE;
    effect.u.rumble.weak_magnitude = 0x1234;
    EXPECT_EQ(port->upload(effect), 7);
    ASSERT_EQ(m_uploaded.size(), 1U);
    EXPECT_EQ(m_uploaded[0].id, -1);
    EXPECT_EQ(m_uploaded[0].u.rumble.weak_magnitude, 0x1234);
    port->erase(7);
    EXPECT_THAT(m_erased, ElementsAre(7));
}

TEST_F(EvdevForceFeedbackTest, ARejectedEffectHasNoNumber) {
    const auto port = open();
    m_takesEffects = false;
    EXPECT_EQ(port->upload({}), std::nullopt);
}

TEST_F(EvdevForceFeedbackTest, APulseIsOnePlayOfItsEffect) {
    const auto port = open();
    EXPECT_TRUE(port->play(7));
    std::array<input_event, 2> events{};
    ASSERT_EQ(read(m_reader, events.data(), sizeof events),
              static_cast<ssize_t>(sizeof(input_event)));
    EXPECT_EQ(events[0].type, EV_FF);
    EXPECT_EQ(events[0].code, 7);
    EXPECT_EQ(events[0].value, 1);
}

TEST_F(EvdevForceFeedbackTest, ADeviceThatIsBusyIsStillThere) {
    const auto port = open();
    const std::vector<char> more(1 << 20);
    const int writer = ::open(m_node.node.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    while (write(writer, more.data(), more.size()) > 0) {
    }
    close(writer);
    EXPECT_TRUE(port->play(7));
}

TEST_F(EvdevForceFeedbackTest, ADeviceThatIsGoneReportsIt) {
    const auto port = open();
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    closeReader();
    EXPECT_FALSE(port->play(7));
    std::signal(SIGPIPE, before);
}

} // namespace

} // namespace quorvane
