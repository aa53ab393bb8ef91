#include "platform/linux/desktop/AutostartEntries.h"

#include <glib.h>

#include <QByteArray>
#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <set>
#include <system_error>

#include "platform/linux/common/ReleasedBy.h"
#include "platform/linux/common/XDGFolders.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

// The second is the name of earlier versions' entry, which stays where a person has copied it.
constexpr std::array<std::string_view, 2> ownNames{"org.quorvane.Quorvane.desktop",
                                                   "quorvane.desktop"};
constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;

using KeyFile = std::unique_ptr<GKeyFile, ReleasedBy<g_key_file_unref>>;
using String = std::unique_ptr<gchar, ReleasedBy<g_free>>;
// NOLINTNEXTLINE(modernize-avoid-c-arrays): GLib's type.
using Strings = std::unique_ptr<gchar*[], ReleasedBy<g_strfreev>>;

std::string variable(const char* name, const char* otherwise) {
    return qEnvironmentVariableIsEmpty(name) ? otherwise : qgetenv(name).toStdString();
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find(':', begin), text.size());
        if (end > begin)
            parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

/// One autostart file.
class Entry {
public:
    explicit Entry(const fs::path& file) {
        std::error_code error;
        // Opening a pipe would wait for its other end.
        m_isRead =
            fs::is_regular_file(file, error) &&
            g_key_file_load_from_file(m_file.get(), file.c_str(), G_KEY_FILE_NONE, nullptr) != 0;
    }

    /// Whether a desktop with these names would run it.
    [[nodiscard]] bool isInEffect(const std::vector<std::string>& desktops) const {
        return m_isRead && text("Type") == "Application" && !command().empty() &&
               !flag("Hidden", false) && flag("X-GNOME-Autostart-enabled", true) &&
               isFor(desktops) && isInstalled();
    }

    /// The program as Exec names it; empty if Exec cannot be parsed.
    [[nodiscard]] std::string command() const {
        const std::string line = text("Exec");
        int count = 0;
        gchar** parsed = nullptr;
        if (!g_shell_parse_argv(line.c_str(), &count, &parsed, nullptr))
            return {};
        const Strings words(parsed);
        return words[0];
    }

private:
    [[nodiscard]] std::string text(const char* key) const {
        const String value(g_key_file_get_string(m_file.get(), group, key, nullptr));
        return value ? value.get() : "";
    }

    [[nodiscard]] bool flag(const char* key, bool otherwise) const {
        GError* error = nullptr;
        const bool value = g_key_file_get_boolean(m_file.get(), group, key, &error);
        if (!error)
            return value;
        g_error_free(error);
        return otherwise;
    }

    /// None if the entry lacks the key.
    [[nodiscard]] std::optional<std::vector<std::string>> list(const char* key) const {
        const Strings values(
            g_key_file_get_string_list(m_file.get(), group, key, nullptr, nullptr));
        if (!values)
            return std::nullopt;
        std::vector<std::string> result;
        for (std::size_t i = 0; values[i]; ++i)
            result.emplace_back(values[i]);
        return result;
    }

    [[nodiscard]] bool isFor(const std::vector<std::string>& desktops) const {
        const auto isNamed = [&desktops](const std::vector<std::string>& names) {
            return std::find_first_of(names.begin(), names.end(), desktops.begin(),
                                      desktops.end()) != names.end();
        };
        const auto only = list("OnlyShowIn");
        const auto never = list("NotShowIn");
        return (!only || isNamed(*only)) && (!never || !isNamed(*never));
    }

    [[nodiscard]] bool isInstalled() const {
        const std::string program = text("TryExec");
        return program.empty() || String(g_find_program_in_path(program.c_str()));
    }

    KeyFile m_file{g_key_file_new()};
    bool m_isRead = false;
};

bool isOwn(std::string_view name) {
    return std::find(ownNames.begin(), ownNames.end(), name) != ownNames.end();
}

/// `command` is a path, or a name to be found in PATH.
bool runs(const std::string& command, const fs::path& executable) {
    const String found(g_find_program_in_path(command.c_str()));
    std::error_code error;
    return found && fs::equivalent(found.get(), executable, error) && !error;
}

std::vector<fs::path> entryFiles(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        if (it->path().extension() == ".desktop")
            files.push_back(it->path());
    }
    return files;
}

} // namespace

AutostartEnvironment AutostartEnvironment::current() {
    AutostartEnvironment environment;
    for (const fs::path& folder : xdgConfigFolders())
        environment.folders.push_back(folder / "autostart");
    environment.desktops = split(variable("XDG_CURRENT_DESKTOP", ""));
    std::error_code error;
    environment.executable = fs::read_symlink("/proc/self/exe", error);
    return environment;
}

bool startsAtLogin(const AutostartEnvironment& environment) {
    std::set<std::string> seen;
    for (const fs::path& folder : environment.folders) {
        for (const fs::path& file : entryFiles(folder)) {
            const std::string name = file.filename().string();
            if (!seen.insert(name).second)
                continue;
            const Entry entry(file);
            if (entry.isInEffect(environment.desktops) &&
                (isOwn(name) || runs(entry.command(), environment.executable)))
                return true;
        }
    }
    return false;
}

} // namespace quorvane
