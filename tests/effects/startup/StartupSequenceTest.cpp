#include "tests/effects/startup/StartupFixture.h"

#include <functional>
#include <string>

#include "tests/support/ExchangedPlatform.h"

namespace quorvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using StartupSequenceTest = StartupFixture;

// Construction.

TEST_F(StartupSequenceTest, ConstructionLoadsTheClipAndMakesTheRumbleInThatOrder) {
    manager = StartupSoundManager::create(machine.platform());
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine, bufferLine));
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare"));
    EXPECT_THAT(rumble().calls(), ElementsAre("attach", "connect 44100/1"));
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
    EXPECT_TRUE(manager->startupSoundEnabled());
    EXPECT_FALSE(manager->isPlayingTractor());
}

TEST_F(StartupSequenceTest, AMissingClipPrintsNothingAndNothingPlays) {
    machine.bundle.removeResources();
    manager = StartupSoundManager::create(machine.platform());
    wakeUp();
    advance(10);
    EXPECT_THAT(machine.console.lines, ElementsAre(bufferLine));
    EXPECT_FALSE(manager->isPlayingTractor());
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    EXPECT_THAT(pulses(), IsEmpty());
}

TEST_F(StartupSequenceTest, AnUndecodableClipPrintsTheLoadedLineAndNothingPlays) {
    machine.audio.addNonAudioFile(tractorPath);
    manager = StartupSoundManager::create(machine.platform());
    wakeUp();
    advance(10);
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine, bufferLine));
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
}

TEST_F(StartupSequenceTest, ADamagedClipPrintsTheLoadedLineAndNothingPlays) {
    machine.audio.addDamagedFile(tractorPath, {.sampleRate = 100, .channels = 1},
                                 std::vector<float>(800, 0.25F));
    manager = StartupSoundManager::create(machine.platform());
    wakeUp();
    advance(10);
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine, bufferLine));
    EXPECT_FALSE(manager->isPlayingTractor());
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare"));
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    EXPECT_THAT(pulses(), IsEmpty());
}

// Waking up.

TEST_F(StartupSequenceTest, WakingUpPlaysEverythingAtOnceAndEndsAfterTheClipsLength) {
    makeManager();
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
    EXPECT_THAT(machine.console.lines, ElementsAre(playingLine, rumbleLine, hapticLine));
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare", "currentTime 0", "play"));
    EXPECT_EQ(machine.audio.timeline().size(), 2U);
    advance(clipLength - 0.001);
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(0.001);
    EXPECT_FALSE(manager->isPlayingTractor());
    EXPECT_THAT(machine.console.lines,
                ElementsAre(playingLine, rumbleLine, hapticLine, rumbleStoppedLine,
                            hapticStoppedLine, completeLine));
    EXPECT_EQ(rumble().state(), SimulatedAudioVoice::State::Stopped);
}

/// A console that records the manager's state with each line.
class WatchingConsole final : public Console {
public:
    void print(std::string_view line) override {
        if (state)
            lines.push_back(state() + std::string(line));
    }

    std::function<std::string()> state;
    std::vector<std::string> lines;
};

TEST_F(StartupSequenceTest, TheClipThenTheRumbleThenThePulsesStartAndEndInThatOrder) {
    WatchingConsole console;
    manager = StartupSoundManager::create(exchange(machine.platform(), {.console = &console}));
    console.state = [&] {
        std::string state = manager->isPlayingTractor() ? "busy" : "idle";
        state += tractor().isPlaying() ? " clip" : "";
        state += rumble().state() == SimulatedAudioVoice::State::Sounding ? " rumble" : "";
        state += manager->isRamping() ? " ramp" : "";
        return state + (manager->isPulsing() ? " pulses: " : ": ");
    };
    wakeUp();
    EXPECT_THAT(console.lines,
                ElementsAre(std::string("busy: ") + playingLine,
                            std::string("busy clip rumble ramp: ") + rumbleLine,
                            std::string("busy clip rumble ramp pulses: ") + hapticLine));
    EXPECT_EQ(machine.audio.timeline().at(0).file, tractorPath) << "before the rumble";
    console.lines.clear();
    advance(clipLength);
    EXPECT_THAT(console.lines, ElementsAre(std::string("busy pulses: ") + rumbleStoppedLine,
                                           std::string("busy: ") + hapticStoppedLine,
                                           std::string("idle: ") + completeLine));
    manager.reset();
}

TEST_F(StartupSequenceTest, AShortClipEndsTheRampsEarly) {
    machine.audio.addFile(tractorPath, {.sampleRate = 100, .channels = 1},
                          std::vector<float>(150, 0.25F));
    makeManager();
    wakeUp();
    advance(1.499);
    EXPECT_TRUE(manager->isRamping());
    EXPECT_TRUE(manager->isPulsing());
    advance(0.001);
    EXPECT_FALSE(manager->isRamping());
    EXPECT_FALSE(manager->isPulsing());
    EXPECT_EQ(machine.runLoop.pendingCount(), 0U);
}

TEST_F(StartupSequenceTest, TheClipIsNotStoppedByTheSequence) {
    makeManager();
    wakeUp();
    advance(clipLength + 1);
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare", "currentTime 0", "play"));
}

