#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/common/FileDescriptor.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SeatFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::HasSubstr;

constexpr uid_t other = 12345;

/// The user who runs the tests, or another one if that is root.
const uid_t person = geteuid() == 0 ? other : geteuid();

/// A line of /proc/PID/status without its name; empty if there is none.
std::string statusOf(pid_t process, const std::string& name) {
    const std::string text = fileText("/proc/" + std::to_string(process) + "/status");
    const auto begin = text.find("\n" + name + ":\t");
    if (begin == std::string::npos)
        return {};
    const auto value = begin + name.size() + 3;
    return text.substr(value, text.find('\n', value) - value);
}

/// The program, as the person runs it or as root does, with logind's files of the test.
class KeyReaderProgramTest : public testing::Test {
protected:
    enum class As { Person, Root };

    KeyReaderProgramTest() { openPipes(); }

    void openPipes() {
        openPipe(m_input, m_inputEnd);
        openPipe(m_outputEnd, m_output);
        openPipe(m_errorsEnd, m_errors);
    }

    /// Whether it has read all of its input.
    [[nodiscard]] bool hasReadInput() const {
        int size = 0;
        return ioctl(m_inputEnd.get(), FIONREAD, &size) == 0 && size == 0;
    }

    static void openPipe(FileDescriptor& reading, FileDescriptor& writing) {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        reading = FileDescriptor(ends[0]);
        writing = FileDescriptor(ends[1]);
    }

    void sitDown() const { m_files.setSessions(person, {"1"}, "1"); }

    void start(As as, const std::vector<std::string>& environment = {},
               const std::vector<std::string>& arguments = {}) {
        m_process.emplace([&] { return execute(as, environment, arguments); });
        m_input = {};
        m_output = {};
        m_errors = {};
    }

    int execute(As as, std::vector<std::string> environment,
                std::vector<std::string> arguments) const {
        // The person may have no access to the build folder.
        const int program = open(QUORVANE_KEY_READER, O_PATH | O_CLOEXEC);
        dup2(m_input.get(), STDIN_FILENO);
        dup2(m_output.get(), STDOUT_FILENO);
        dup2(m_errors.get(), STDERR_FILENO);
        m_files.enter(as == As::Root);
        if (as == As::Person && geteuid() == 0 &&
            (setgroups(0, nullptr) != 0 || setresgid(person, person, person) != 0 ||
             setresuid(person, person, person) != 0))
            return 100;
        // The leak sanitizer has to look into the process, which is what the program forbids.
        environment.emplace_back("ASAN_OPTIONS=detect_leaks=0");
        arguments.insert(arguments.begin(), "quorvane-key-reader");
        fexecve(program, pointers(arguments).data(), pointers(environment).data());
        return 101;
    }

    static std::vector<char*> pointers(std::vector<std::string>& texts) {
        std::vector<char*> pointers;
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    }

