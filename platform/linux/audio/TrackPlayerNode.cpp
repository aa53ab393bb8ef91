#include "platform/linux/audio/TrackPlayerNode.h"

#include <algorithm>
#include <utility>

#include "platform/linux/audio/Resampling.h"

namespace quorvane {

TrackPlayerNode::TrackPlayerNode(std::shared_ptr<AudioOutput> output)
    : m_output(std::move(output)) {}

TrackPlayerNode::~TrackPlayerNode() {
    m_output->remove(*m_track);
}

void TrackPlayerNode::attachTo(const void* engine) {
    m_engine = engine;
    if (engine)
        m_output->add(m_track, engine);
}

void TrackPlayerNode::scheduleBuffer(std::shared_ptr<const PCMBuffer> buffer, BufferOptions options,
                                     Completion completion) {
    if (buffer != m_buffer)
        m_sound = atStreamRate(buffer);
    m_buffer = std::move(buffer);
    m_output->change([&] {
        if (!m_sound) {
            m_output->finish({std::move(completion)});
            return;
        }
        const bool loops = options == BufferOptions::Loops;
        m_track->append(m_sound, loops ? endless : m_sound->frameLength, std::move(completion));
    });
}

void TrackPlayerNode::play() {
    if (m_output->isRunning(m_engine))
        m_output->change([this] { m_track->play(AudioOutput::Clock::now()); });
}

void TrackPlayerNode::pause() {
    m_output->change([this] { m_track->pause(AudioOutput::Clock::now()); });
}

void TrackPlayerNode::stop() {
    m_output->change([this] { m_output->finish(m_track->clear()); });
}

void TrackPlayerNode::setVolume(float volume) {
    m_volume = std::clamp(volume, 0.0F, 1.0F);
    m_output->change([this] { m_track->setGain(m_volume); });
}

} // namespace quorvane
