#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/NonCopyable.h"
#include "platform/linux/keyboard/KeyReaderPlaces.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

/// Programs in place of the key reader, and the named pipe and the file between them and the test.
class StandInReader : NonCopyable {
public:
    StandInReader() {
        if (mkfifo(keys().c_str(), 0600) != 0)
            throw std::runtime_error("no named pipe");
        m_keys = open(keys().c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        // Says that it runs, passes on what the test sends, notes what it is told, ends with its
        // input.
        write("printf k\n" + relay());
    }

    ~StandInReader() { close(m_keys); }

    /// The commands that follow the first byte of the usual program.
    [[nodiscard]] std::string relay() const {
        // The test may have removed the files when it ends.
        return "exec 3<&0 2>/dev/null\n"
               "cat " +
               keys().string() +
               " &\n"
               "relay=$!\n"
               "cat <&3 >>" +
               toldFile().string() +
               "\n"
               "kill $relay\n"
               "echo end >>" +
               endFile().string() + "\n";
    }

    /// Replaces the program by a shell script of these commands.
    void write(const std::string& commands) const {
        const auto script = m_folder.write("reader", "#!/bin/sh\n" + commands);
        std::filesystem::permissions(script, std::filesystem::perms{0755});
    }

    void send(std::string_view bytes) const {
        if (::write(m_keys, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("the reader does not take this");
    }

    /// What the programs were told so far, and the line "end" of each that ended with its input.
    [[nodiscard]] std::string told() const { return fileText(toldFile()); }

    [[nodiscard]] std::string ends() const { return fileText(endFile()); }

    [[nodiscard]] std::filesystem::path program() const { return m_folder.path() / "reader"; }

    /// A named pipe that what the test sends can be read from.
    [[nodiscard]] std::filesystem::path keys() const { return m_folder.path() / "keys"; }

    [[nodiscard]] std::filesystem::path toldFile() const { return m_folder.path() / "told"; }

    [[nodiscard]] std::filesystem::path endFile() const { return m_folder.path() / "end"; }

    /// As a keyboard's node that this user may read.
    [[nodiscard]] std::filesystem::path readableNode() const {
        return m_folder.write("event0", "");
    }

    [[nodiscard]] const TemporaryFolder& folder() const { return m_folder; }

private:
    TemporaryFolder m_folder;
    int m_keys = -1;
};

} // namespace quorvane
