#include <memory>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/EvdevKeyReader.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/PluggedKeyboards.h"
#include "tests/support/QtApplication.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

class EvdevKeyReaderTest : public testing::Test {
protected:
    /// A keyboard that is plugged in.
    std::unique_ptr<KeyboardPipe> keyboard(const std::string& name) {
        auto pipe = std::make_unique<KeyboardPipe>(m_folder.path() / name);
        m_machine.plugIn(pipe->node());
        return pipe;
    }

    std::unique_ptr<EvdevKeyReader> open() {
        return EvdevKeyReader::open(
            std::make_unique<PluggedKeyboards::Nodes>(m_machine), [this](const TapEvent& event) {
                m_presses += event.type == TapEventType::KeyDown && event.keyboardAutorepeat == 0;
            });
    }

    int presses() {
        QCoreApplication::processEvents();
        return std::exchange(m_presses, 0);
    }

    QtApplication m_application;
    TemporaryFolder m_folder;
    PluggedKeyboards m_machine;
    int m_presses = 0;
};

TEST_F(EvdevKeyReaderTest, WithoutAKeyboardThereIsNoReader) {
    EXPECT_FALSE(open());
}

TEST_F(EvdevKeyReaderTest, WithoutAKeyboardThatCanBeReadThereIsNoReaderAndNothingStaysOpen) {
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    m_machine.plugIn(m_folder.path() / "event0");
    EXPECT_FALSE(open());
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(EvdevKeyReaderTest, TheKeysOfSeveralKeyboardsAreToldApart) {
    const auto one = keyboard("event0");
    const auto other = keyboard("event1");
    const auto reader = open();
    reader->setReading(true);
    one->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
    other->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, AKeyboardThatComesLaterIsHeard) {
    const auto one = keyboard("event0");
    const auto reader = open();
    reader->setReading(true);
    const auto later = keyboard("event1");
    later->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, AKeyboardThatComesWhileNothingListensIsHeardAfterwards) {
    const auto one = keyboard("event0");
    const auto reader = open();
    const auto later = keyboard("event1");
    later->send(KEY_A, 1);
    EXPECT_EQ(presses(), 0);
    reader->setReading(true);
    EXPECT_EQ(presses(), 0);
    later->send(KEY_B, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, AKeyboardThatGoesIsDroppedAndTheOthersAreStillHeard) {
    const auto one = keyboard("event0");
    const auto other = keyboard("event1");
    const auto reader = open();
    reader->setReading(true);
    one->send(KEY_A, 1);
    one->unplug();
    m_machine.unplug(one->node());
    other->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, AKeyboardThatIsPluggedInAgainIsHeardAgain) {
    auto one = keyboard("event0");
    const auto reader = open();
    reader->setReading(true);
    one->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
    one->unplug();
    EXPECT_EQ(presses(), 0);
    m_machine.unplug(one->node());
    one = keyboard("event0");
    one->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, AKeyboardThatComesBackBeforeItsRemovalIsReportedIsHeard) {
    auto one = keyboard("event0");
    const auto reader = open();
    reader->setReading(true);
    one->unplug();
    EXPECT_EQ(presses(), 0);
    one = keyboard("event0");
    one->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, AKeyboardThatBecomesReadableIsHeard) {
    const auto one = keyboard("event0");
    const auto node = m_folder.path() / "event1";
    m_machine.plugIn(node);
    const auto reader = open();
    reader->setReading(true);
    const KeyboardPipe later(node);
    m_machine.plugIn(node);
    later.send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, EventsForAKeyboardThatIsOpenChangeNothing) {
    const auto one = keyboard("event0");
    const auto reader = open();
    reader->setReading(true);
    one->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
    const auto before = openDescriptors();
    m_machine.plugIn(one->node());
    EXPECT_EQ(openDescriptors(), before);
    one->send(KEY_A, 1);
    EXPECT_EQ(presses(), 0) << "the key was known to be down";
}

TEST_F(EvdevKeyReaderTest, AKeyboardIsHeardAfterAllWereUnplugged) {
    auto one = keyboard("event0");
    const auto reader = open();
    reader->setReading(true);
    one->unplug();
    m_machine.unplug(one->node());
    EXPECT_EQ(presses(), 0);
    one = keyboard("event7");
    one->send(KEY_A, 1);
    EXPECT_EQ(presses(), 1);
}

TEST_F(EvdevKeyReaderTest, EverythingIsClosedWithTheReader) {
    const auto one = keyboard("event0");
    const auto other = keyboard("event1");
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    auto reader = open();
    reader->setReading(true);
    EXPECT_EQ(openDescriptors().size(), before.size() + 2);
    reader.reset();
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace

} // namespace quorvane
