// Tells Quorvane that a key went down, never which one; README.md has its protocol. Run by pkexec
// as root once the person has agreed, or as a user who may read the keyboards. It takes nothing
// from its caller but what pkexec itself says of them, and the two bytes of the protocol.

#include <cstdio>
#include <exception>

#include "platform/linux/keyboard/reader/Privileges.h"

namespace {

int fail(quorvane::ExitStatus status, const char* reason) {
    std::fprintf(stderr, "quorvane-key-reader: %s\n", reason);
    return static_cast<int>(status);
}

} // namespace

int main(int argumentCount, char** /*arguments*/) {
    using namespace quorvane;
    try {
        const uid_t user = findAskingUser(argumentCount);
        dropInheritance();
        dropPrivileges(user);
        return static_cast<int>(ExitStatus::Ended);
    } catch (const Refusal& refusal) {
        return fail(refusal.status(), refusal.what());
    } catch (const std::exception& error) {
        return fail(ExitStatus::Failed, error.what());
    }
}
