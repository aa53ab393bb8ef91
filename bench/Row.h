#pragma once

#include <cstdio>

namespace quorvane {

/// Prints a row of the table that bench/run prints; rows.py does the same.
inline void printRow(const char* what, double ours, const char* other, double theirs,
                     const char* unit) {
    std::printf("row\t%s\t%.3f\t%s\t%.3f\t%s\n", what, ours, other, theirs, unit);
    std::fflush(stdout);
}

} // namespace quorvane
