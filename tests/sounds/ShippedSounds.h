#pragma once

#include <array>
#include <iosfwd>
#include <string>

#include "tests/sounds/Measures.h"

namespace quorvane {

/// A sound that comes with the program, and how the program plays it.
struct ShippedSound {
    const char* name;
    /// The player's volume, 0 to 1.
    double volume;
    /// The lengths allowed, in s.
    double shortest;
    double longest;
    /// The program that makes it.
    const char* synthesis;
};

/// For the tests' names.
std::ostream& operator<<(std::ostream& stream, const ShippedSound& sound);

inline constexpr ShippedSound creak{"creaking", 1.0, 2, 4, "creak_synthesis"};
inline constexpr ShippedSound crack{"keyboard", 0.5, 0.02, 0.25, "crack_synthesis"};
inline constexpr ShippedSound fan{"fanmac", 0.6, 8, 12, "fan_synthesis"};
inline constexpr ShippedSound tractor{"tractor", 1.0, 7, 10, "tractor_synthesis"};
inline constexpr std::array shippedSounds{creak, crack, fan, tractor};

/// The sound's file.
std::string pathOf(const ShippedSound& sound);

/// Its samples as the program reads them. Throws unless they are one channel at 44100 Hz.
Samples shipped(const ShippedSound& sound);

/// The samples of any sound file that the program could read; throws like shipped().
Samples decoded(const std::string& path);

} // namespace quorvane
