#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What libFuzzer calls with each input; returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quorvane {

[[nodiscard]] inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process as a crash unless the property holds.
inline void require(bool holds, const char* property) {
    if (holds)
        return;
    // Standard error is the program's, and closed.
    std::printf("Does not hold: %s\n", property);
    std::fflush(stdout);
    std::abort();
}

} // namespace quorvane
