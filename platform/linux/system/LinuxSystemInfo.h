#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "platform/System.h"
#include "platform/linux/keyboard/KeyboardAccessPrompt.h"
#include "platform/linux/keyboard/UdevKeyboardWatcher.h"

namespace quorvane {

/// The model by the firmware's word, and whether keys may be listened to. Under X11 any client
/// may; in a Wayland session only who can read a keyboard's own event node.
class LinuxSystemInfo final : public SystemInfo {
public:
    /// The event nodes of the machine's keyboards.
    using Keyboards = std::function<std::vector<std::filesystem::path>()>;

    /// `root` is where /sys and /proc are. Looks at nothing yet.
    explicit LinuxSystemInfo(std::filesystem::path root = "/",
                             Keyboards keyboards = &UdevKeyboardWatcher::list);

    /// DMI's product name, else the device tree's model.
    [[nodiscard]] std::string modelName() const override;
    [[nodiscard]] bool isProcessTrusted() const override;
    bool isProcessTrustedWithOptions(bool prompt) override;

private:
    std::filesystem::path m_root;
    Keyboards m_keyboards;
    KeyboardAccessPrompt m_prompt;
};

} // namespace quorvane
