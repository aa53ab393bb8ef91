#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace quorvane {

/// The parsed command line.
struct CommandLine {
    enum class Mode {
        Run,
        /// The real program on the devices of the scenario in `scenarioFile`.
        Simulate,
        /// The same with the built-in scenario.
        Demo,
        /// Ends the real program that runs.
        Stop,
        Help,
        Version
    };

    Mode mode = Mode::Run;
    std::string scenarioFile;

    bool operator==(const CommandLine&) const = default;
};

struct CommandLineError {
    /// A message for the user.
    std::string description;
};

/// Parses main()'s `arguments`, of which the first, if there is any, is the program's own name.
/// Help and version win over other valid options, and the first of them over the other; stop wins
/// over what starts the program. A file
/// whose name begins with a dash is given as "--simulated=FILE".
[[nodiscard]] std::variant<CommandLine, CommandLineError>
parseCommandLine(std::span<const char* const> arguments);

/// What `--help` prints.
[[nodiscard]] std::string_view commandLineHelp();

} // namespace quorvane
