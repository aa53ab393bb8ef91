#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "platform/EventTap.h"
#include "platform/linux/keyboard/KeyboardAccessPrompt.h"
#include "platform/linux/keyboard/UdevKeyboardWatcher.h"

namespace quorvane {

/// Whether keys may be listened to. Under X11 any client may; in a Wayland session only a process
/// that can read the event node of a keyboard.
class LinuxAccessibility final : public Accessibility {
public:
    /// The event nodes of the machine's keyboards.
    using Keyboards = std::function<std::vector<std::filesystem::path>()>;

    explicit LinuxAccessibility(Keyboards keyboards = &UdevKeyboardWatcher::list);

    [[nodiscard]] bool isProcessTrusted() const override;
    bool isProcessTrustedWithOptions(bool prompt) override;

    void withdrawPrompt() override { m_hasPrompted = false; }

    [[nodiscard]] std::string obstacle() const override;

    [[nodiscard]] Subscription observeObstacle(std::function<void()> /*observer*/) override {
        return {};
    }

private:
    Keyboards m_keyboards;
    KeyboardAccessPrompt m_prompt;
    bool m_hasPrompted = false;
};

} // namespace quorvane
