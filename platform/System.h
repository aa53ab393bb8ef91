#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/NonCopyable.h"

namespace quorvane {

// Main thread only.

/// The user's stored settings.
class UserDefaults : NonCopyable {
public:
    virtual ~UserDefaults() = default;

    /// False if the key is missing or not a Boolean.
    [[nodiscard]] virtual bool boolForKey(std::string_view key) const = 0;
    /// Takes effect at once in this process. If the store cannot be written, prints an error on
    /// standard error, and the value is lost at exit.
    virtual void setBool(std::string_view key, bool value) = 0;
};

/// The application's resources.
class Bundle : NonCopyable {
public:
    virtual ~Bundle() = default;

    /// The file `name`.`extension`; none if there is no such resource.
    [[nodiscard]] virtual std::optional<std::filesystem::path>
    urlForResource(std::string_view name, std::string_view extension) const = 0;
};

/// Facts about the machine.
class SystemInfo : NonCopyable {
public:
    virtual ~SystemInfo() = default;

    /// The manufacturer's model name ("MacBookPro18,3"); empty if unknown.
    [[nodiscard]] virtual std::string modelName() const = 0;
};

/// The system's random numbers.
class Random : NonCopyable {
public:
    virtual ~Random() = default;

    /// A uniform whole number from 0 to `upperBound`, both included.
    virtual std::uint64_t uniform(std::uint64_t upperBound) = 0;
};

/// Standard output, which carries the console lines and nothing else.
class Console : NonCopyable {
public:
    virtual ~Console() = default;

    /// Writes `line` and a newline at once; a closed pipe is ignored.
    virtual void print(std::string_view line) = 0;
};

} // namespace quorvane
