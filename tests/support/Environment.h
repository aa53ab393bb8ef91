#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "base/NonCopyable.h"

namespace quorvane {

/// Sets or unsets an environment variable while this lives.
class EnvironmentVariable : NonCopyable {
public:
    EnvironmentVariable(std::string name, const std::optional<std::string>& value)
        : m_name(std::move(name)) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): tests that do this have one thread.
        if (const char* before = std::getenv(m_name.c_str()))
            m_before = before;
        set(value);
    }

    ~EnvironmentVariable() { set(m_before); }

private:
    void set(const std::optional<std::string>& value) {
        if (value)
            setenv(m_name.c_str(), value->c_str(), 1); // NOLINT(concurrency-mt-unsafe): as above.
        else
            unsetenv(m_name.c_str()); // NOLINT(concurrency-mt-unsafe): as above.
    }

    std::string m_name;
    std::optional<std::string> m_before;
};

} // namespace quorvane
