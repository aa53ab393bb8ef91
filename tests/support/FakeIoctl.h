#pragma once

#include <functional>
#include <optional>

#include "base/NonCopyable.h"

namespace quorvane {

/// Replaces the kernel's ioctl while it lives, in programs that are linked with --wrap=ioctl. The
/// last one made is used.
class FakeIoctl : NonCopyable {
public:
    /// What the call returns, with errno set for -1; none: the kernel is called.
    using Handler =
        std::function<std::optional<int>(int descriptor, unsigned long request, void* argument)>;

    explicit FakeIoctl(Handler handler);
    ~FakeIoctl();

private:
    Handler m_before;
};

} // namespace quorvane
