#pragma once

#include <string>

namespace quorvane {

/// The shortest form that reads back as the same double, with at least one decimal: 25 gives
/// "25.0", 12.5 gives "12.5". In exponent notation where that is shorter: 1e300 gives "1e+300".
[[nodiscard]] std::string formatDouble(double value);

/// `value` with exactly one decimal, rounded half to even on the exact binary value ("%.1f").
[[nodiscard]] std::string formatOneDecimal(double value);

/// Lowercase hexadecimal without leading zeros: 0x8104 gives "8104".
[[nodiscard]] std::string formatHex(unsigned value);

} // namespace quorvane
