#pragma once

#include <functional>
#include <optional>

#include "base/NonCopyable.h"

namespace quorvane {

/// A fake of the kernel's ioctl while it lives, so that a device needs no hardware.
/// For programs that are linked with --wrap=ioctl. The last one made counts.
class FakeIoctl : NonCopyable {
public:
    /// What the call returns, with errno set for -1; none: the kernel is asked.
    using Answer =
        std::function<std::optional<int>(int descriptor, unsigned long request, void* argument)>;

    explicit FakeIoctl(Answer answer);
    ~FakeIoctl();

private:
    Answer m_before;
};

} // namespace quorvane
