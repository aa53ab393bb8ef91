#pragma once

#include <functional>
#include <memory>

#include "platform/EventTap.h"
#include "platform/linux/keyboard/KeyEventReader.h"

namespace quorvane {

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
