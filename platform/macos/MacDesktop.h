#pragma once

#include <memory>

#include "platform/Desktop.h"

namespace quorvane {

/// The desktop's accessibility settings, and whether the window is fully covered.
class MacDesktop final : public Desktop {
public:
    MacDesktop();
    ~MacDesktop() override;

    [[nodiscard]] const Observable<bool>& reducesMotion() const override { return m_reducesMotion; }

    [[nodiscard]] const Observable<bool>& windowIsCovered() const override { return m_isCovered; }

    /// `window`: its winId(), which is its NSView.
    void watchWindow(std::uintptr_t window) override;

    [[nodiscard]] FontFamilies fontFamilies() const override;
    [[nodiscard]] std::optional<SymbolPicture> symbol(std::string_view name,
                                                      int pixels) const override;

private:
    struct Observers;

    Observable<bool> m_reducesMotion;
    Observable<bool> m_isCovered;
    std::unique_ptr<Observers> m_observers;
};

} // namespace quorvane
