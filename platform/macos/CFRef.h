#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

#include "base/NonCopyable.h"

namespace quorvane {

/// One reference to a Core Foundation object, or none. `Ref` is the object's own pointer type
/// (CFStringRef, IOHIDManagerRef).
template <typename Ref>
class CFRef : NonCopyable {
public:
    CFRef() = default;

    /// Takes over the reference that a function with "Create" or "Copy" in its name gave.
    [[nodiscard]] static CFRef owned(Ref object) {
        CFRef ref;
        ref.m_object = object;
        return ref;
    }

    /// Adds a reference to an object that has another owner.
    [[nodiscard]] static CFRef shared(Ref object) {
        if (object)
            CFRetain(object);
        return owned(object);
    }

    CFRef(CFRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}

    CFRef& operator=(CFRef&& other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }

    ~CFRef() {
        if (m_object)
            CFRelease(m_object);
    }

    [[nodiscard]] Ref get() const { return m_object; }

    explicit operator bool() const { return m_object != nullptr; }

private:
    Ref m_object = nullptr;
};

} // namespace quorvane
