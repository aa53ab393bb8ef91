#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/keyboard/reader/Privileges.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OpenFiles.h"

namespace quorvane {

namespace {

/// The user who runs the tests, or another one if that is root.
const uid_t person = geteuid() == 0 ? 12345 : geteuid();

bool becomePerson() {
    return geteuid() != 0 ||
           (setresgid(person, person, person) == 0 && setresuid(person, person, person) == 0);
}

/// What a child process returns from `work`; -1 if it cannot be run.
int inChild(const std::function<int()>& work) {
    return ChildProcess(work).wait();
}

/// The status with which `work`, in a child process, is refused.
int refusalOf(const std::function<void()>& work) {
    return inChild([&work] {
        try {
            work();
        } catch (const Refusal& refusal) {
            return static_cast<int>(refusal.status());
        }
        return 0;
    });
}

TEST(ReaderPrivilegesTest, AUserIsANumberAndNothingElse) {
    EXPECT_EQ(parseUser("1000"), uid_t{1000});
    for (const char* text : {"", "0", "-1", "1000 ", " 1000", "0x3e8", "1000;", "4294967295",
                             "4294967296", "root", "99999999999999999999"})
        EXPECT_EQ(parseUser(text), std::nullopt) << text;
}

TEST(ReaderPrivilegesTest, ItWorksForWhoRunsItOrForWhomRootsPkexecNames) {
    EXPECT_EQ(findAskingUser({.user = 1000, .pkexecUser = "1001"}), uid_t{1000});
    EXPECT_EQ(findAskingUser({.user = 0, .pkexecUser = "1001"}), uid_t{1001});
}

TEST(ReaderPrivilegesTest, ItTakesNeitherArgumentsNorRightsOfItsFile) {
    EXPECT_THROW(static_cast<void>(findAskingUser({.argumentCount = 2, .user = 1000})), Refusal);
    EXPECT_THROW(static_cast<void>(findAskingUser({.argumentCount = 0, .user = 1000})), Refusal);
    EXPECT_THROW(static_cast<void>(findAskingUser({.hasRightsOfFile = true, .user = 1000})),
                 Refusal);
}

TEST(ReaderPrivilegesTest, OnlyTheStandardStreamsAreLeft) {
    EXPECT_EQ(inChild([] {
                  dup2(STDERR_FILENO, 500);
                  dropInheritance();
                  return static_cast<int>(openDescriptors().size());
              }),
              3);
}

TEST(ReaderPrivilegesTest, TheEnvironmentTheFolderAndTheUmaskAreNotTheParents) {
    EXPECT_EQ(inChild([] {
                  dropInheritance();
                  return std::filesystem::current_path() == "/" && umask(0) == 077 &&
                         (!environ || !*environ);
              }),
              1);
}

TEST(ReaderPrivilegesTest, ThereAreNoCoresAndNoNewRights) {
    EXPECT_EQ(inChild([] {
                  dropInheritance();
                  rlimit cores{.rlim_cur = 1, .rlim_max = 1};
                  getrlimit(RLIMIT_CORE, &cores);
                  return cores.rlim_cur == 0 && cores.rlim_max == 0 &&
                         prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1;
              }),
              1);
}

TEST(ReaderPrivilegesTest, WithoutAStandardStreamItIsRefused) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        EXPECT_EQ(refusalOf([stream] {
                      close(stream);
                      dropInheritance();
                  }),
                  1)
            << stream;
}

TEST(ReaderPrivilegesTest, NoOtherProcessOfTheUserCanLookIntoIt) {
    ChildProcess reader([] {
        if (becomePerson() && prctl(PR_SET_DUMPABLE, 1, 0, 0, 0) == 0)
            dropPrivileges(person);
        return raise(SIGSTOP);
    });
    ASSERT_EQ(reader.waitForStop(), SIGSTOP);
    const auto memory = "/proc/" + std::to_string(reader.pid()) + "/mem";
    EXPECT_EQ(inChild([&memory] {
                  return becomePerson() && open(memory.c_str(), O_RDONLY | O_CLOEXEC) < 0 ? errno
                                                                                          : 0;
              }),
              EACCES);
}

TEST(ReaderPrivilegesTest, AUserWhoIsNotTheOneWhoRunsItIsRefused) {
    EXPECT_EQ(refusalOf([] {
                  if (becomePerson())
                      dropPrivileges(person + 1);
              }),
              1);
}

} // namespace

} // namespace quorvane
