// Run by pkexec as root, once the person has agreed: lets the user who asked, and who is at a seat,
// read that seat's keyboards until the machine is started anew. It takes nothing from its caller
// but what pkexec itself says of them.

#include <unistd.h>

#include <cstdlib>

#include "platform/linux/keyboard/access/KeyboardAccess.h"

int main(int argc, char** /*argv*/) {
    using namespace quorvane;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the only thread there is.
    const char* caller = std::getenv("PKEXEC_UID");
    if (argc != 1 || geteuid() != 0 || !caller)
        return EXIT_FAILURE;
    const auto user = parseUser(caller);
    if (!user || grantKeyboards(listSeatedKeyboards(), activeSeats(*user), *user) == 0)
        return EXIT_FAILURE;
    return EXIT_SUCCESS;
}
