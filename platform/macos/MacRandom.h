#pragma once

#include "platform/System.h"

namespace quorvane {

/// The system's random numbers.
class MacRandom final : public Random {
public:
    std::uint64_t uniform(std::uint64_t upperBound) override;
};

} // namespace quorvane
