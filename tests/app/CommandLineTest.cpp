#include "app/CommandLine.h"

#include <vector>

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using Mode = CommandLine::Mode;

std::variant<CommandLine, CommandLineError> parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "quorvane");
    return parseCommandLine(arguments);
}

CommandLine understood(const std::vector<const char*>& arguments) {
    const auto result = parse(arguments);
    if (const auto* error = std::get_if<CommandLineError>(&result)) {
        ADD_FAILURE() << "refused: " << error->description;
        return {};
    }
    return std::get<CommandLine>(result);
}

CommandLine withMode(Mode mode) {
    CommandLine result;
    result.mode = mode;
    return result;
}

std::string refused(const std::vector<const char*>& arguments) {
    const auto result = parse(arguments);
    const auto* error = std::get_if<CommandLineError>(&result);
    return error ? error->description : "understood";
}

TEST(CommandLine, WithoutArgumentsRuns) {
    EXPECT_EQ(understood({}), CommandLine{});
}

TEST(CommandLine, WithoutEvenTheProgramsNameRuns) {
    const auto result = parseCommandLine({});
    ASSERT_TRUE(std::holds_alternative<CommandLine>(result));
    EXPECT_EQ(std::get<CommandLine>(result), CommandLine{});
}

TEST(CommandLine, TakesTheScenarioFileInBothForms) {
    const CommandLine expected{.mode = Mode::Simulate, .scenarioFile = "a b.scenario"};
    EXPECT_EQ(understood({"--simulated", "a b.scenario"}), expected);
    EXPECT_EQ(understood({"--simulated=a b.scenario"}), expected);
}

TEST(CommandLine, TakesAFileThatLooksLikeAnOptionAfterAnEqualsSignOnly) {
    EXPECT_EQ(understood({"--simulated=--demo"}),
              (CommandLine{.mode = Mode::Simulate, .scenarioFile = "--demo"}));
    EXPECT_EQ(refused({"--simulated", "--demo"}), "--simulated needs a file");
    EXPECT_EQ(refused({"--simulated", "--help"}), "--simulated needs a file");
    EXPECT_EQ(refused({"--simulated", "-h"}), "--simulated needs a file");
}

TEST(CommandLine, ChoosesTheDemo) {
    EXPECT_EQ(understood({"--demo"}), withMode(Mode::Demo));
}

TEST(CommandLine, StopWinsOverWhatStartsTheProgram) {
    EXPECT_EQ(understood({"--stop"}), withMode(Mode::Stop));
    EXPECT_EQ(understood({"--stop", "--stop"}), withMode(Mode::Stop));
    EXPECT_EQ(understood({"--demo", "--stop"}), withMode(Mode::Stop));
    EXPECT_EQ(understood({"--stop", "--demo", "--simulated=file"}), withMode(Mode::Stop));
    EXPECT_EQ(understood({"--stop", "--help"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"--version", "--stop"}), withMode(Mode::Version));
}

TEST(CommandLine, HelpAndVersionWinOverOtherOptions) {
    EXPECT_EQ(understood({"--help"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"-h"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"--demo", "--help"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"--version", "--demo"}), withMode(Mode::Version));
    EXPECT_EQ(understood({"--version", "--help"}), withMode(Mode::Version));
    EXPECT_EQ(understood({"--help", "--version"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"--demo", "--version"}), withMode(Mode::Version));
    EXPECT_EQ(understood({"--help", "--simulated=file"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"--simulated", "file", "--help"}), withMode(Mode::Help));
}

TEST(CommandLine, AnUnknownOptionIsAnErrorThatNamesIt) {
    EXPECT_EQ(refused({"--wobble"}), "unknown option '--wobble'");
    EXPECT_EQ(refused({"-x"}), "unknown option '-x'");
    EXPECT_EQ(refused({"--help", "--wobble"}), "unknown option '--wobble'");
    EXPECT_EQ(refused({"--demonstration"}), "unknown option '--demonstration'");
    EXPECT_EQ(refused({"--simulatedfile"}), "unknown option '--simulatedfile'");
    EXPECT_EQ(refused({"-H"}), "unknown option '-H'");
    EXPECT_EQ(refused({"-"}), "unknown option '-'");
}

TEST(CommandLine, AStrayArgumentIsAnErrorThatNamesIt) {
    EXPECT_EQ(refused({"file"}), "unexpected argument 'file'");
    EXPECT_EQ(refused({""}), "unexpected argument ''");
}

TEST(CommandLine, AScenarioWithoutAFileIsAnError) {
    EXPECT_EQ(refused({"--simulated"}), "--simulated needs a file");
    EXPECT_EQ(refused({"--simulated="}), "--simulated needs a file");
    EXPECT_EQ(refused({"--simulated", ""}), "--simulated needs a file");
    EXPECT_EQ(refused({"--help", "--simulated"}), "--simulated needs a file");
}

TEST(CommandLine, TwoMachinesAtOnceAreAnError) {
    EXPECT_EQ(refused({"--demo", "--simulated", "file"}), "one simulated machine at a time");
    EXPECT_EQ(refused({"--simulated", "file", "--demo"}), "one simulated machine at a time");
    EXPECT_EQ(refused({"--demo", "--demo"}), "one simulated machine at a time");
    EXPECT_EQ(refused({"--simulated=a", "--simulated=b"}), "one simulated machine at a time");
}

TEST(CommandLine, HelpNamesEveryOptionAndHowToLeave) {
    EXPECT_EQ(commandLineHelp(),
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
              "It leaves when its window is closed, and on Ctrl-C.\n");
}

} // namespace
} // namespace quorvane
