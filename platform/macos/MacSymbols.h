#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Canvas.h"
#include "platform/Desktop.h"

namespace quorvane {

/// The system symbol `name` in one colour, as large as fits in a square of `pixels` pixels and in
/// its middle; none if the system has no such symbol. Any thread.
[[nodiscard]] std::optional<SymbolPicture> drawSystemSymbol(std::string_view name, int pixels,
                                                            const Color& color);

/// The family of the system font in its rounded design; empty if there is none.
[[nodiscard]] std::string roundedSystemFontFamily();

} // namespace quorvane
