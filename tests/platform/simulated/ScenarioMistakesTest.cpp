#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/simulated/Scenario.h"

namespace quorvane {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// What the user reads about a scenario called "x".
std::string messageAbout(std::string_view text) {
    const auto parsed = parseScenario(text);
    const auto* error = std::get_if<ScenarioError>(&parsed);
    return error ? error->in("x") : "no mistake";
}

TEST(ScenarioMistakes, AreNamedWithFileLineAndColumn) {
    EXPECT_EQ(messageAbout("{\n  \"modle\": 3\n}"),
              R"(x:2:3: the scenario has an unknown key "modle")");
    EXPECT_EQ(messageAbout("\n\n  []"), "x:3:3: the scenario is not an object");
    EXPECT_EQ(messageAbout("{\"trusted\":\r\n\t1}"),
              R"(x:2:2: the scenario: "trusted" has a value of the wrong kind)");
    EXPECT_EQ(messageAbout("{\"hid\": [{},\n  {\"lid\": [[0, 1],\n [2, \"3\"]]}]}"),
              R"(x:3:6: a device: "lid" has a value of the wrong kind)");
    EXPECT_EQ(messageAbout("{\"hid\": [{\"lid\": [[0, 1],\n [2, 3, 4]]}]}"),
              "x:2:2: a lid's point is not [seconds, degrees]");
    EXPECT_EQ(messageAbout("{\"events\": [{\"at\": 1, \"key\": \"up\"},\n\n {\"at\": 2}]}"),
              "x:3:2: an event must be exactly one of press, post, screens, machine, key, quit");
    EXPECT_EQ(messageAbout(R"({"events": [{"at": 1, "screens": "off"}]})"),
              R"(x:1:34: "screens" does not take "off")");
    EXPECT_EQ(messageAbout(R"({"hid": [{"readings": {"1": [1, 256]}}]})"),
              "x:1:33: a report's byte is not a whole number from 0 to 255");
}

TEST(ScenarioMistakes, AreFoundBehindWhateverJSONAllows) {
    const std::string mistake = R"(the scenario has an unknown key "z")";
    EXPECT_EQ(messageAbout("// \"z\": {\n{/* [ \" */ \"z\":1}"), "x:2:12: " + mistake);
    EXPECT_EQ(messageAbout("{/*/ \"z\" */\"z\": 1}"), "x:1:12: " + mistake);
    EXPECT_EQ(messageAbout("/**/{\"model\": \"a\\\"b\\\\\", \"z\": 1}"), "x:1:25: " + mistake);
    EXPECT_EQ(messageAbout("{\"model\": \"[{\\u0022}]\",\"z\": 1}"), "x:1:24: " + mistake);
    EXPECT_EQ(messageAbout("{\"trusted\": true//\n,\"hid\":[ ] , \"z\": 1}"), "x:2:14: " + mistake);
    EXPECT_EQ(messageAbout("{\"hid\": [{\"unplugAt\": 1e0/**/}], \"z\": 1}"), "x:1:34: " + mistake);
}

TEST(ScenarioMistakes, ColumnsCountCharactersAndNotBytes) {
    EXPECT_EQ(messageAbout("{\"model\": \"Größe 😭\", \"z\": 1}"),
              R"(x:1:22: the scenario has an unknown key "z")");
}

TEST(ScenarioMistakes, BadSyntaxIsNamedWithItsPlace) {
    EXPECT_THAT(messageAbout(""), StartsWith("x:1:1: syntax error while parsing value"));
    EXPECT_THAT(messageAbout("{\n  \"model\" 3}"),
                StartsWith("x:2:11: syntax error while parsing object separator"));
    EXPECT_THAT(messageAbout("{\"model\": \"\xFF\"}"), HasSubstr("ill-formed UTF-8"));
    EXPECT_THAT(messageAbout("{} /* no end"), StartsWith("x:1:13: syntax error"));
}

TEST(ScenarioMistakes, NothingMayFollowTheScenario) {
    EXPECT_THAT(messageAbout("{}\n{}"), StartsWith("x:2:1: syntax error"));
    EXPECT_THAT(messageAbout("{} events"), StartsWith("x:1:4: syntax error"));
    EXPECT_EQ(messageAbout("{}\n \n// The end.\n"), "no mistake");
    EXPECT_EQ(messageAbout(std::string_view("{}\n\0 events", 11)), "x:2:1: there is a NUL byte");
}

TEST(ScenarioMistakes, ANumberThatIsTooLargeIsNamed) {
    EXPECT_EQ(messageAbout("{\"hid\": [{\"unplugAt\":\n1e999}]}"),
              "x:2:5: number overflow parsing '1e999'");
    EXPECT_EQ(messageAbout(R"({"hid": [{"vendor": 18446744073709551615}]})"),
              "x:1:21: an ID is outside 0 to 65535");
    EXPECT_EQ(messageAbout(R"({"hid": [{"vendor": 1.0}]})"),
              R"(x:1:21: a device: "vendor" has a value of the wrong kind)");
}

TEST(ScenarioMistakes, AnEventHasATime) {
    EXPECT_EQ(messageAbout(R"({"events": [{"key": "up"}]})"),
              R"(x:1:13: an event has no time, "at")");
}

TEST(ScenarioMistakes, AKeyIsThereOnce) {
    EXPECT_EQ(messageAbout("{\"model\": \"a\",\n \"model\": \"a\"}"),
              R"(x:2:2: the key "model" is there twice)");
    EXPECT_EQ(messageAbout(R"({"events": [{"at": 1, "at": 2, "key": "up"}]})"),
              R"(x:1:23: the key "at" is there twice)");
    EXPECT_EQ(messageAbout(R"({"hid": [{"readings": {"1": [], "01": []}}]})"),
              R"(x:1:33: the reading "01" is there twice)");
    EXPECT_EQ(messageAbout(R"({"events": [{"at": 1, "key": "up"}, {"at": 1, "key": "up"}]})"),
              "no mistake")
        << "in another object the same key may be";
}

TEST(ScenarioMistakes, DeepNestingIsOne) {
    EXPECT_EQ(messageAbout("{\"hid\":\n" + std::string(100000, '[')),
              "x:2:32: there are lists or objects nested too deeply");
    EXPECT_THAT(messageAbout("{\"hid\":" + std::string(31, '[') + std::string(31, ']') + "}"),
                HasSubstr("is not an object"));
}

/// A folder that is there while the test runs.
class ScenarioFiles : public testing::Test {
protected:
    ScenarioFiles() {
        std::string name = testing::TempDir() + "scenario-XXXXXX";
        m_folder = mkdtemp(name.data());
    }

