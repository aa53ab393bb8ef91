#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "platform/linux/desktop/AutostartEntries.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

class AutostartEntriesTest : public testing::Test {
protected:
    AutostartEntriesTest() { fs::permissions(m_executable, fs::perms::owner_all); }

    /// Writes an entry to the user's own folder, or to the one for all users.
    void write(const std::string& name, const std::string& text, bool everybodys = false) const {
        m_root.write(fs::path(everybodys ? "everybody" : "own") / name, text);
    }

    static std::string entry(const std::string& exec, const std::string& more = {}) {
        return "[Desktop Entry]\nType=Application\nName=Any\nExec=" + exec + "\n" + more;
    }

    /// The entry that is installed with the program, and more lines.
    void writeOwn(const std::string& more = {}) const {
        write("org.quorvane.Quorvane.desktop", entry("quorvane", more));
    }

    [[nodiscard]] bool isStarted() const {
        return startsAtLogin({.folders = {m_root.path() / "own", m_root.path() / "everybody"},
                              .desktops = m_desktops,
                              .executable = m_executable});
    }

    TemporaryFolder m_root;
    fs::path m_executable = m_root.write("programs/some program", "");
    std::vector<std::string> m_desktops{"GNOME", "Ours"};
};

TEST_F(AutostartEntriesTest, WithoutFoldersThereIsNoEntry) {
    EXPECT_FALSE(isStarted());
}

TEST_F(AutostartEntriesTest, TheProgramsEntryIsRecognisedByItsName) {
    writeOwn();
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, AnEarlierVersionsEntryStaysOn) {
    write("quorvane.desktop", entry("quorvane"));
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, AnEarlierVersionsEntryStaysOff) {
    write("quorvane.desktop", entry("quorvane", "Hidden=true\n"));
    EXPECT_FALSE(isStarted());
    write("quorvane.desktop", entry("quorvane", "X-GNOME-Autostart-enabled=false\n"));
    EXPECT_FALSE(isStarted());
}

TEST_F(AutostartEntriesTest, AnEntryOfAnotherNameIsRecognisedByItsCommandsPath) {
    write("mine.desktop", entry("\"" + m_executable.string() + "\" --quiet"));
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, AnEntryOfAnotherNameIsRecognisedByItsCommandsName) {
    const EnvironmentVariable path("PATH", (m_root.path() / "programs").string());
    write("mine.desktop", entry("\"some program\" %U"));
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, ALinkToTheProgramIsTheProgram) {
    fs::create_symlink(m_executable, m_root.path() / "link");
    write("mine.desktop", entry((m_root.path() / "link").string()));
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, AnEntryOfAnotherProgramIsNotOurs) {
    write("other.desktop", entry("/bin/sh"));
    write("missing.desktop", entry("/nonexistent/program"));
    EXPECT_FALSE(isStarted());
}

TEST_F(AutostartEntriesTest, AHiddenEntryDoesNotCount) {
    writeOwn("Hidden=true\n");
    EXPECT_FALSE(isStarted());
}

TEST_F(AutostartEntriesTest, AnEntryThatTheDesktopDisabledDoesNotCount) {
    writeOwn("X-GNOME-Autostart-enabled=false\n");
    EXPECT_FALSE(isStarted());
    writeOwn("X-GNOME-Autostart-enabled=true\n");
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, TheFirstFileOfANameCounts) {
    write("org.quorvane.Quorvane.desktop", entry("quorvane"), true);
    EXPECT_TRUE(isStarted());
    writeOwn("Hidden=true\n");
    EXPECT_FALSE(isStarted()) << "the user's own file hides the one for all users";
    writeOwn();
    write("org.quorvane.Quorvane.desktop", entry("quorvane", "Hidden=true\n"), true);
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, ABrokenFileHidesOthersOfItsName) {
    write("org.quorvane.Quorvane.desktop", entry("quorvane"), true);
    write("org.quorvane.Quorvane.desktop", "\xff\xfe not a word of sense [[[");
    EXPECT_FALSE(isStarted());
}