    /// What it says until its end, or the next `count` bytes.
    [[nodiscard]] static std::string read(const FileDescriptor& end, std::size_t count = 1000) {
        std::string bytes;
        pollfd readable{.fd = end.get(), .events = POLLIN, .revents = 0};
        char letter = 0;
        while (bytes.size() < count && poll(&readable, 1, 10'000) > 0 &&
               ::read(end.get(), &letter, 1) == 1)
            bytes += letter;
        return bytes;
    }

    [[nodiscard]] std::string output(std::size_t count = 1000) const {
        return read(m_outputEnd, count);
    }

    /// Starts it and waits until it says that it runs.
    void run(As as, const std::vector<std::string>& environment = {}) {
        start(as, environment);
        ASSERT_EQ(output(1), "k") << read(m_errorsEnd);
    }

    /// Its exit status, once it has ended and closed its standard error; -2 if it does not end.
    int status() {
        m_said = read(m_errorsEnd);
        pollfd errors{.fd = m_errorsEnd.get(), .events = POLLIN, .revents = 0};
        return poll(&errors, 1, 0) > 0 ? m_process->wait() : -2;
    }

    SeatFiles m_files;
    FileDescriptor m_input;
    FileDescriptor m_inputEnd;
    FileDescriptor m_output;
    FileDescriptor m_outputEnd;
    FileDescriptor m_errors;
    FileDescriptor m_errorsEnd;
    std::optional<ChildProcess> m_process;
    /// What it has written to standard error.
    std::string m_said;
};

TEST_F(KeyReaderProgramTest, ItTakesNoArguments) {
    sitDown();
    start(As::Person, {}, {"--help"});
    EXPECT_EQ(status(), 2);
    EXPECT_EQ(m_said, "quorvane-key-reader: takes no arguments\n");
    EXPECT_EQ(output(), "");
}

TEST_F(KeyReaderProgramTest, AsRootItRunsOnlyForTheUserThatPkexecNames) {
    sitDown();
    for (const char* user : {"", "PKEXEC_UID=", "PKEXEC_UID=0", "PKEXEC_UID=1000x"}) {
        openPipes();
        start(As::Root, {user});
        EXPECT_EQ(status(), 2) << user;
        EXPECT_EQ(m_said,
                  "quorvane-key-reader: runs as root only for the user that pkexec names\n");
        EXPECT_EQ(output(), "");
    }
}

TEST_F(KeyReaderProgramTest, AsRootItGivesUpRootsRightsOrDoesNotRun) {
    sitDown();
    start(As::Root, {"PKEXEC_UID=" + std::to_string(other)});
    if (geteuid() != 0) {
        // Root of a user namespace cannot become another user.
        EXPECT_EQ(status(), 1);
        EXPECT_THAT(m_said, HasSubstr("quorvane-key-reader: cannot "));
        return;
    }
    ASSERT_EQ(output(1), "k");
    const group* found = getgrnam("input");
    ASSERT_TRUE(found);
    const std::string input = std::to_string(found->gr_gid);
    EXPECT_EQ(statusOf(m_process->pid(), "Uid"), "12345\t12345\t12345\t12345");
    EXPECT_EQ(statusOf(m_process->pid(), "Gid"),
              input + '\t' + input + '\t' + input + '\t' + input);
    EXPECT_EQ(statusOf(m_process->pid(), "Groups"), input + ' ');
    for (const char* set : {"CapInh", "CapPrm", "CapEff", "CapAmb"})
        EXPECT_EQ(statusOf(m_process->pid(), set), "0000000000000000") << set;
}

TEST_F(KeyReaderProgramTest, AUserWithoutAnActiveSessionIsRefused) {
    m_files.setSessions(person, {"1"}, "");
    start(As::Person);
    EXPECT_EQ(status(), 3);
    EXPECT_EQ(m_said, "quorvane-key-reader: the user has no active session at a seat\n");
    EXPECT_EQ(output(), "");
}

TEST_F(KeyReaderProgramTest, WithoutRootsRightsPkexecIsNotBelieved) {
    m_files.setSessions(other + 1, {"1"}, "1");
    start(As::Person, {"PKEXEC_UID=" + std::to_string(other + 1)});
    EXPECT_EQ(status(), 3);
}

TEST_F(KeyReaderProgramTest, ItSaysOnceThatItRunsAndEndsWithItsInput) {
    sitDown();
    run(As::Person);
    m_inputEnd = {};
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(output(), "");
}

TEST_F(KeyReaderProgramTest, ItEndsWithItsOutputWhetherListeningOrNot) {
    sitDown();
    for (const char* input : {"", "o", "oc"}) {
        openPipes();
        run(As::Person);
        ASSERT_GE(write(m_inputEnd.get(), input, std::strlen(input)), 0);
        m_outputEnd = {};
        EXPECT_EQ(status(), 0) << input;
    }
}

TEST_F(KeyReaderProgramTest, ItEndsWithItsInputOrOutputWhileThatIsFull) {
    sitDown();
    for (FileDescriptor* closed : {&m_inputEnd, &m_outputEnd}) {
        openPipes();
        const int size = fcntl(m_output.get(), F_SETPIPE_SZ, 4096);
        const std::string fill(static_cast<std::size_t>(size), 'x');
        ASSERT_EQ(write(m_output.get(), fill.data(), fill.size()), size);
        start(As::Person);
        // Only its loop reads this.
        ASSERT_EQ(write(m_inputEnd.get(), "x", 1), 1);
        ASSERT_TRUE(waitUntil([this] { return hasReadInput(); }));
        *closed = {};
        EXPECT_EQ(status(), 0);
    }
}

TEST_F(KeyReaderProgramTest, WithoutLogindNobodyIsAtASeat) {
    m_files.remove();
    start(As::Person);
    EXPECT_EQ(status(), 3);
}

} // namespace

} // namespace quorvane
