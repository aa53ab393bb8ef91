#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Canvas.h"

namespace quorvane {

/// A picture of 8 bits a channel: red, green, blue and alpha, the colours multiplied by alpha.
struct SymbolPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// The system symbol `name` in one colour, as large as fits in a square of `pixels` pixels and in
/// its middle; none if the system has no such symbol. Any thread.
[[nodiscard]] std::optional<SymbolPicture> drawSystemSymbol(std::string_view name, int pixels,
                                                            const Color& color);

/// The family of the system font in its rounded design; empty if there is none.
[[nodiscard]] std::string roundedSystemFontFamily();

} // namespace quorvane
