#include "app/CommandLine.h"

#include <optional>

namespace quorvane {

namespace {

using Mode = CommandLine::Mode;

constexpr std::string_view simulatedWithFile = "--simulated=";

constexpr std::string_view help =
    "Usage: quorvane [OPTION]\n"
    "\n"
    "Makes a good notebook behave like a cheap one, as a joke on yourself.\n"
    "\n"
    "  --demo             show everything by itself, on a simulated machine\n"
    "  --simulated FILE   run on the simulated machine that the scenario FILE describes\n"
    "  --stop             end the Quorvane that is running, whatever it is doing\n"
    "  --help             print this and leave\n"
    "  --version          print the version and leave\n"
    "\n"
    "It leaves when its window is closed, and on Ctrl-C.\n";

// Not QCommandLineParser: it drops the dashes of unknown options and has messages of its own.
std::optional<Mode> modeOf(std::string_view argument) {
    if (argument == "--help" || argument == "-h")
        return Mode::Help;
    if (argument == "--version")
        return Mode::Version;
    if (argument == "--stop")
        return Mode::Stop;
    if (argument == "--demo")
        return Mode::Demo;
    if (argument == "--simulated" || argument.starts_with(simulatedWithFile))
        return Mode::Simulate;
    return std::nullopt;
}

int rank(Mode mode) {
    switch (mode) {
    case Mode::Run:
        return 0;
    case Mode::Simulate:
    case Mode::Demo:
        return 1;
    case Mode::Stop:
        return 2;
    case Mode::Help:
    case Mode::Version:
        break;
    }
    return 3;
}

CommandLineError unknown(std::string_view argument) {
    const bool option = argument.starts_with('-');
    return {std::string(option ? "unknown option '" : "unexpected argument '")
                .append(argument)
                .append("'")};
}

} // namespace

std::variant<CommandLine, CommandLineError>
parseCommandLine(std::span<const char* const> arguments) {
    CommandLine result;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const std::optional<Mode> mode = modeOf(argument);
        if (!mode)
            return unknown(argument);
        std::string_view file;
        if (argument.starts_with(simulatedWithFile))
            file = argument.substr(simulatedWithFile.size());
        else if (mode == Mode::Simulate && i + 1 < arguments.size() && arguments[i + 1][0] != '-')
            file = arguments[++i];
        if (mode == Mode::Simulate && file.empty())
            return CommandLineError{"--simulated needs a file"};
        const int wins = rank(*mode) - rank(result.mode);
        if (wins > 0)
            result = {.mode = *mode, .scenarioFile = std::string(file)};
        else if (wins == 0 && rank(*mode) == 1)
            return CommandLineError{"one simulated machine at a time"};
    }
    return result;
}

std::string_view commandLineHelp() {
    return help;
}

} // namespace quorvane
