#pragma once

#include <cstdint>

#include "base/NonCopyable.h"
#include "base/Observable.h"

namespace quorvane {

/// What the desktop tells about how the program is to look on it. Main thread only.
class Desktop : NonCopyable {
public:
    virtual ~Desktop() = default;

    /// The person has asked for less motion: what moves without end is to rest. False where the
    /// desktop says nothing.
    [[nodiscard]] virtual const Observable<bool>& reducesMotion() const = 0;

    /// Other windows cover the one that is watched to the last pixel. False where the window system
    /// does not tell.
    [[nodiscard]] virtual const Observable<bool>& windowIsCovered() const = 0;

    /// Names the program's window, by the window system's own number.
    virtual void watchWindow(std::uintptr_t window) = 0;
};

} // namespace quorvane
