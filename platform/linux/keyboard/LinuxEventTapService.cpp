#include "platform/linux/keyboard/LinuxEventTapService.h"

#include <QtGlobal>
#include <utility>

#include "platform/linux/keyboard/X11KeyReader.h"

namespace quorvane {

namespace {

/// The key presses that the key reader tells of.
class ReadKeys final : public KeyEventReader {
public:
    ReadKeys(KeyReaderProcess& reader, Sink sink) : m_reader(reader), m_sink(std::move(sink)) {}

    void setReading(bool reading) override {
        if (!reading)
            m_listening.cancel();
        else if (!m_reads)
            m_listening = m_reader.listen([this] { m_sink({.type = TapEventType::KeyDown}); });
        m_reads = reading;
    }

private:
    KeyReaderProcess& m_reader;
    Sink m_sink;
    Subscription m_listening;
    bool m_reads = false;
};

class Source final : public TapSource {
public:
    explicit Source(std::shared_ptr<KeyEventReader> reader) : m_reader(std::move(reader)) {}

    ~Source() override { m_reader->setReading(false); }

    void addToRunLoop() override { m_reader->setReading(true); }

    void removeFromRunLoop() override { m_reader->setReading(false); }

private:
    std::shared_ptr<KeyEventReader> m_reader;
};

} // namespace

bool isX11Session() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") &&
           qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// There is one session, taps have no order, and a tap can only listen.
std::shared_ptr<EventTap> LinuxEventTapService::createTap(TapLocation /*location*/,
                                                          TapPlacement /*placement*/,
                                                          TapOptions /*options*/,
                                                          std::uint64_t eventsOfInterest,
                                                          TapCallback callback) {
    return LinuxEventTap::create(
        eventsOfInterest, callback,
        [this](KeyEventReader::Sink sink) -> std::unique_ptr<KeyEventReader> {
            if (isX11Session())
                return X11KeyReader::open(std::move(sink));
            if (!m_reader.start())
                return nullptr;
            return std::make_unique<ReadKeys>(m_reader, std::move(sink));
        });
}

struct LinuxEventTap::Delivery {
    std::uint64_t eventsOfInterest;
    TapCallback callback;
    bool enabled = false;

    void operator()(const TapEvent& event) const {
        if (enabled && (eventsOfInterest & tapEventMask(event.type)) != 0)
            callback(event);
    }
};

std::shared_ptr<LinuxEventTap> LinuxEventTap::create(std::uint64_t eventsOfInterest,
                                                     TapCallback callback,
                                                     const ReaderMaker& makeReader) {
    auto delivery = std::make_shared<Delivery>(
        Delivery{.eventsOfInterest = eventsOfInterest, .callback = callback});
    auto reader = makeReader([delivery](const TapEvent& event) { (*delivery)(event); });
    if (!reader)
        return nullptr;
    return std::shared_ptr<LinuxEventTap>(
        new LinuxEventTap(std::move(delivery), std::move(reader)));
}

LinuxEventTap::LinuxEventTap(std::shared_ptr<Delivery> delivery,
                             std::shared_ptr<KeyEventReader> reader)
    : m_delivery(std::move(delivery)), m_reader(std::move(reader)) {}

LinuxEventTap::~LinuxEventTap() {
    m_delivery->enabled = false;
}

// An event loop has no order among its descriptors.
std::shared_ptr<TapSource> LinuxEventTap::createRunLoopSource(int /*order*/) {
    auto source = m_source.lock();
    if (!source) {
        source = std::make_shared<Source>(m_reader);
        m_source = source;
    }
    return source;
}

void LinuxEventTap::enable(bool enabled) {
    m_delivery->enabled = enabled;
}

} // namespace quorvane
