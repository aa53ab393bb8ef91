#pragma once

#include "platform/HID.h"

namespace quorvane {

/// HID devices through IOKit. Opening a device and reading its report block until it answers;
/// another thread may do so.
class MacHID final : public HIDService {
public:
    std::shared_ptr<HIDManager> createManager() override;
};

} // namespace quorvane
