#pragma once

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <system_error>

#include <sys/types.h>

#include "base/NonCopyable.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

/// The files in which logind tells who is at which seat. Only a child process that enters them has
/// them for the machine's own.
class SeatFiles : NonCopyable {
public:
    SeatFiles() {
        for (const char* name : {"users", "sessions", "seats"})
            std::filesystem::create_directories(m_folder.path() / "systemd" / name);
        // The child may run as another user.
        std::filesystem::permissions(m_folder.path(), std::filesystem::perms{0755});
    }

    /// `user` has these sessions, and the one that is `active` is in front at seat0; empty: none
    /// is.
    void setSessions(uid_t user, const std::set<std::string>& sessions,
                     const std::string& active) const {
        std::string list;
        for (const std::string& session : sessions)
            list += (list.empty() ? "" : " ") + session;
        replace("seats/seat0", active.empty() ? "ACTIVE=other\n" : "ACTIVE=" + active + "\n");
        replace("users/" + std::to_string(user),
                "SESSIONS=" + list +
                    "\nSEATS=seat0\nACTIVE_SEATS=" + (active.empty() ? "" : "seat0") + "\n");
    }

    /// Takes them away, as on a machine without logind.
    void remove() const { std::filesystem::remove_all(m_folder.path() / "systemd"); }

    /// In a child process with one thread: from now on they are the machine's own. Unless this runs
    /// as root already, it does so in a user namespace: as the same user or, if `asRoot`, as root.
    void enter(bool asRoot = false) const {
        const uid_t user = geteuid();
        const gid_t group = getegid();
        const bool isRoot = user == 0;
        check(unshare(CLONE_NEWNS | (isRoot ? 0 : CLONE_NEWUSER)) == 0, "unshare");
        if (!isRoot) {
            std::ofstream("/proc/self/setgroups") << "deny";
            std::ofstream("/proc/self/uid_map") << (asRoot ? 0 : user) << ' ' << user << " 1";
            std::ofstream("/proc/self/gid_map") << (asRoot ? 0 : group) << ' ' << group << " 1";
        }
        check(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
        check(mount(m_folder.path().c_str(), "/run", nullptr, MS_BIND, nullptr) == 0, "mount");
    }

private:
    static void check(bool isDone, const char* what) {
        if (!isDone)
            throw std::system_error(errno, std::generic_category(), what);
    }

    /// Atomically, as logind does.
    void replace(const std::string& name, const std::string& text) const {
        const auto folder = m_folder.path() / "systemd";
        std::filesystem::rename(m_folder.write("systemd/new", text), folder / name);
    }

    TemporaryFolder m_folder;
};

} // namespace quorvane
