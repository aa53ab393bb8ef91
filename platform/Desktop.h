#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/NonCopyable.h"
#include "base/Observable.h"

namespace quorvane {

/// Font families that the screens use by name.
struct FontFamilies {
    /// Emoji in colour.
    std::string emoji = "Noto Color Emoji";
    /// The system's own rounded family, in every weight; empty if it has none.
    std::string rounded;
};

/// A picture of 8 bits a channel: red, green, blue and alpha, the colours multiplied by alpha.
struct SymbolPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// The desktop's appearance settings and fonts, and the state of the program's window. Main thread
/// only.
class Desktop : NonCopyable {
public:
    virtual ~Desktop() = default;

    /// The user prefers reduced motion: endless animations must stop. False if unknown.
    [[nodiscard]] virtual const Observable<bool>& reducesMotion() const = 0;

    /// Other windows cover every pixel of the watched window. False if unknown.
    [[nodiscard]] virtual const Observable<bool>& windowIsCovered() const = 0;

    /// Starts watching the program's window; `window` is its QWindow::winId().
    virtual void watchWindow(std::uintptr_t window) = 0;

    [[nodiscard]] virtual FontFamilies fontFamilies() const { return {}; }

    /// The system symbol `name` in white, as large as fits in a square of `pixels` pixels; none
    /// where the system has no symbols, or not this one.
    [[nodiscard]] virtual std::optional<SymbolPicture> symbol(std::string_view /*name*/,
                                                              int /*pixels*/) const {
        return std::nullopt;
    }
};

} // namespace quorvane
