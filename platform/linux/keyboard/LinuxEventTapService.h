#pragma once

#include "platform/EventTap.h"

namespace quorvane {

/// Key events of the session: from the X server where all of it goes through one, else from the
/// keyboards themselves.
class LinuxEventTapService final : public EventTapService {
public:
    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                                      TapOptions options,
                                                      std::uint64_t eventsOfInterest,
                                                      TapCallback callback) override;
};

} // namespace quorvane
