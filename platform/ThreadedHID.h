#pragma once

#include "platform/HID.h"

namespace quorvane {

/// The devices of another service, each read by a thread of its own (`ThreadedHIDDevice`). That
/// service's devices have to allow this; everything else is called on the main thread.
class ThreadedHID final : public HIDService {
public:
    /// `service` has to live as long as this.
    explicit ThreadedHID(HIDService& service) : m_service(service) {}

    std::shared_ptr<HIDManager> createManager() override;

private:
    HIDService& m_service;
};

} // namespace quorvane
