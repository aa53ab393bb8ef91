#pragma once

#include <sys/fsuid.h>

#include <filesystem>

#include "base/NonCopyable.h"

namespace quorvane {

/// While it lives, this thread accesses files as a user who owns none, even if it runs as root.
class RightsOfAnotherUser : NonCopyable {
public:
    /// That user may enter `folder`.
    explicit RightsOfAnotherUser(const std::filesystem::path& folder) {
        std::filesystem::permissions(folder, std::filesystem::perms{0755});
        m_before = static_cast<uid_t>(setfsuid(anotherUser));
    }

    ~RightsOfAnotherUser() { setfsuid(m_before); }

private:
    static constexpr uid_t anotherUser = 65534;

    uid_t m_before = 0;
};

inline void makeReadOnly(const std::filesystem::path& file) {
    std::filesystem::permissions(file, std::filesystem::perms{0444});
}

} // namespace quorvane
