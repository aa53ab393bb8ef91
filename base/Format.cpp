#include "base/Format.h"

#include <array>
#include <charconv>
#include <cmath>

namespace quorvane {

namespace {

template <class... Arguments>
std::string toText(Arguments... arguments) {
    // Fits any double in fixed notation: 309 digits before the point, 17 after, sign, point.
    std::array<char, 512> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), arguments...);
    return std::string(text.data(), result.ptr);
}

} // namespace

std::string formatDouble(double value) {
    std::string text = toText(value);
    if (std::isfinite(value) && text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

std::string formatOneDecimal(double value) {
    return toText(value, std::chars_format::fixed, 1);
}

std::string formatHex(unsigned value) {
    return toText(value, 16);
}

} // namespace quorvane
