#include "platform/linux/LinuxEventTaps.h"

namespace quorvane {

std::shared_ptr<EventTap> LinuxEventTaps::createTap(TapLocation /*location*/,
                                                    TapPlacement /*placement*/,
                                                    TapOptions /*options*/,
                                                    std::uint64_t /*eventsOfInterest*/,
                                                    TapCallback /*callback*/) {
    return nullptr;
}

} // namespace quorvane
