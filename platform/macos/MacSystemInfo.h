#pragma once

#include "platform/System.h"

namespace quorvane {

/// The model by the kernel's "hw.model".
class MacSystemInfo final : public SystemInfo {
public:
    [[nodiscard]] std::string modelName() const override;
};

} // namespace quorvane