TEST_F(AutostartEntriesTest, AnEntryThatCannotStartAnythingDoesNotCount) {
    write("org.quorvane.Quorvane.desktop", "");
    EXPECT_FALSE(isStarted()) << "empty";
    write("org.quorvane.Quorvane.desktop", "[Desktop Entry]\nType=Application\nName=Quorvane\n");
    EXPECT_FALSE(isStarted()) << "without a command";
    write("org.quorvane.Quorvane.desktop", entry("\"quorvane"));
    EXPECT_FALSE(isStarted()) << "without the closing quotation mark";
    write("org.quorvane.Quorvane.desktop",
          "[Desktop Entry]\nType=Link\nName=Quorvane\nExec=quorvane\n");
    EXPECT_FALSE(isStarted()) << "a link";
    writeOwn("TryExec=/nonexistent/program\n");
    EXPECT_FALSE(isStarted()) << "not installed";
}

TEST_F(AutostartEntriesTest, OnlyShowInLimitsAnEntryToItsDesktops) {
    writeOwn("OnlyShowIn=KDE;XFCE;\n");
    EXPECT_FALSE(isStarted());
    writeOwn("OnlyShowIn=KDE;Ours;\n");
    EXPECT_TRUE(isStarted());
    m_desktops.clear();
    EXPECT_FALSE(isStarted());
}

TEST_F(AutostartEntriesTest, NotShowInExcludesAnEntryFromItsDesktops) {
    writeOwn("NotShowIn=KDE;GNOME;\n");
    EXPECT_FALSE(isStarted());
    writeOwn("NotShowIn=KDE;\n");
    EXPECT_TRUE(isStarted());
    m_desktops.clear();
    writeOwn("NotShowIn=GNOME;\n");
    EXPECT_TRUE(isStarted());
}

TEST_F(AutostartEntriesTest, OnlyDesktopFilesAreEntries) {
    write("org.quorvane.Quorvane.desktop.bak", entry("\"" + m_executable.string() + "\""));
    write("notes.txt", entry("\"" + m_executable.string() + "\""));
    EXPECT_FALSE(isStarted());
}

TEST_F(AutostartEntriesTest, TheEnvironmentNamesTheFoldersAndTheDesktops) {
    const EnvironmentVariable home("HOME", "/home/someone");
    const EnvironmentVariable config("XDG_CONFIG_HOME", "/config");
    const EnvironmentVariable folders("XDG_CONFIG_DIRS", "/first::relative:/second");
    const EnvironmentVariable desktops("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    const auto environment = AutostartEnvironment::current();
    EXPECT_EQ(environment.folders, (std::vector<fs::path>{"/config/autostart", "/first/autostart",
                                                          "/second/autostart"}));
    EXPECT_EQ(environment.desktops, (std::vector<std::string>{"ubuntu", "GNOME"}));
    EXPECT_TRUE(fs::equivalent(environment.executable, "/proc/self/exe"));
}

TEST_F(AutostartEntriesTest, AnEmptyEnvironmentMeansTheDefaultFolders) {
    const EnvironmentVariable home("HOME", "/home/someone");
    const EnvironmentVariable config("XDG_CONFIG_HOME", "relative");
    const EnvironmentVariable folders("XDG_CONFIG_DIRS", std::nullopt);
    const EnvironmentVariable desktops("XDG_CURRENT_DESKTOP", std::nullopt);
    const auto environment = AutostartEnvironment::current();
    EXPECT_EQ(environment.folders,
              (std::vector<fs::path>{"/home/someone/.config/autostart", "/etc/xdg/autostart"}));
    EXPECT_TRUE(environment.desktops.empty());
}

TEST_F(AutostartEntriesTest, ANamedPipeIsNotReadAndHidesOthers) {
    write("quorvane.desktop", entry("quorvane"), true);
    fs::create_directories(m_root.path() / "own");
    ASSERT_EQ(mkfifo((m_root.path() / "own/quorvane.desktop").c_str(), 0600), 0);
    EXPECT_FALSE(isStarted()) << "nobody writes to it";
}

} // namespace

} // namespace quorvane
