#pragma once

#include "platform/System.h"

namespace quorvane {

/// The kernel's random numbers.
class LinuxRandom final : public Random {
public:
    std::uint64_t uniform(std::uint64_t upperBound) override;
};

} // namespace quorvane
