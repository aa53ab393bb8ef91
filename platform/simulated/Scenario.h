#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorvane {

/// A machine and what happens to it, as a scenario file describes them. All times are seconds from
/// the start of the scenario. The file is JSON, comments allowed; docs/scenarios.md tells its keys.
struct Scenario {
    /// A point of a lid's way: the angle moves from one to the next in a straight line, and rests
    /// before the first and after the last.
    struct LidPoint {
        double at = 0;
        double degrees = 0;
    };

    struct Device {
        int vendorID = 0x05AC;
        std::optional<int> productID;
        /// Empty: every reading of the device fails.
        std::vector<LidPoint> lid;
        bool refusesOpen = false;
        std::optional<double> unplugAt;
        /// Reports that answer single readings (the first is 1) instead of the lid.
        std::map<int, std::vector<std::uint8_t>> readings;
    };

    /// A control pressed, by its accessible name.
    struct Press {
        std::string control;
    };

    /// A notification of the workspace.
    struct Workspace {
        std::string name;
    };

    /// A notification inside the process, on the default centre.
    struct Post {
        std::string name;
    };
    enum class Key { Down, Repeat, Up, FlagsChanged };

    /// The program is asked to leave, as by closing its window.
    struct Quit {};

    struct Event {
        double at = 0;
        std::variant<Press, Workspace, Post, Key, Quit> what;
    };

    std::string model;
    bool trusted = false;
    bool loginItem = false;
    /// A defaults store of the scenario's own, with these values; none: the person's own store.
    std::optional<std::map<std::string, bool>> defaults;
    std::vector<Device> devices;
    bool hidManagerRefusesOpen = false;
    /// In the order of the file; times never decrease.
    std::vector<Event> events;
};

struct ScenarioError {
    /// What is wrong and where, for a person.
    std::string description;
};

/// Reads a scenario from its text. Unknown keys and values are errors, so that a typing error never
/// simulates another machine than was meant.
[[nodiscard]] std::variant<Scenario, ScenarioError> parseScenario(std::string_view text);

/// Reads a scenario from a file.
[[nodiscard]] std::variant<Scenario, ScenarioError> loadScenario(const std::filesystem::path& path);

/// Where a lid is `time` seconds into its way; `way` is not empty.
[[nodiscard]] double lidAngleAt(const std::vector<Scenario::LidPoint>& way, double time);

} // namespace quorvane
