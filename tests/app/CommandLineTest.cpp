#include "app/CommandLine.h"

#include <vector>

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using Mode = CommandLine::Mode;

CommandLine understood(const std::vector<const char*>& arguments) {
    const auto result = parseCommandLine(arguments);
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
    const auto result = parseCommandLine(arguments);
    const auto* error = std::get_if<CommandLineError>(&result);
    return error ? error->description : "understood";
}

TEST(CommandLine, WithoutArgumentsRuns) {
    EXPECT_EQ(understood({}), CommandLine{});
}

TEST(CommandLine, NamesTheScenarioFileEitherWay) {
    const CommandLine expected{.mode = Mode::Simulate, .scenarioFile = "a b.scenario"};
    EXPECT_EQ(understood({"--simulated", "a b.scenario"}), expected);
    EXPECT_EQ(understood({"--simulated=a b.scenario"}), expected);
}

TEST(CommandLine, TakesAFileThatLooksLikeAnOption) {
    EXPECT_EQ(understood({"--simulated", "--demo"}),
              (CommandLine{.mode = Mode::Simulate, .scenarioFile = "--demo"}));
}

TEST(CommandLine, ChoosesTheDemo) {
    EXPECT_EQ(understood({"--demo"}), withMode(Mode::Demo));
}

TEST(CommandLine, HelpAndVersionWinOverWhatElseIsAskedFor) {
    EXPECT_EQ(understood({"--help"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"-h"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"--demo", "--help"}), withMode(Mode::Help));
    EXPECT_EQ(understood({"--version", "--demo"}), withMode(Mode::Version));
    EXPECT_EQ(understood({"--version", "--help"}), withMode(Mode::Version));
}

TEST(CommandLine, AnUnknownOptionIsAnErrorThatNamesIt) {
    EXPECT_EQ(refused({"--wobble"}), "unknown option '--wobble'");
    EXPECT_EQ(refused({"-x"}), "unknown option '-x'");
    EXPECT_EQ(refused({"--help", "--wobble"}), "unknown option '--wobble'");
    EXPECT_EQ(refused({"--demonstration"}), "unknown option '--demonstration'");
}

TEST(CommandLine, AStrayArgumentIsAnErrorThatNamesIt) {
    EXPECT_EQ(refused({"file"}), "unexpected argument 'file'");
    EXPECT_EQ(refused({""}), "unexpected argument ''");
}

TEST(CommandLine, AScenarioWithoutAFileIsAnError) {
    EXPECT_EQ(refused({"--simulated"}), "--simulated needs a file");
    EXPECT_EQ(refused({"--simulated="}), "--simulated needs a file");
    EXPECT_EQ(refused({"--simulated", ""}), "--simulated needs a file");
}

TEST(CommandLine, TwoMachinesAtOnceAreAnError) {
    EXPECT_EQ(refused({"--demo", "--simulated", "file"}), "one simulated machine at a time");
    EXPECT_EQ(refused({"--simulated", "file", "--demo"}), "one simulated machine at a time");
}

TEST(CommandLine, HelpNamesEveryOption) {
    for (const char* option : {"--demo", "--simulated FILE", "--help", "--version"})
        EXPECT_THAT(std::string(commandLineHelp()), testing::HasSubstr(option));
}

} // namespace
} // namespace quorvane
