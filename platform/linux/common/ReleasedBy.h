#pragma once

namespace quorvane {

/// Deleter for a std::unique_ptr to an object of a C library, which `release` releases.
template <auto release>
struct ReleasedBy {
    template <typename Object>
    void operator()(Object* object) const {
        release(object);
    }
};

} // namespace quorvane
