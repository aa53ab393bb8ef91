#include "tests/support/FakeIoctl.h"

#include <cstdarg>
#include <utility>

namespace quorvane {

namespace {

FakeIoctl::Handler currentHandler;

} // namespace

FakeIoctl::FakeIoctl(Handler handler)
    : m_before(std::exchange(currentHandler, std::move(handler))) {}

FakeIoctl::~FakeIoctl() {
    currentHandler = std::move(m_before);
}

} // namespace quorvane

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names.
extern "C" {

int __real_ioctl(int descriptor, unsigned long request, ...);

int __wrap_ioctl(int descriptor, unsigned long request, ...) {
    std::va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (quorvane::currentHandler)
        if (const auto result = quorvane::currentHandler(descriptor, request, argument))
            return *result;
    return __real_ioctl(descriptor, request, argument);
}
}
// NOLINTEND(bugprone-reserved-identifier)
