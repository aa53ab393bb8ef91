#pragma once

#include <filesystem>
#include <functional>

#include "base/NonCopyable.h"

namespace quorvane {

/// Finds the event nodes of keyboards as these come and go. Main thread only.
class KeyboardWatcher : NonCopyable {
public:
    using Visit = std::function<void(const std::filesystem::path& node)>;

    virtual ~KeyboardWatcher() = default;

    /// Calls `present` at once for every node that exists and later, from the Qt event loop, for
    /// each that is added or may have become readable, so possibly more than once for a node; calls
    /// `gone` for each that is removed. To be called once.
    virtual void follow(Visit present, Visit gone) = 0;
};

} // namespace quorvane
