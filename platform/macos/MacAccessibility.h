#pragma once

#include "platform/EventTap.h"

namespace quorvane {

/// The Accessibility permission of the system's privacy settings.
class MacAccessibility final : public Accessibility {
public:
    [[nodiscard]] bool isProcessTrusted() const override;
    bool isProcessTrustedWithOptions(bool prompt) override;

    /// The system's prompt stays until it is answered.
    void withdrawPrompt() override { m_hasPrompted = false; }

    [[nodiscard]] std::string obstacle() const override;

    /// The system tells of no change.
    [[nodiscard]] Subscription observeObstacle(std::function<void()> /*observer*/) override {
        return {};
    }

private:
    bool m_hasPrompted = false;
};

} // namespace quorvane
