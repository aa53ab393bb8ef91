#pragma once

// The C library (libSystem), no framework.

#include <cstddef>

#include "Annotations.h"

QV_EXTERN int sysctlbyname(const char* name, void* oldValue, std::size_t* oldLength, void* newValue,
                           std::size_t newLength);
