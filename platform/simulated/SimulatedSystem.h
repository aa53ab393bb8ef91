#pragma once

#include <deque>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/Application.h"
#include "platform/System.h"
#include "platform/simulated/Faults.h"

namespace quorvane {

/// Settings in memory.
class SimulatedUserDefaults final : public UserDefaults {
public:
    explicit SimulatedUserDefaults(std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_faults(std::move(faults)) {}

    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;

private:
    std::shared_ptr<Faults> m_faults;
    std::map<std::string, bool, std::less<>> m_values;
};

/// Resources at paths that a test sets.
class SimulatedBundle final : public Bundle {
public:
    explicit SimulatedBundle(std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_faults(std::move(faults)) {}

    [[nodiscard]] std::optional<std::filesystem::path>
    urlForResource(std::string_view name, std::string_view extension) const override;

    void addResource(std::string_view name, std::string_view extension, std::filesystem::path path);

    void removeResources() { m_paths.clear(); }

private:
    std::shared_ptr<Faults> m_faults;
    std::map<std::string, std::filesystem::path, std::less<>> m_paths;
};

/// A machine whose model a test sets.
class SimulatedSystemInfo final : public SystemInfo {
public:
    explicit SimulatedSystemInfo(std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_faults(std::move(faults)) {}

    [[nodiscard]] std::string modelName() const override {
        return m_faults->fails(Fault::ModelName) ? std::string() : model;
    }

    std::string model;

private:
    std::shared_ptr<Faults> m_faults;
};

/// A program whose state a test sets.
class SimulatedApplication final : public Application {
public:
    explicit SimulatedApplication(std::shared_ptr<Faults> faults = std::make_shared<Faults>())
        : m_faults(std::move(faults)) {}

    [[nodiscard]] LoginItemStatus loginItemStatus() const override {
        return m_faults->fails(Fault::LoginItemStatus) ? LoginItemStatus::NotFound : loginItem;
    }

    [[nodiscard]] bool isActive() const override { return active; }

    LoginItemStatus loginItem = LoginItemStatus::NotRegistered;
    bool active = true;

private:
    std::shared_ptr<Faults> m_faults;
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

    void forgetBounds() { m_bounds.clear(); }

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
