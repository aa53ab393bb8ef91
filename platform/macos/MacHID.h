#pragma once

#include "platform/HID.h"

namespace quorvane {

/// HID devices through IOKit.
class MacHID final : public HIDService {
public:
    std::shared_ptr<HIDManager> createManager() override;
};

} // namespace quorvane