TEST_F(StartupSequenceTest, ASecondWakeUpMeanwhileIsIgnored) {
    makeManager();
    wakeUp();
    advance(2);
    const auto lines = machine.console.lines;
    wakeUp();
    EXPECT_EQ(machine.console.lines, lines);
    advance(clipLength - 2);
    EXPECT_EQ(machine.console.lines.back(), completeLine);
    EXPECT_THAT(tractor().calls(), ElementsAre("prepare", "currentTime 0", "play"));
}

TEST_F(StartupSequenceTest, AWakeUpAfterTheEndStartsANewSequence) {
    makeManager();
    wakeUp();
    advance(clipLength);
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(clipLength);
    EXPECT_THAT(tractor().calls(),
                ElementsAre("prepare", "currentTime 0", "play", "currentTime 0", "play"));
    EXPECT_EQ(machine.audio.engineStartCount(), 1U) << "the engine keeps running between sequences";
}

TEST_F(StartupSequenceTest, WakingScreensStartNothing) {
    makeManager();
    machine.workspace.post("NSWorkspaceScreensDidWakeNotification");
    machine.workspace.post("NSWorkspaceScreensDidSleepNotification");
    machine.defaultCenter.post("NSWorkspaceDidWakeNotification");
    EXPECT_FALSE(manager->isPlayingTractor());
}

TEST_F(StartupSequenceTest, AWakeUpWhileSwitchedOffPlaysNothing) {
    makeManager();
    manager->startupSoundEnabled() = false;
    wakeUp();
    advance(10);
    EXPECT_THAT(machine.console.lines, IsEmpty());
    EXPECT_THAT(machine.audio.timeline(), IsEmpty());
    manager->startupSoundEnabled() = true;
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
}

TEST_F(StartupSequenceTest, SwitchingOffDuringASequenceDoesNotCutItShort) {
    makeManager();
    wakeUp();
    advance(1);
    manager->startupSoundEnabled() = false;
    advance(clipLength - 1.001);
    EXPECT_TRUE(manager->isPlayingTractor());
    EXPECT_TRUE(tractor().isPlaying());
    advance(0.001);
    EXPECT_EQ(machine.console.lines.back(), completeLine);
}

// The conditions.

TEST_F(StartupSequenceTest, PlayTractorChecksItsConditionsForEveryCaller) {
    makeManager();
    manager->startupSoundEnabled() = false;
    manager->playTractor();
    EXPECT_FALSE(manager->isPlayingTractor());
    manager->startupSoundEnabled() = true;
    manager->playTractor();
    EXPECT_TRUE(manager->isPlayingTractor());
    const auto lines = machine.console.lines;
    manager->playTractor();
    EXPECT_EQ(machine.console.lines, lines);
}

// Failures.

TEST_F(StartupSequenceTest, WithoutTheEngineOnlyTheRumbleIsMissing) {
    machine.faults->fail(Fault::EngineStart, "no such thing as sound");
    makeManager();
    wakeUp();
    EXPECT_THAT(
        machine.console.lines,
        ElementsAre(playingLine, "⚠️ [RUMBLE] Error: no such thing as sound", hapticLine));
    EXPECT_TRUE(tractor().isPlaying());
    EXPECT_FALSE(manager->isRamping());
    EXPECT_THAT(rumble().calls(), ElementsAre("attach", "connect 44100/1"))
        << "no volume, nothing scheduled, nothing played";
    advance(clipLength);
    EXPECT_GT(pulses().size(), 0U);
    EXPECT_EQ(machine.console.lines.back(), completeLine);
    machine.faults->mend(Fault::EngineStart);
    wakeUp();
    EXPECT_TRUE(manager->isRamping()) << "the next sequence tries again";
}

TEST_F(StartupSequenceTest, WithoutTheFormatOfTheRumbleTheProgramEnds) {
    machine.faults->fail(Fault::StandardFormat, "");
    EXPECT_DEATH((void)StartupSoundManager::create(machine.platform()),
                 "StartupSoundManager: there is no format of one channel at 44100 Hz");
}

TEST_F(StartupSequenceTest, WithoutMemoryOnlyTheRumbleIsMissing) {
    machine.faults->fail(Fault::BufferCreation, "");
    manager = StartupSoundManager::create(machine.platform());
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine));
    machine.console.lines.clear();
    wakeUp();
    EXPECT_THAT(machine.console.lines, ElementsAre(playingLine, hapticLine));
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
    advance(clipLength);
    EXPECT_GT(pulses().size(), 0U);
}

TEST_F(StartupSequenceTest, ABufferWithoutSamplesIsNotKept) {
    machine.faults->fail(Fault::BufferSamples, "");
    manager = StartupSoundManager::create(machine.platform());
    EXPECT_THAT(machine.console.lines, ElementsAre(loadedLine));
    EXPECT_FALSE(manager->rumbleBuffer());
    manager->startRumble();
    EXPECT_EQ(machine.audio.engineStartCount(), 0U);
}

TEST_F(StartupSequenceTest, WithoutAnOutputDeviceTheTimingIsUnaffected) {
    machine.audio.setOutputDevicePresent(false);
    makeManager();
    wakeUp();
    EXPECT_TRUE(manager->isPlayingTractor());
    advance(clipLength);
    EXPECT_FALSE(manager->isPlayingTractor());
    EXPECT_EQ(machine.console.lines.back(), completeLine);
}

} // namespace
} // namespace quorvane
