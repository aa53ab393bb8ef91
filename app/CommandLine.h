#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace quorvane {

/// What the person asked the program to do.
struct CommandLine {
    enum class Mode {
        Run,
        /// The real program on the devices of the scenario in `scenarioFile`.
        Simulate,
        /// The same with the scenario that the program carries.
        Demo,
        Help,
        Version
    };

    Mode mode = Mode::Run;
    std::string scenarioFile;

    bool operator==(const CommandLine&) const = default;
};

struct CommandLineError {
    /// What is wrong, for a person.
    std::string description;
};

/// Understands `arguments`, which do not include the program's own name. Help and version win over
/// anything else that is right.
[[nodiscard]] std::variant<CommandLine, CommandLineError>
parseCommandLine(std::span<const char* const> arguments);

/// What `--help` prints.
[[nodiscard]] std::string_view commandLineHelp();

} // namespace quorvane
