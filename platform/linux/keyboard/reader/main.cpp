// Tells Quorvane that a key went down, never which one; README.md has its protocol. Run by pkexec
// as root once the person has agreed, or as a user who may read the keyboards. It takes nothing
// from its caller but what pkexec itself says of them, and the two bytes of the protocol.

#include <sys/auxv.h>
#include <sys/syslog.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "platform/linux/keyboard/reader/Privileges.h"
#include "platform/linux/keyboard/reader/ReaderLoop.h"

using namespace quorvane;

namespace {

constexpr auto program = "quorvane-key-reader";

void run(uid_t user) {
    LogindSeats seats(user);
    // Nothing has been heard of locks yet.
    if (seats.update().empty())
        throw Refusal(ExitStatus::NoActiveSession, "the user has no active session at a seat");
    UdevKeyboardList list;
    Keyboards keyboards(list, [user](const KeyboardNode& keyboard) {
        syslog(LOG_NOTICE, "reads the keyboard \"%s\" for the user %u", keyboard.name.c_str(),
               user);
    });
    ReaderLoop(STDIN_FILENO, STDOUT_FILENO, seats, keyboards).run();
}

int fail(ExitStatus status, const char* reason) {
    std::fprintf(stderr, "%s: %s\n", program, reason);
    return static_cast<int>(status);
}

} // namespace

int main(int argumentCount, char** /*arguments*/) {
    try {
        const uid_t user =
            findAskingUser({.argumentCount = argumentCount,
                            .hasRightsOfFile = getauxval(AT_SECURE) != 0,
                            .user = geteuid(),
                            .pkexecUser = std::getenv(
                                "PKEXEC_UID")}); // NOLINT(concurrency-mt-unsafe): one thread.
        dropInheritance();
        // Connected before rights are dropped.
        openlog(program, LOG_PID | LOG_NDELAY, LOG_AUTHPRIV);
        dropPrivileges(user);
        run(user);
        return static_cast<int>(ExitStatus::Ended);
    } catch (const Refusal& refusal) {
        return fail(refusal.status(), refusal.what());
    } catch (const std::exception& error) {
        return fail(ExitStatus::Failed, error.what());
    }
}
