#include "platform/linux/keyboard/reader/Privileges.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace quorvane {

namespace {

/// The group that may read the keyboards.
constexpr auto inputGroup = "input";

void require(bool isDone, const std::string& what) {
    if (!isDone)
        throw Refusal(ExitStatus::Failed,
                      "cannot " + what + ": " + std::generic_category().message(errno));
}

[[noreturn]] void refuse(const std::string& reason) {
    throw Refusal(ExitStatus::Refused, reason);
}

void becomeUser(uid_t user) {
    errno = 0;
    const group* found = getgrnam(inputGroup); // NOLINT(concurrency-mt-unsafe): one thread.
    require(found, "find the group input");
    const gid_t input = found->gr_gid;
    require(setgroups(1, &input) == 0, "drop the groups");
    require(setresgid(input, input, input) == 0, "become the group input");
    // The user's own id, not a service's: the user can then see and end the process that works for
    // them.
    require(setresuid(user, user, user) == 0, "become the user");
    require(getgid() == input && getegid() == input && getgroups(0, nullptr) == 1 &&
                setresgid(0, 0, 0) != 0,
            "lose root's groups");
}

void checkUser(uid_t user) {
    uid_t real = 0;
    uid_t effective = 0;
    uid_t saved = 0;
    require(getresuid(&real, &effective, &saved) == 0 && real == user && effective == user &&
                saved == user,
            "be the user alone");
    require(setresuid(0, 0, 0) != 0, "lose root's rights");
}

} // namespace

std::optional<uid_t> parseUser(std::string_view text) {
    uid_t user = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, user);
    if (error != std::errc() || stop != end || user == 0 || user == static_cast<uid_t>(-1))
        return std::nullopt;
    return user;
}

uid_t findAskingUser(const Start& start) {
    if (start.argumentCount != 1)
        refuse("takes no arguments");
    if (start.hasRightsOfFile)
        refuse("does not run with rights of its file");
    if (start.user != 0)
        return start.user;
    const auto user = parseUser(start.pkexecUser ? start.pkexecUser : "");
    if (!user)
        refuse("runs as root only for the user that pkexec names");
    return *user;
}

void dropInheritance() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        require(fcntl(stream, F_GETFD) >= 0, "use the standard streams");
    require(close_range(STDERR_FILENO + 1, ~0U, 0) == 0, "close inherited files");
    require(clearenv() == 0, "clear the environment"); // NOLINT(concurrency-mt-unsafe): as above.
    require(chdir("/") == 0, "leave the folder");
    umask(077);
    // A write to a closed output shall fail, not end the process with a signal.
    require(std::signal(SIGPIPE, SIG_IGN) != SIG_ERR, "ignore SIGPIPE");
    const rlimit none{};
    require(setrlimit(RLIMIT_CORE, &none) == 0, "forbid core files");
    require(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "forbid new rights");
}

void dropPrivileges(uid_t user) {
    if (geteuid() == 0)
        becomeUser(user);
    checkUser(user);
    // After the change of user, which resets it: neither dumped nor traced, and /proc/PID is
    // root's.
    require(prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0 && prctl(PR_GET_DUMPABLE, 0, 0, 0, 0) == 0,
            "forbid dumps");
}

} // namespace quorvane
