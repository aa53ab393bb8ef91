#pragma once

#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/Application.h"
#include "platform/System.h"

namespace quorvane {

/// Settings that live as long as the object, and as many of them as somebody looked at.
class SimulatedUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;

    [[nodiscard]] bool hasKey(std::string_view key) const { return m_values.contains(key); }

private:
    std::map<std::string, bool, std::less<>> m_values;
};

/// Resources by name, each wherever the test says that it is.
class SimulatedBundle final : public Bundle {
public:
    [[nodiscard]] std::optional<std::filesystem::path>
    urlForResource(std::string_view name, std::string_view extension) const override;

    void addResource(std::string_view name, std::string_view extension, std::filesystem::path path);

    /// Nothing is there any more.
    void removeResources() { m_paths.clear(); }

private:
    std::map<std::string, std::filesystem::path, std::less<>> m_paths;
};

/// A machine that is what its fields say.
class SimulatedSystemInfo final : public SystemInfo {
public:
    [[nodiscard]] std::string modelName() const override { return model; }

    std::string model;
};

/// A program of which the desktop knows what the fields say.
class SimulatedApplication final : public Application {
public:
    [[nodiscard]] LoginItemStatus loginItemStatus() const override { return loginItem; }

    [[nodiscard]] bool isActive() const override { return active; }

    LoginItemStatus loginItem = LoginItemStatus::NotRegistered;
    bool active = true;
};

/// Draws from a script, then from a seeded generator. The same seed repeats the same run.
class SimulatedRandom final : public Random {
public:
    explicit SimulatedRandom(std::uint64_t seed = 1) : m_engine(seed) {}

    std::uint64_t uniform(std::uint64_t upperBound) override;

    /// Begins anew, as if made with `seed`; the script stays.
    void reseed(std::uint64_t seed) { m_engine.seed(seed); }

    /// What the next draws give, in order; each is cut to its draw's upper bound.
    void script(std::initializer_list<std::uint64_t> draws);

    /// The upper bounds of all draws so far.
    [[nodiscard]] const std::vector<std::uint64_t>& bounds() const { return m_bounds; }

private:
    std::mt19937_64 m_engine;
    std::deque<std::uint64_t> m_script;
    std::vector<std::uint64_t> m_bounds;
};

/// Keeps the lines that were printed.
class SimulatedConsole final : public Console {
public:
    void print(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

} // namespace quorvane
