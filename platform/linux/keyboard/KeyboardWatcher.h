#pragma once

#include <filesystem>
#include <functional>

#include "base/NonCopyable.h"

namespace quorvane {

/// The event nodes of the machine's keyboards, which come and go. Main thread only.
class KeyboardWatcher : NonCopyable {
public:
    using Visit = std::function<void(const std::filesystem::path& node)>;

    virtual ~KeyboardWatcher() = default;

    /// Calls `present` for every node that is there, at once, and from the Qt event loop for each
    /// that comes or may have become readable, so that it can be called for one again; `gone` for
    /// each that goes. Called once.
    virtual void follow(Visit present, Visit gone) = 0;
};

} // namespace quorvane
