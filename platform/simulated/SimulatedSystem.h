#pragma once

#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/Application.h"
#include "platform/System.h"

namespace quorvane {

/// Settings in memory.
class SimulatedUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;

private:
    std::map<std::string, bool, std::less<>> m_values;
};

/// Resources at paths that a test sets.
class SimulatedBundle final : public Bundle {
public:
    [[nodiscard]] std::optional<std::filesystem::path>
    urlForResource(std::string_view name, std::string_view extension) const override;

    void addResource(std::string_view name, std::string_view extension, std::filesystem::path path);

    void removeResources() { m_paths.clear(); }

private:
    std::map<std::string, std::filesystem::path, std::less<>> m_paths;
};

/// A machine whose model a test sets.
class SimulatedSystemInfo final : public SystemInfo {
public:
    [[nodiscard]] std::string modelName() const override { return model; }

    std::string model;
};

/// A program whose state a test sets.
class SimulatedApplication final : public Application {
public:
    [[nodiscard]] LoginItemStatus loginItemStatus() const override { return loginItem; }

    [[nodiscard]] bool isActive() const override { return active; }

    LoginItemStatus loginItem = LoginItemStatus::NotRegistered;
    bool active = true;
};

/// Draws from a script, then from a seeded generator: the same seed gives the same numbers.
class SimulatedRandom final : public Random {
public:
    explicit SimulatedRandom(std::uint64_t seed = 1) : m_engine(seed) {}

    std::uint64_t uniform(std::uint64_t upperBound) override;

    /// Seeds the generator; the script stays.
    void reseed(std::uint64_t seed) { m_engine.seed(seed); }

    /// Adds the results of the next draws, in order, each clamped to its draw's upper bound.
    void script(std::initializer_list<std::uint64_t> draws);

    /// The upper bounds of all draws so far.
    [[nodiscard]] const std::vector<std::uint64_t>& bounds() const { return m_bounds; }

private:
    std::mt19937_64 m_engine;
    std::deque<std::uint64_t> m_script;
    std::vector<std::uint64_t> m_bounds;
};

/// Records the lines.
class SimulatedConsole final : public Console {
public:
    void print(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

} // namespace quorvane
