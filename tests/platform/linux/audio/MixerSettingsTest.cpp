#include "tests/platform/linux/audio/SoundServerFixture.h"

namespace quorvane {
namespace {

/// What a person sees of the program in the mixer, and does to it there.
class MixerSettings : public OnSoundServer {
protected:
    void SetUp() override {
        OnSoundServer::SetUp();
        m_clip = player(stampedSound(8820));
        m_hold = m_audio->holdOutput();
        ASSERT_TRUE(m_clip->play());
        ASSERT_TRUE(waitUntil([this] { return m_server->streams().size() == 1; }));
        ASSERT_TRUE(waitUntil([this] { return !m_clip->isPlaying(); }));
    }

    void control(const std::string& what, const std::string& value) {
        m_server->control({what, std::to_string(stream().index), value});
    }

    [[nodiscard]] PlayedStream stream() const {
        const auto streams = m_server->streams();
        return streams.size() == 1 ? streams[0] : PlayedStream{};
    }

    void playAgain() const {
        for (int count = 0; count < 3; ++count) {
            ASSERT_TRUE(m_clip->play());
            ASSERT_TRUE(waitUntil([this] { return !m_clip->isPlaying(); }));
        }
    }

    /// Plays after the stream was corked for want of anything to do, and not yet closed.
    void playAfterAPause() {
        m_hold.reset();
        ASSERT_TRUE(waitUntil([this] { return stream().isCorked; }, 20s));
        playAgain();
    }

    std::shared_ptr<AudioFilePlayer> m_clip;
    std::shared_ptr<AudioOutputHold> m_hold;
};

TEST_P(MixerSettings, TheStreamHasTheProgramsNameAndIconAndNoRole) {
    auto properties = stream().properties;
    EXPECT_EQ(properties["application.name"], "Quorvane");
    EXPECT_EQ(properties["application.icon_name"], "quorvane");
    // Roles such as "phone" or "a11y" turn other programs down.
    EXPECT_EQ(properties.count("media.role"), 0U);
}

TEST_P(MixerSettings, AMutedStreamStaysMuted) {
    control("set-sink-input-mute", "1");
    playAgain();
    EXPECT_TRUE(stream().isMuted);
    playAfterAPause();
    EXPECT_TRUE(stream().isMuted);
}

TEST_P(MixerSettings, AVolumeStays) {
    control("set-sink-input-volume", "40%");
    playAgain();
    EXPECT_EQ(stream().volume, "40%");
    playAfterAPause();
    EXPECT_EQ(stream().volume, "40%");
}

TEST_P(MixerSettings, AnotherOutputStays) {
    m_server->addSink("other");
    control("move-sink-input", "other");
    const unsigned other = m_server->sinkIndex("other");
    ASSERT_TRUE(waitUntil([&] { return stream().sink == other; }));
    playAgain();
    EXPECT_EQ(stream().sink, other);
    playAfterAPause();
    EXPECT_EQ(stream().sink, other);
}

INSTANTIATE_TEST_SUITE_P(On, MixerSettings, onBothSoundServers(),
                         testing::PrintToStringParamName());

} // namespace
} // namespace quorvane
