#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Audio.h"
#include "tests/contract/AudioBackend.h"

namespace quorvane {

/// What completion callbacks record; they share its ownership.
struct CompletionLog {
    std::mutex mutex;
    std::vector<std::string> completed;
    std::vector<std::thread::id> threads;
};

class AudioContract : public Contract<AudioBackend> {
protected:
    static constexpr AudioFormat stereo{.sampleRate = 44100, .channels = 2};

    AudioContract() { m_engine->attach(m_node); }

    /// Starts the engine and connects the node.
    void start() {
        m_engine->connectToMainMixer(m_node, stereo);
        const auto error = m_engine->start();
        ASSERT_FALSE(error) << error->description;
    }

    [[nodiscard]] std::shared_ptr<const PCMBuffer> sound(double seconds) {
        const auto frames = static_cast<std::uint32_t>(seconds * stereo.sampleRate);
        auto buffer = audio().createBuffer(stereo, frames);
        buffer->frameLength = frames;
        buffer->samples.assign(buffer->samples.size(), 0.1F);
        return buffer;
    }

    void schedule(const std::string& name, double seconds) {
        m_node->scheduleBuffer(sound(seconds), BufferOptions::Once, [log = m_log, name] {
            const std::lock_guard lock(log->mutex);
            log->completed.push_back(name);
            log->threads.push_back(std::this_thread::get_id());
        });
    }

    [[nodiscard]] std::vector<std::string> completed() const {
        const std::lock_guard lock(m_log->mutex);
        return m_log->completed;
    }

    void pass(double seconds) { m_backend->pass(seconds); }

    /// Seconds until `condition` holds; fails after `limit`.
    double secondsUntil(const std::function<bool()>& condition, double limit = 15) {
        const double start = m_backend->now();
        while (!condition() && m_backend->now() - start < limit)
            pass(0.002);
        EXPECT_TRUE(condition()) << "not within " << limit << " s";
        return m_backend->now() - start;
    }

    double secondsUntilCompleted(std::size_t count) {
        return secondsUntil([&] { return completed().size() >= count; });
    }

    /// Plays until `count` sounds have completed and returns the seconds since before the start, so
    /// that a delay after it does not make a sound seem too short.
    double secondsPlayed(std::size_t count) {
        const double start = m_backend->now();
        m_node->play();
        secondsUntilCompleted(count);
        return m_backend->now() - start;
    }

    /// Waits long enough for something wrong to happen.
    void passTolerance() { pass(m_backend->tolerance()); }

    /// `seconds`, or somewhat later.
    [[nodiscard]] auto isAbout(double seconds) const {
        // The end is computed to the frame, and the clocks of sound and system differ a little.
        return ::testing::AllOf(::testing::Ge(seconds - 0.02),
                                ::testing::Le(seconds + m_backend->tolerance()));
    }

    AudioService& audio() { return m_backend->service(); }

    std::shared_ptr<CompletionLog> m_log = std::make_shared<CompletionLog>();
    std::shared_ptr<AudioEngine> m_engine = m_backend->service().createEngine();
    std::shared_ptr<AudioPlayerNode> m_node = m_backend->service().createPlayerNode();
};

} // namespace quorvane
