#pragma once

#include "platform/System.h"

namespace quorvane {

/// Random numbers from getrandom().
class LinuxRandom final : public Random {
public:
    std::uint64_t uniform(std::uint64_t upperBound) override;
};

} // namespace quorvane
