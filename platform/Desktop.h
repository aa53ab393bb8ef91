#pragma once

#include <cstdint>

#include "base/NonCopyable.h"
#include "base/Observable.h"

namespace quorvane {

/// Settings and state of the desktop that affect how the program draws. Main thread only.
class Desktop : NonCopyable {
public:
    virtual ~Desktop() = default;

    /// The user has asked for reduced motion: endless animations must rest. False if unknown.
    [[nodiscard]] virtual const Observable<bool>& reducesMotion() const = 0;

    /// Other windows cover the watched window completely. False if the window system does not
    /// report it.
    [[nodiscard]] virtual const Observable<bool>& windowIsCovered() const = 0;

    /// Sets the watched window, by the window system's ID.
    virtual void watchWindow(std::uintptr_t window) = 0;
};

} // namespace quorvane
