#include "tests/effects/creak/AudioManagerFixture.h"

#include <gmock/gmock.h>
#include <string>

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Loading.

TEST_F(AudioManagerTest, ConstructionAttachesTheNodeAndOpensNothing) {
    EXPECT_THAT(node().calls(), ElementsAre("attach"));
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
    EXPECT_FALSE(manager->isLoaded());
    EXPECT_FALSE(manager->isPlaying());
    EXPECT_EQ(manager->velocityThreshold(), 1.0);
}

TEST_F(AudioManagerTest, LoadingDecodesConnectsAndNamesTheClipWithItsLength) {
    manager->loadSound("creaking", "mp3");
    EXPECT_TRUE(manager->isLoaded());
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ Φορτώθηκε: creaking.mp3 (2.4s)"));
    EXPECT_THAT(node().calls(), ElementsAre("attach", "connect 1000/1"));
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
}

TEST_F(AudioManagerTest, IsLoadedIsSetAfterConnectingAndTheLineIsPrintedLast) {
    std::vector<std::string> atTheFlag;
    const auto loaded = manager->isLoaded().observe([&] {
        atTheFlag = node().calls();
        EXPECT_THAT(machine.console.lines, IsEmpty());
    });
    manager->loadSound("creaking", "mp3");
    EXPECT_THAT(atTheFlag, ElementsAre("attach", "connect 1000/1"));
}

TEST_F(AudioManagerTest, TheLengthInItsLineIsRoundedToATenth) {
    machine.audio.addFile("x/short.wav", {.sampleRate = 1000, .channels = 2},
                          std::vector<float>(2520));
    manager->loadSound("x/short.wav");
    EXPECT_THAT(machine.console.lines, ElementsAre("✅ Φορτώθηκε: short.wav (1.3s)"));
    EXPECT_THAT(node().calls(), ElementsAre("attach", "connect 1000/2"));
}

// A buffer's frame count has 32 bits; a longer file is a programming error.

TEST_F(AudioManagerTest, TheLargestNumberOfFramesIsAccepted) {
    machine.audio.addTruncatedFile(clipPath, format, std::vector<float>(1), 4294967295);
    // The buffer itself would take 16 GB.
    machine.faults->fail(Fault::BufferCreation, "");
    manager->loadSound("creaking", "mp3");
    EXPECT_FALSE(manager->isLoaded());
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

using AudioManagerDeathTest = AudioManagerTest;

TEST_F(AudioManagerDeathTest, ANegativeNumberOfFramesEndsTheProgram) {
    machine.audio.addTruncatedFile(clipPath, format, std::vector<float>(1), -1);
    machine.faults->fail(Fault::BufferCreation, "");
    EXPECT_DEATH(manager->loadSound("creaking", "mp3"),
                 "quorvane: fatal: AudioManager: a sound of -1 frames fits no buffer");
}

TEST_F(AudioManagerDeathTest, ANumberOfFramesBeyond32BitsEndsTheProgram) {
    machine.audio.addTruncatedFile(clipPath, format, std::vector<float>(1), 4294967296);
    machine.faults->fail(Fault::BufferCreation, "");
    EXPECT_DEATH(manager->loadSound("creaking", "mp3"),
                 "quorvane: fatal: AudioManager: a sound of 4294967296 frames fits no buffer");
}

TEST_F(AudioManagerTest, AMissingResourcePrintsItsName) {
    manager->loadSound("missing", "mp3");
    EXPECT_FALSE(manager->isLoaded());
    EXPECT_THAT(machine.console.lines, ElementsAre("⚠️ Δεν βρέθηκε: missing.mp3"));
}

TEST_F(AudioManagerTest, AFileThatCannotBeOpenedPrintsTheError) {
    machine.faults->fail(Fault::FileOpen, "The file is broken.");
    manager->loadSound("creaking", "mp3");
    EXPECT_FALSE(manager->isLoaded());
    EXPECT_THAT(machine.console.lines, ElementsAre("⚠️ Σφάλμα: The file is broken."));
}

TEST_F(AudioManagerTest, AFileThatCannotBeReadPrintsTheError) {
    machine.faults->fail(Fault::FileRead, "The file ends too early.");
    manager->loadSound("creaking", "mp3");
    EXPECT_FALSE(manager->isLoaded());
    EXPECT_THAT(machine.console.lines,
                ElementsAre("⚠️ Σφάλμα: The file ends too early."));
    EXPECT_THAT(node().calls(), ElementsAre("attach")) << "nothing is connected";
}

TEST_F(AudioManagerTest, ABufferThatCannotBeMadePrintsNothing) {
    machine.faults->fail(Fault::BufferCreation, "");
    manager->loadSound("creaking", "mp3");
    EXPECT_FALSE(manager->isLoaded());
    EXPECT_THAT(machine.console.lines, IsEmpty());
}

TEST_F(AudioManagerTest, EveryKindOfFailedLoadAfterAGoodOneSilencesIt) {
    const auto expectSilence = [&] {
        EXPECT_FALSE(manager->isLoaded());
        manager->update(50);
        EXPECT_FALSE(manager->isPlaying());
        EXPECT_THAT(sounds(), IsEmpty());
    };
    load();
    manager->loadSound("missing", "mp3");
    expectSilence();
    for (const auto fault : {Fault::FileOpen, Fault::FileRead, Fault::BufferCreation}) {
        load();
        machine.faults->fail(fault, "broken");
        manager->loadSound("creaking", "mp3");
        expectSilence();
        machine.faults->mend(fault);
    }
}

TEST_F(AudioManagerTest, BeforeAndAfterAFailedLoadUpdatesDoAndPrintNothing) {
    manager->update(50);
    manager->update(0);
    machine.faults->fail(Fault::FileOpen, "broken");
    manager->loadSound("creaking", "mp3");
    machine.console.lines.clear();
    manager->update(50);
    manager->update(0);
    EXPECT_THAT(machine.console.lines, IsEmpty());
    EXPECT_THAT(node().calls(), ElementsAre("attach"));
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
}

TEST_F(AudioManagerTest, LoadingLeavesTheSchedulingAlone) {
    load();
    manager->update(50);
    machine.runLoop.advance(1);
    manager->update(0);
    load();
    manager->update(50);
    EXPECT_EQ(sounds().back().offset, 1.0) << "the paused clip resumes at its position";
    EXPECT_EQ(node().scheduledCount(), 1U) << "and is not followed by another";
}

} // namespace
} // namespace quorvane
