#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace quorvane {

enum class ExitStatus { Ended = 0, Failed = 1, Refused = 2, NoActiveSession = 3 };

/// Why the program does not run.
class Refusal : public std::runtime_error {
public:
    Refusal(ExitStatus status, const std::string& reason)
        : std::runtime_error(reason), m_status(status) {}

    [[nodiscard]] ExitStatus status() const { return m_status; }

private:
    ExitStatus m_status;
};

/// A user's number as pkexec passes it on. None for anything else, and for root.
[[nodiscard]] std::optional<uid_t> parseUser(std::string_view text);

/// What the program knows of its start.
struct Start {
    /// As main gets it.
    int argumentCount = 1;
    /// Whether its file gave it rights that its caller lacks, as a setgid program's does.
    bool hasRightsOfFile = false;
    uid_t user = 0;
    /// PKEXEC_UID; null if it is not set.
    const char* pkexecUser = nullptr;
};

/// Whom the program works for: who asked pkexec for it when it runs as root, else who runs it.
/// Throws a Refusal.
[[nodiscard]] uid_t findAskingUser(const Start& start);

/// Gives up what the parent process passed on but the three standard streams, and makes sure that
/// this process never dumps core nor gains rights. Throws a Refusal.
void dropInheritance();

/// As root: becomes `user` with the group `input` and no other right. In any case no other process
/// of that user can look into this one afterwards. Throws a Refusal.
void dropPrivileges(uid_t user);

} // namespace quorvane
