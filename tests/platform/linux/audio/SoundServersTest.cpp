#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/SoundFiles.h"
#include "tests/support/SoundRecorder.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {
namespace {

/// The servers that the other tests listen to, with another program that plays.
class SoundServers : public testing::TestWithParam<SoundServerKind> {
protected:
    SoundServers() {
        m_server->start();
        writeWAV(m_file, m_sound);
    }

    [[nodiscard]] ChildProcess play() const {
        return ChildProcess({"paplay", "--latency-msec=50", m_file.string()},
                            m_folder.path() / "paplay.log");
    }

    void expectSound(const Recording& recording) const {
        const auto begin = recording.soundFrom(0);
        ASSERT_TRUE(begin);
        ASSERT_LE(*begin + 22050, recording.length());
        EXPECT_LT(recording.largestDifference(*begin, m_sound, 0, 22050), 1e-4);
        EXPECT_FALSE(recording.soundFrom(*begin + 22050));
    }

    PCMBuffer m_sound = chirp({.sampleRate = 44100, .channels = 2}, 22050);
    TemporaryFolder m_folder;
    std::filesystem::path m_file = m_folder.path() / "chirp.wav";
    std::unique_ptr<SoundServer> m_server = SoundServer::make(GetParam(), m_folder.path());
};

TEST_P(SoundServers, WhatIsPlayedIsRecordedFrameForFrame) {
    SoundRecorder recorder(*m_server);
    ASSERT_EQ(play().wait(), 0);
    expectSound(Recording(recorder.finish()));
}

TEST_P(SoundServers, AfterARestartItServesAgain) {
    m_server->kill();
    EXPECT_NE(play().wait(), 0);
    m_server->start();
    SoundRecorder recorder(*m_server);
    ASSERT_EQ(play().wait(), 0);
    expectSound(Recording(recorder.finish()));
}

TEST_P(SoundServers, NewSoundsGoToTheChosenSinkAndToTheOtherOneWhenThatHasGone) {
    m_server->addSink("other");
    m_server->chooseSink("other");
    {
        SoundRecorder recorder(*m_server, "other");
        ASSERT_EQ(play().wait(), 0);
        expectSound(Recording(recorder.finish()));
    }
    m_server->removeSink("other");
    SoundRecorder recorder(*m_server);
    ASSERT_EQ(play().wait(), 0);
    expectSound(Recording(recorder.finish()));
}

TEST_P(SoundServers, FrozenItAnswersNobodyUntilItIsThawed) {
    m_server->freeze();
    ChildProcess player = play();
    waitFor(1500ms);
    EXPECT_TRUE(player.isAlive());
    m_server->thaw();
    EXPECT_EQ(player.wait(), 0);
}

TEST_P(SoundServers, TellsOfTheStreamsThatItPlays) {
    EXPECT_TRUE(m_server->streams().empty());
    ChildProcess player = play();
    ASSERT_TRUE(waitUntil([this] { return m_server->streams().size() == 1; }));
    ASSERT_TRUE(waitUntil([this] {
        const auto streams = m_server->streams();
        return streams.size() == 1 && streams[0].sink == m_server->sinkIndex("out");
    }));
    EXPECT_EQ(player.wait(), 0);
}

INSTANTIATE_TEST_SUITE_P(On, SoundServers,
                         testing::Values(SoundServerKind::PulseAudio, SoundServerKind::PipeWire),
                         testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
