#pragma once

#include "platform/EventTap.h"

namespace quorvane {

/// Key taps of CoreGraphics; no more than four in the process at a time.
class MacEventTapService final : public EventTapService {
public:
    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation location, TapPlacement placement,
                                                      TapOptions options,
                                                      std::uint64_t eventsOfInterest,
                                                      TapCallback callback) override;
};

} // namespace quorvane
