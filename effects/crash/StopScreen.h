#pragma once

#include <string>

#include "base/Observable.h"

namespace quorvane {

/// What a stop screen says. Main thread only.
struct StopScreen {
    /// The stop code's name, such as "CRITICAL_PROCESS_DIED".
    Observable<std::string> errorMessage;
    /// The stop code in hexadecimal, such as "0x000000EF".
    Observable<std::string> errorCode;
    /// Completion from 0 to 1.
    Observable<double> progress;
};

} // namespace quorvane
