#include "platform/macos/MacConsole.h"

#include <cerrno>
#include <string>
#include <unistd.h>

namespace quorvane {

void MacConsole::print(std::string_view line) {
    const std::string text = std::string(line) + "\n";
    std::string_view left = text;
    while (!left.empty()) {
        const ssize_t count = write(m_descriptor, left.data(), left.size());
        if (count >= 0)
            left.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return;
    }
}

} // namespace quorvane
