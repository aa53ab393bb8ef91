#include <csignal>
#include <gmock/gmock.h>
#include <optional>
#include <sys/resource.h>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxUserDefaults.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace fs = std::filesystem;

/// No file can grow while this lives, as on a full disk.
class FullDisk : NonCopyable {
public:
    FullDisk() {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit none{.rlim_cur = 0, .rlim_max = m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }

    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before{};
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

class LinuxUserDefaultsTest : public testing::Test {
protected:
    void writeFile(std::string_view text) const { m_folder.write("quorvane/quorvane.ini", text); }

    [[nodiscard]] bool isSaved(const std::string& key) const {
        return LinuxUserDefaults(m_file).boolForKey(key);
    }

    /// Whether `hardwareChecked` with this value in a file is true. Each call uses a new file: Qt
    /// caches one whose size and time have not changed.
    [[nodiscard]] bool isTrue(const std::string& value) {
        const auto file = m_folder.write("values/" + std::to_string(++m_values) + ".ini",
                                         "[General]\nhardwareChecked=" + value + "\n");
        return LinuxUserDefaults(file).boolForKey("hardwareChecked");
    }

    /// Sets "hardwareChecked" and returns the output on standard error. Expects the value to hold
    /// in this process.
    [[nodiscard]] static std::string complaintOfSetting(LinuxUserDefaults& defaults) {
        CaptureStderr();
        defaults.setBool("hardwareChecked", true);
        defaults.finish();
        std::string said = GetCapturedStderr();
        EXPECT_TRUE(defaults.boolForKey("hardwareChecked"));
        return said;
    }

    /// Expects a file with `text` to be put aside as damaged, and settings to be saved after that.
    void expectPutAside(const std::string& text) const {
        writeFile(text);
        CaptureStderr();
        LinuxUserDefaults defaults(m_file);
        EXPECT_FALSE(defaults.boolForKey("hardwareChecked"));
        EXPECT_THAT(GetCapturedStderr(), StartsWith("quorvane: "));
        EXPECT_EQ(fileText(m_aside), text);
        EXPECT_THAT(complaintOfSetting(defaults), IsEmpty());
        EXPECT_TRUE(isSaved("hardwareChecked"));
        fs::remove(m_aside);
    }

    TemporaryFolder m_folder;
    fs::path m_file = m_folder.path() / "quorvane/quorvane.ini";
    fs::path m_aside = m_folder.path() / "quorvane/quorvane.ini.damaged";
    int m_values = 0;
};

void expectOneLine(const std::string& said) {
    EXPECT_THAT(said, StartsWith("quorvane: "));
    EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
}

TEST_F(LinuxUserDefaultsTest, NothingIsTouchedUntilSomethingIsSet) {
    const LinuxUserDefaults defaults(m_file);
    EXPECT_FALSE(defaults.boolForKey("hardwareChecked"));
    EXPECT_TRUE(fs::is_empty(m_folder.path()));
}

TEST_F(LinuxUserDefaultsTest, TheFileIsAPlainINIFileAndNothingIsLeftBesideIt) {
    LinuxUserDefaults(m_file).setBool("hardwareChecked", true);
    EXPECT_EQ(fileText(m_file), "[General]\nhardwareChecked=true\n");
    const auto entries = fs::directory_iterator(m_file.parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(LinuxUserDefaultsTest, OtherSettingsInTheFileStay) {
    writeFile("[General]\ncolour=blue\n\n[Window]\nx=12\n");
    LinuxUserDefaults(m_file).setBool("hardwareChecked", true);
    EXPECT_THAT(fileText(m_file), HasSubstr("colour=blue"));
    EXPECT_THAT(fileText(m_file), HasSubstr("[Window]\nx=12"));
    EXPECT_TRUE(isSaved("hardwareChecked"));
}

TEST_F(LinuxUserDefaultsTest, AValueThatIsNotABooleanIsFalse) {
    for (const char* value : {"yes", "tr", "2", "", "truely", "\"a b\""})
        EXPECT_FALSE(isTrue(value)) << value;
}

TEST_F(LinuxUserDefaultsTest, BooleansWrittenByHandAreUnderstood) {
    for (const char* value : {"true", "True", "TRUE", "1"})
        EXPECT_TRUE(isTrue(value)) << value;
}

TEST_F(LinuxUserDefaultsTest, TheFileIsReplacedAndNotRewritten) {
    writeFile("[General]\ncolour=blue\n");
    const fs::path link = m_folder.path() / "old";
    fs::create_hard_link(m_file, link);
    LinuxUserDefaults(m_file).setBool("hardwareChecked", true);
    EXPECT_EQ(fileText(link), "[General]\ncolour=blue\n");
}

TEST_F(LinuxUserDefaultsTest, BinaryJunkIsPutAside) {
    expectPutAside(std::string("\x7F\x45LF\0\1\2\3\xFF\xFE", 10));
    expectPutAside(std::string("\0\1\xFF=\2\n", 6));
    expectPutAside(std::string(200, '\0'));
}

TEST_F(LinuxUserDefaultsTest, ATruncatedFileIsPutAside) {
    expectPutAside("[General]\nhardwareChe");
    expectPutAside("[Gener");
}

TEST_F(LinuxUserDefaultsTest, AFileMuchTooLargeIsPutAside) {
    expectPutAside(std::string(2 << 20, '#'));
}

TEST_F(LinuxUserDefaultsTest, CommentsAndContinuedLinesAreNotDamage) {
    writeFile("; by hand\n# too\n\n[General]\nlist=one, \\\ntwo\nhardwareChecked=true\n");
    EXPECT_TRUE(isSaved("hardwareChecked"));
    EXPECT_FALSE(fs::exists(m_aside));
}

TEST_F(LinuxUserDefaultsTest, AnEmptyFileIsNotDamaged) {
    writeFile("");
    LinuxUserDefaults defaults(m_file);
    EXPECT_THAT(complaintOfSetting(defaults), IsEmpty());
    EXPECT_FALSE(fs::exists(m_aside));
    EXPECT_TRUE(isSaved("hardwareChecked"));
}

TEST_F(LinuxUserDefaultsTest, EarlierDamagedFilesAreKeptToo) {
    m_folder.write("quorvane/quorvane.ini.damaged", "earlier");
    writeFile("junk");
    CaptureStderr();
    EXPECT_FALSE(isSaved("hardwareChecked"));
    expectOneLine(GetCapturedStderr());
    EXPECT_EQ(fileText(m_aside), "earlier");
    EXPECT_EQ(fileText(m_aside.string() + ".1"), "junk");
}

TEST_F(LinuxUserDefaultsTest, ADamagedFileThatCannotBePutAsideStays) {
    writeFile("junk");
    m_folder.write("quorvane/quorvane.ini.damaged", "");
    for (int number = 1; number < 100; ++number)
        m_folder.write("quorvane/quorvane.ini.damaged." + std::to_string(number), "");
    LinuxUserDefaults defaults(m_file);
    EXPECT_FALSE(defaults.boolForKey("hardwareChecked"));
    expectOneLine(complaintOfSetting(defaults));
    EXPECT_EQ(fileText(m_file), "junk");
}

TEST_F(LinuxUserDefaultsTest, AFolderInPlaceOfTheFileIsReportedAndStays) {
    m_folder.write("quorvane/quorvane.ini/inside", "");
    LinuxUserDefaults defaults(m_file);
    EXPECT_FALSE(defaults.boolForKey("hardwareChecked"));
    expectOneLine(complaintOfSetting(defaults));
    EXPECT_TRUE(fs::exists(m_file / "inside"));
}

TEST_F(LinuxUserDefaultsTest, AFolderThatCannotBeMadeIsReported) {
    m_folder.write("quorvane", "a file");
    LinuxUserDefaults defaults(m_file);
    EXPECT_FALSE(defaults.boolForKey("hardwareChecked"));
    expectOneLine(complaintOfSetting(defaults));
}

TEST_F(LinuxUserDefaultsTest, AFullDiskIsReportedAndTheOldFileStays) {
    writeFile("[General]\ncolour=blue\n");
    LinuxUserDefaults defaults(m_file);
    {
        // Standard error is captured in a file, which could not grow either.
        std::optional<FullDisk> full;
        CaptureStderr();
        const std::string before = fileText(m_file);
        full.emplace();
        defaults.setBool("hardwareChecked", true);
        defaults.finish();
        full.reset();
        GetCapturedStderr();
        EXPECT_EQ(fileText(m_file), before);
    }
    EXPECT_TRUE(defaults.boolForKey("hardwareChecked"));
    defaults.setBool("other", true);
    defaults.finish();
    EXPECT_TRUE(isSaved("hardwareChecked"));
    EXPECT_TRUE(isSaved("other"));
}

TEST_F(LinuxUserDefaultsTest, TheStandardFileIsInTheXDGConfigurationFolder) {
    const EnvironmentVariable config("XDG_CONFIG_HOME", "/some/config");
    EXPECT_EQ(LinuxUserDefaults::standardFile(), "/some/config/quorvane/quorvane.ini");
}

TEST_F(LinuxUserDefaultsTest, WithoutAnXDGConfigurationFolderItIsUnderTheHomeFolder) {
    const EnvironmentVariable config("XDG_CONFIG_HOME", std::nullopt);
    const EnvironmentVariable home("HOME", "/some/home");
    EXPECT_EQ(LinuxUserDefaults::standardFile(), "/some/home/.config/quorvane/quorvane.ini");
}

} // namespace

} // namespace quorvane
