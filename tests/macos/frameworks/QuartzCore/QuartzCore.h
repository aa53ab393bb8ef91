#pragma once

// Framework: QuartzCore.

#include "Annotations.h"

/// Seconds of the monotonic clock that stands still while the machine sleeps.
QV_EXTERN double CACurrentMediaTime(void) QV_AVAILABLE(10.5);
