#pragma once

#include <string>

namespace quorvane {

/// One result of the hardware check.
struct CheckRow {
    std::string feature;
    bool passed = false;
    std::string ok;
    std::string fail;

    bool operator==(const CheckRow&) const = default;
};

} // namespace quorvane
