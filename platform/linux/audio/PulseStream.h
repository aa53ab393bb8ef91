#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include <pulse/pulseaudio.h>

#include "base/NonCopyable.h"

namespace quorvane {

/// A playback stream of the sound server, on whatever output the server or the person chooses. It
/// runs on through what has not been written, which is silent. Used on the thread of the context's
/// main loop; no call waits for the server.
class PulseStream : NonCopyable {
public:
    /// What the server says; called from the main loop.
    struct Events {
        /// It can be used from now on.
        std::function<void()> ready;
        /// It has ended; it cannot be used any more.
        std::function<void()> lost;
        /// There may be room for more, or the stream may play elsewhere, or not at all.
        std::function<void()> changed;
        /// The answer to `askPosition`: the next frame that the server will read, and the frame
        /// that is heard.
        std::function<void(std::int64_t next, std::int64_t heard)> position;
    };

    /// Null if the server's connection has gone.
    [[nodiscard]] static std::unique_ptr<PulseStream> open(pa_context& context, Events events);

    /// Writes interleaved samples to the frames from `frame` on, over what may be there.
    void write(std::span<const float> samples, std::int64_t frame);
    /// The answer tells whether the server had passed the frames that were written before.
    void askPosition();
    /// A corked stream stands still; initially it runs.
    void cork(bool corked);

private:
    struct Close {
        void operator()(pa_stream* stream) const;
    };

    struct Cancel {
        void operator()(pa_operation* operation) const;
    };

    PulseStream(pa_stream* stream, Events events);
    bool connect();
    void stateChanged();
    void answer(bool success);

    Events m_events;
    std::unique_ptr<pa_stream, Close> m_stream;
    std::unique_ptr<pa_operation, Cancel> m_question;
};

} // namespace quorvane
