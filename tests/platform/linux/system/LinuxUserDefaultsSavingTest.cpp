#include <chrono>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/system/LinuxUserDefaults.h"
#include "tests/support/NoThreads.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::HasSubstr;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using Clock = std::chrono::steady_clock;

namespace fs = std::filesystem;

class LinuxUserDefaultsSavingTest : public testing::Test {
protected:
    /// The file after "hardwareChecked" is set to true in one with `text`.
    [[nodiscard]] std::string edited(std::string_view text) const {
        m_folder.write("quorvane.ini", text);
        LinuxUserDefaults(m_file).setBool("hardwareChecked", true);
        return fileText(m_file);
    }

    /// Has the next write wait, as on a disk that does not answer, until `wakeDisk`.
    void hangDisk() const { ASSERT_EQ(mkfifo(m_fresh.c_str(), 0600), 0); }

    /// The write fails then, and further ones do not.
    void wakeDisk() const {
        const FileDescriptor reader = FileDescriptor::open(m_fresh, O_RDONLY);
        ASSERT_TRUE(waitUntil([this] { return !fs::exists(m_fresh); }));
    }

    TemporaryFolder m_folder;
    fs::path m_file = m_folder.path() / "quorvane.ini";
    fs::path m_fresh = m_file.string() + ".new." + std::to_string(getpid());
};

} // namespace

TEST_F(LinuxUserDefaultsSavingTest, ADiskThatHangsHoldsNobodyUpAndTheLastValueIsWritten) {
    hangDisk();
    LinuxUserDefaults defaults(m_file);
    CaptureStderr();
    const auto start = Clock::now();
    defaults.setBool("hardwareChecked", true);
    waitFor(50ms);
    for (const bool value : {false, true, false, true})
        defaults.setBool("hardwareChecked", value);
    EXPECT_LT(Clock::now() - start, 500ms);
    EXPECT_TRUE(defaults.boolForKey("hardwareChecked"));
    wakeDisk();
    defaults.finish();
    EXPECT_EQ(fileText(m_file), "[General]\nhardwareChecked=true\n");
    EXPECT_EQ(GetCapturedStderr(),
              "quorvane: the settings are not saved: " + m_file.string() + " cannot be written\n");
}

TEST_F(LinuxUserDefaultsSavingTest, ADiskThatHangsAtTheEndIsWaitedForOneSecond) {
    hangDisk();
    CaptureStderr();
    const auto start = Clock::now();
    LinuxUserDefaults(m_file).setBool("hardwareChecked", true);
    EXPECT_GE(Clock::now() - start, 1s);
    EXPECT_LT(Clock::now() - start, 2s);
    EXPECT_EQ(GetCapturedStderr(), "quorvane: the settings are not saved: " + m_file.string() +
                                       " takes longer than a second\n");
    wakeDisk();
}

TEST_F(LinuxUserDefaultsSavingTest, WithoutAThreadTheValueIsWrittenAllTheSame) {
    const NoThreads noThreads;
    CaptureStderr();
    LinuxUserDefaults(m_file).setBool("hardwareChecked", true);
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("cannot be started"));
    EXPECT_EQ(fileText(m_file), "[General]\nhardwareChecked=true\n");
}

TEST_F(LinuxUserDefaultsSavingTest, EverythingElseInTheFileStaysToTheByte) {
    EXPECT_EQ(edited("; mine\n[general]\r\na = 1 ; x\r\n\n[Window]\nhardwareChecked=12"),
              "; mine\n[general]\r\nhardwareChecked=true\na = 1 ; x\r\n\n[Window]\n"
              "hardwareChecked=12");
    EXPECT_EQ(edited("list=one, \\\ntwo"),
              "list=one, \\\ntwo\n\n[General]\nhardwareChecked=true\n");
    EXPECT_EQ(edited("[General]"), "[General]\nhardwareChecked=true\n");
    EXPECT_EQ(edited("[Window]\nx=1\n"), "[Window]\nx=1\n\n[General]\nhardwareChecked=true\n");
}

TEST_F(LinuxUserDefaultsSavingTest, ALastLineThatIsContinuedDoesNotTakeTheSettingIn) {
    EXPECT_EQ(edited("[General]\\"), "[General]\\\n\nhardwareChecked=true\n");
    EXPECT_EQ(edited("[General]\\\n"), "[General]\\\n\nhardwareChecked=true\n");
    EXPECT_EQ(edited("a=1\\\n"), "a=1\\\n\n\n[General]\nhardwareChecked=true\n");
}

TEST_F(LinuxUserDefaultsSavingTest, AnEarlierValueIsReplacedAndNotRepeated) {
    EXPECT_EQ(edited("hardwareChecked=false\n[General]\n hardwareChecked = no\n"),
              "[General]\nhardwareChecked=true\n");
    EXPECT_EQ(edited("[General]\nhardwareChecked=tr\\\nue\nother=1\n"),
              "[General]\nhardwareChecked=true\nother=1\n");
}

TEST_F(LinuxUserDefaultsSavingTest, TheLastOfRepeatedValuesCounts) {
    m_folder.write("quorvane.ini", "[General]\nhardwareChecked=false\nhardwareChecked=\"true\"\n");
    EXPECT_TRUE(LinuxUserDefaults(m_file).boolForKey("hardwareChecked"));
    m_folder.write("quorvane.ini", "[Window]\nhardwareChecked=true\n");
    EXPECT_FALSE(LinuxUserDefaults(m_file).boolForKey("hardwareChecked")) << "another section";
}

TEST_F(LinuxUserDefaultsSavingTest, TheFileKeepsItsRightsAndALinkToItStaysALink) {
    const fs::path real = m_folder.write("elsewhere/real.ini", "[General]\n");
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(real, m_file);
    LinuxUserDefaults(m_file).setBool("hardwareChecked", true);
    EXPECT_TRUE(fs::is_symlink(m_file));
    EXPECT_EQ(fileText(real), "[General]\nhardwareChecked=true\n");
    EXPECT_EQ(fs::status(real).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(LinuxUserDefaultsSavingTest, ANewFolderIsForItsUserOnly) {
    const fs::path folder = m_folder.path() / "config/quorvane";
    LinuxUserDefaults(folder / "quorvane.ini").setBool("hardwareChecked", true);
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
}

} // namespace quorvane