    ~ScenarioFiles() override { std::filesystem::remove_all(m_folder); }

    std::filesystem::path file(const std::string& text) {
        std::ofstream(m_folder / "x") << text;
        return m_folder / "x";
    }

    static std::string messageAbout(const std::filesystem::path& path) {
        const auto loaded = loadScenario(path);
        const auto* error = std::get_if<ScenarioError>(&loaded);
        return error ? error->in("x") : "no mistake";
    }

    std::filesystem::path m_folder;
};

TEST_F(ScenarioFiles, AreReadWholeUpToOneMebibyte) {
    EXPECT_EQ(messageAbout(file("{}" + std::string(1048574, ' '))), "no mistake");
    EXPECT_EQ(messageAbout(file("{" + std::string(1048574, '\n') + "1")).substr(0, 12),
              "x:1048575:1:");
    EXPECT_EQ(messageAbout(file("{}" + std::string(1048575, ' '))), "x: Larger than 1 MiB");
}

TEST_F(ScenarioFiles, ThatAreNoneHaveTheirReasonAndAreNotRead) {
    EXPECT_EQ(messageAbout(m_folder / "missing"), "x: No such file or directory");
    EXPECT_EQ(messageAbout(file("{}") / "below"), "x: Not a directory");
    EXPECT_EQ(messageAbout(m_folder), "x: Is a directory");
    EXPECT_EQ(messageAbout("/dev/zero"), "x: Not a regular file");
    const auto pipe = m_folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(messageAbout(pipe), "x: Not a regular file") << "nobody writes to it";
}

TEST_F(ScenarioFiles, MayBeLinks) {
    std::filesystem::create_symlink(file("{}"), m_folder / "link");
    EXPECT_EQ(messageAbout(m_folder / "link"), "no mistake");
}

} // namespace
} // namespace quorvane
