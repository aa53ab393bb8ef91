#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/NonCopyable.h"

namespace quorvane {

/// The one-line services of the operating system. All of them: main thread only.

/// The person's stored settings.
class UserDefaults : NonCopyable {
public:
    virtual ~UserDefaults() = default;

    /// False when the key is absent or holds no Boolean.
    [[nodiscard]] virtual bool boolForKey(std::string_view key) const = 0;
    /// Takes effect at once in this process, and lastly when the store can be written; a store that
    /// cannot be written says so on standard error and changes nothing else.
    virtual void setBool(std::string_view key, bool value) = 0;
};

/// The application's resources.
class Bundle : NonCopyable {
public:
    virtual ~Bundle() = default;

    /// The file of the resource `name` with the extension `extension`; none if there is no such.
    [[nodiscard]] virtual std::optional<std::filesystem::path>
    urlForResource(std::string_view name, std::string_view extension) const = 0;
};

/// What is known of the machine.
class SystemInfo : NonCopyable {
public:
    virtual ~SystemInfo() = default;

    /// The maker's name of the model ("MacBookPro18,3"); empty when it is not known.
    [[nodiscard]] virtual std::string modelName() const = 0;
};

/// The system's random numbers.
class Random : NonCopyable {
public:
    virtual ~Random() = default;

    /// Uniform over the whole numbers from 0 to `upperBound`, both included.
    virtual std::uint64_t uniform(std::uint64_t upperBound) = 0;
};

/// Standard output, which carries the system's console lines and nothing else.
class Console : NonCopyable {
public:
    virtual ~Console() = default;

    /// Writes `line` and a line end at once; a reader that has gone is not an error.
    virtual void print(std::string_view line) = 0;
};

} // namespace quorvane
