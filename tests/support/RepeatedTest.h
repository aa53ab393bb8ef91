#pragma once

#include <string>

namespace quorvane {

/// Lets the running test be repeated if it fails, up to three times, when it is the only one of
/// this process, as under CTest: `reason` tells why the failure would say nothing of the program.
/// The repeats are counted in repeats.log, beside the test program.
void repeatIfItFails(const std::string& reason);

} // namespace quorvane
