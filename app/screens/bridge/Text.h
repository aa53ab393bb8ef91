#pragma once

#include <QString>

#include <string_view>

namespace quorvane {

/// UTF-8 text of the logic as the toolkit wants it.
[[nodiscard]] inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace quorvane
