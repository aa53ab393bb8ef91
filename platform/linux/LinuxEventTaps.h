#pragma once

#include "platform/EventTap.h"

namespace quorvane {

/// Key events of the session.
class LinuxEventTaps final : public EventTapService {
public:
    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                                      TapOptions options,
                                                      std::uint64_t eventsOfInterest,
                                                      TapCallback callback) override;
};

} // namespace quorvane
