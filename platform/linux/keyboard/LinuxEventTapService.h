#pragma once

#include <functional>
#include <memory>

#include "platform/EventTap.h"
#include "platform/linux/keyboard/KeyEventReader.h"

namespace quorvane {

/// Whether all keys of the session go through an X server. A Wayland session has a DISPLAY too, for
/// X11 programs, but keys reach that only while one of those has the focus.
[[nodiscard]] bool isX11Session();

/// Key events of the session: from the X server where all of it goes through one, else from the
/// keyboards themselves.
class LinuxEventTapService final : public EventTapService {
public:
    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                                      TapOptions options,
                                                      std::uint64_t eventsOfInterest,
                                                      TapCallback callback) override;
};

/// A tap on some reader's key events. Its source, which holds the reader as well, has it read while
/// it is on the run loop.
class LinuxEventTap final : public EventTap {
public:
    using ReaderMaker = std::function<std::unique_ptr<KeyEventReader>(KeyEventReader::Sink)>;

    /// Null when `makeReader` gives none.
    [[nodiscard]] static std::shared_ptr<LinuxEventTap>
    create(std::uint64_t eventsOfInterest, TapCallback callback, const ReaderMaker& makeReader);

    ~LinuxEventTap() override;

    [[nodiscard]] std::shared_ptr<TapSource> createRunLoopSource(int order) override;
    void enable(bool enabled) override;

private:
    struct Delivery;

    LinuxEventTap(std::shared_ptr<Delivery> delivery, std::shared_ptr<KeyEventReader> reader);

    std::shared_ptr<Delivery> m_delivery;
    std::shared_ptr<KeyEventReader> m_reader;
    std::weak_ptr<TapSource> m_source;
};

} // namespace quorvane
