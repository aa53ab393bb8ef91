#pragma once

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

#include "base/NonCopyable.h"

namespace quorvane {

/// A file descriptor that is closed with the object, or none.
class FileDescriptor : NonCopyable {
public:
    FileDescriptor() = default;

    /// Below 0, as system calls return for an error: none.
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}

    /// Opens a file that exists, to be closed on exec. None on failure, with the error in errno.
    [[nodiscard]] static FileDescriptor open(const std::filesystem::path& file, int flags) {
        int descriptor = -1;
        do {
            descriptor = ::open(file.c_str(), flags | O_CLOEXEC);
        } while (descriptor < 0 && errno == EINTR);
        return FileDescriptor(descriptor);
    }

    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    ~FileDescriptor() {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }

    [[nodiscard]] int get() const { return m_descriptor; }

    explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

} // namespace quorvane
