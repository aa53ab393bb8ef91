#pragma once

#include "platform/Desktop.h"

namespace quorvane {

/// A desktop whose state a test sets.
class SimulatedDesktop final : public Desktop {
public:
    [[nodiscard]] const Observable<bool>& reducesMotion() const override { return motionReduced; }

    [[nodiscard]] const Observable<bool>& windowIsCovered() const override { return covered; }

    void watchWindow(std::uintptr_t window) override { watched = window; }

    [[nodiscard]] std::optional<SymbolPicture> symbol(std::string_view /*name*/,
                                                      int /*pixels*/) const override {
        return everySymbol;
    }

    Observable<bool> motionReduced;
    Observable<bool> covered;
    std::uintptr_t watched = 0;
    std::optional<SymbolPicture> everySymbol;
};

} // namespace quorvane
