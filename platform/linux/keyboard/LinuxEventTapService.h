#pragma once

#include <functional>
#include <memory>

#include "platform/EventTap.h"
#include "platform/linux/keyboard/KeyEventReader.h"
#include "platform/linux/keyboard/KeyReaderProcess.h"

namespace quorvane {

/// Whether all keys of the session go through an X server. A Wayland session has a DISPLAY too, for
/// X11 programs, but keys reach it only while one of them has the focus.
[[nodiscard]] bool isX11Session();

/// Key events of the session: from the X server in an X11 session, else, key presses only, from the
/// key reader.
class LinuxEventTapService final : public EventTapService {
public:
    /// `reader` outlives it and its taps.
    explicit LinuxEventTapService(KeyReaderProcess& reader) : m_reader(reader) {}

    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                                      TapOptions options,
                                                      std::uint64_t eventsOfInterest,
                                                      TapCallback callback) override;

private:
    KeyReaderProcess& m_reader;
};

/// A tap on a reader's key events. Its source shares the reader, and makes it read while on the run
/// loop.
class LinuxEventTap final : public EventTap {
public:
    using ReaderMaker = std::function<std::unique_ptr<KeyEventReader>(KeyEventReader::Sink)>;

    /// Null when `makeReader` returns null.
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
