#include "platform/linux/keyboard/LinuxEventTapService.h"

#include <utility>

#include "platform/linux/keyboard/EvdevKeyReader.h"
#include "platform/linux/keyboard/LinuxEventTap.h"
#include "platform/linux/keyboard/SessionType.h"
#include "platform/linux/keyboard/UdevKeyboardWatcher.h"
#include "platform/linux/keyboard/X11KeyReader.h"

namespace quorvane {

namespace {

std::unique_ptr<KeyEventReader> makeReader(KeyEventReader::Sink sink) {
    if (isX11Session())
        return X11KeyReader::open(std::move(sink));
    return EvdevKeyReader::open(std::make_unique<UdevKeyboardWatcher>(), std::move(sink));
}

} // namespace

// There is one session, nothing stands ahead of anything, and all that is possible is to listen.
std::shared_ptr<EventTap> LinuxEventTapService::createTap(TapLocation /*location*/,
                                                          TapPlacement /*placement*/,
                                                          TapOptions /*options*/,
                                                          std::uint64_t eventsOfInterest,
                                                          TapCallback callback) {
    return LinuxEventTap::create(eventsOfInterest, callback, &makeReader);
}

} // namespace quorvane
