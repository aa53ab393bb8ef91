#pragma once

#include <functional>
#include <string>

#include "platform/EventTap.h"
#include "platform/linux/keyboard/KeyReaderProcess.h"

namespace quorvane {

/// Whether keys may be listened to. Under X11 any client may; in a Wayland session there is the key
/// reader, which must run or be one that can be started without a question.
class LinuxAccessibility final : public Accessibility {
public:
    /// `reader` outlives it.
    explicit LinuxAccessibility(KeyReaderProcess& reader) : m_reader(reader) {}

    [[nodiscard]] bool isProcessTrusted() const override;
    bool isProcessTrustedWithOptions(bool prompt) override;

    void withdrawPrompt() override { m_reader.withdraw(); }

    [[nodiscard]] std::string obstacle() const override { return m_reader.obstacle().get(); }

    [[nodiscard]] Subscription observeObstacle(std::function<void()> observer) override {
        return m_reader.obstacle().observe(std::move(observer));
    }

private:
    KeyReaderProcess& m_reader;
};

} // namespace quorvane
