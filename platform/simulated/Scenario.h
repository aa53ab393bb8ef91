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
/// the start of the scenario. docs/scenarios.md describes the file.
struct Scenario {
    /// A point of a lid's movement, which is linear between points; before the first and after the
    /// last the lid rests.
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
        /// The reports of single readings, counted from 1, instead of the lid's.
        std::map<int, std::vector<std::uint8_t>> readings;
    };

    /// A control pressed, by its accessible name.
    struct Press {
        std::string control;
    };

    /// A notification posted on the workspace centre.
    struct Workspace {
        std::string name;
    };

    /// A notification posted on the default centre.
    struct Post {
        std::string name;
    };

    enum class Key { Down, Repeat, Up, FlagsChanged };

    /// The program quits, as by closing its window.
    struct Quit {};

    struct Event {
        double at = 0;
        std::variant<Press, Workspace, Post, Key, Quit> what;
    };

    std::string model;
    bool trusted = false;
    bool loginItem = false;
    /// Settings of the scenario's own, with these values; none: the user's settings.
    std::optional<std::map<std::string, bool>> defaults;
    std::vector<Device> devices;
    bool hidManagerRefusesOpen = false;
    /// In the order of the file; times never decrease.
    std::vector<Event> events;
};

struct ScenarioError {
    /// What is wrong, for the user.
    std::string description;
    /// Where in the text, in characters, from 1 on; both 0 if the text could not be read at all.
    int line = 0;
    int column = 0;

    /// "FILE:LINE:COLUMN: what", without a line and a column "FILE: what".
    [[nodiscard]] std::string in(std::string_view file) const;
};

/// Parses a scenario. Unknown keys and values are errors, so that a typing error never simulates a
/// machine other than intended.
[[nodiscard]] std::variant<Scenario, ScenarioError> parseScenario(std::string_view text);

/// Reads a scenario from a regular file of 1 MiB at most; anything else is an error.
[[nodiscard]] std::variant<Scenario, ScenarioError> loadScenario(const std::filesystem::path& path);

/// The lid's angle in degrees at `time`; `points` is not empty.
[[nodiscard]] double lidAngleAt(const std::vector<Scenario::LidPoint>& points, double time);

} // namespace quorvane
