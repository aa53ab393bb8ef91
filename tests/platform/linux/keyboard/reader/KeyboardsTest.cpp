#include <memory>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/reader/Keyboards.h"
#include "tests/support/FakeKeyboardList.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KeyboardsTest : public testing::Test {
protected:
    /// A keyboard that is plugged in.
    std::unique_ptr<KeyboardPipe> keyboard(const std::string& name,
                                           const std::string& seat = "seat0") {
        auto pipe = std::make_unique<KeyboardPipe>(m_folder.path() / name);
        m_list.plugIn(pipe->node(), seat);
        return pipe;
    }

    void listen() { m_keyboards.listenAt({"seat0"}); }

    TemporaryFolder m_folder;
    FakeKeyboardList m_list;
    std::vector<std::string> m_opened;
    Keyboards m_keyboards{
        m_list, [this](const KeyboardNode& keyboard) { m_opened.push_back(keyboard.name); }};
};

TEST_F(KeyboardsTest, WithoutAKeyboardNothingIsOpen) {
    const auto before = openDescriptors();
    m_list.plugIn(m_folder.path() / "event0");
    listen();
    EXPECT_EQ(m_keyboards.read(), 0U);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_THAT(m_opened, IsEmpty());
}

TEST_F(KeyboardsTest, TheKeysOfSeveralKeyboardsAreToldApart) {
    const auto one = keyboard("event0");
    const auto other = keyboard("event1");
    listen();
    one->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
    other->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
}

TEST_F(KeyboardsTest, OnlyTheKeyboardsOfTheSeatsAreOpenedAndReported) {
    const auto here = keyboard("event0");
    const auto there = keyboard("event1", "seat1");
    listen();
    EXPECT_THAT(m_opened, ElementsAre("fake event0"));
    there->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 0U);
    m_keyboards.listenAt({"seat1"});
    EXPECT_THAT(m_opened, ElementsAre("fake event0", "fake event1"));
    here->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U) << "the key of the other seat's keyboard";
}

TEST_F(KeyboardsTest, AtNoSeatEverythingIsClosed) {
    const auto one = keyboard("event0");
    const auto other = keyboard("event1");
    const auto before = openDescriptors();
    listen();
    EXPECT_EQ(openDescriptors().size(), before.size() + 2);
    m_keyboards.listenAt({});
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(m_keyboards.changes(), -1);
}

TEST_F(KeyboardsTest, AKeyboardThatComesLaterIsHeard) {
    const auto one = keyboard("event0");
    listen();
    const auto later = keyboard("event1");
    listen();
    later->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
}

TEST_F(KeyboardsTest, AKeyboardThatGoesIsDroppedAndTheOthersAreStillHeard) {
    const auto before = openDescriptors();
    const auto one = keyboard("event0");
    const auto other = keyboard("event1");
    listen();
    one->send(KEY_A, 1);
    one->unplug();
    other->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 2U);
    m_list.unplug(one->node());
    listen();
    other->send(KEY_B, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
    EXPECT_EQ(openDescriptors().size(), before.size() + 2) << "the other's pipe and its reader";
}

TEST_F(KeyboardsTest, AKeyboardThatTurnsOutToBeGoneIsClosedBeforeItsRemovalIsReported) {
    const auto before = openDescriptors();
    const auto one = keyboard("event0");
    listen();
    one->unplug();
    EXPECT_EQ(m_keyboards.read(), 0U);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(KeyboardsTest, AKeyboardThatIsPluggedInAgainIsHeardAgain) {
    const auto one = keyboard("event0");
    listen();
    one->unplug();
    m_list.unplug(one->node());
    listen();
    const auto again = keyboard("event0");
    listen();
    again->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
}

TEST_F(KeyboardsTest, AKeyboardThatComesBackUnnoticedIsHeard) {
    const auto one = keyboard("event0");
    listen();
    one->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
    one->unplug();
    const auto again = keyboard("event0");
    listen();
    again->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
}

TEST_F(KeyboardsTest, AKeyboardThatBecomesReadableIsHeard) {
    const auto node = m_folder.path() / "event1";
    m_list.plugIn(node);
    listen();
    const KeyboardPipe later(node);
    listen();
    later.send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
}

TEST_F(KeyboardsTest, AKeyboardThatIsOpenIsNotOpenedAgain) {
    const auto one = keyboard("event0");
    listen();
    one->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 1U);
    listen();
    one->send(KEY_A, 1);
    EXPECT_EQ(m_keyboards.read(), 0U) << "the key was known to be down";
    EXPECT_THAT(m_opened, ElementsAre("fake event0"));
}

} // namespace

} // namespace quorvane
