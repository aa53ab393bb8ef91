#include "platform/linux/system/SettingsFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <strings.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/posix/StandardError.h"

namespace quorvane {

namespace {

namespace fs = std::filesystem;

constexpr int mostDamagedFiles = 100;
// Bytes. The settings are a few lines; a larger file counts as damaged and is not read.
constexpr std::uintmax_t largestFile = 1 << 20;

std::string_view trimmed(std::string_view text) {
    constexpr auto blanks = " \t\r";
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

bool isText(std::string_view bytes) {
    return std::none_of(bytes.begin(), bytes.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 && character != '\n' && character != '\r' && character != '\t';
    });
}

/// One line of a file, or several where all but the last end with a backslash.
struct Line {
    /// With the newline, if there is one.
    std::string_view text;
    /// Empty, or as it is in square brackets.
    std::string_view section;
    /// Empty except in a line with a key.
    std::string_view key;
    std::string_view value;
    bool isSound = true;
};

Line parse(std::string_view text) {
    const auto words = trimmed(text.substr(0, text.find_last_not_of('\n') + 1));
    Line line{.text = text, .section = {}, .key = {}, .value = {}};
    if (words.empty() || words.front() == ';' || words.front() == '#')
        return line;
    const auto middle = words.find(words.front() == '[' ? ']' : '=');
    line.isSound = middle != std::string_view::npos;
    if (!line.isSound)
        return line;
    if (words.front() == '[') {
        line.section = words.substr(0, middle + 1);
    } else {
        line.key = trimmed(words.substr(0, middle));
        line.value = trimmed(words.substr(middle + 1));
    }
    return line;
}

std::vector<Line> linesOf(std::string_view text) {
    std::vector<Line> lines;
    std::size_t begin = 0;
    for (std::size_t at = 0; begin < text.size(); ++at) {
        if (at < text.size() && (text[at] != '\n' || (at > 0 && text[at - 1] == '\\')))
            continue;
        const std::size_t end = std::min(at + 1, text.size());
        lines.push_back(parse(text.substr(begin, end - begin)));
        begin = end;
    }
    return lines;
}

bool isGeneral(std::string_view section) {
    return section.size() == 9 && strncasecmp(section.data(), "[General]", section.size()) == 0;
}

/// The lines with keys of the section "General", which is also what stands before any section.
template <class Visit>
void visitGeneral(const std::vector<Line>& lines, Visit visit) {
    bool general = true;
    for (const Line& line : lines) {
        if (!line.section.empty())
            general = isGeneral(line.section);
        visit(line, general);
    }
}

bool isINI(std::string_view text) {
    const auto lines = linesOf(text);
    return isText(text) &&
           std::all_of(lines.begin(), lines.end(), [](const Line& line) { return line.isSound; });
}

/// None if there is no file that may be read.
std::optional<std::string> read(const fs::path& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    std::string text(std::min(fs::file_size(path, error), largestFile + 1), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return text;
}

bool putAside(const fs::path& path) {
    for (int number = 0; number < mostDamagedFiles; ++number) {
        fs::path aside = path;
        aside += number == 0 ? ".damaged" : ".damaged." + std::to_string(number);
        std::error_code error;
        if (fs::exists(fs::symlink_status(aside, error)))
            continue;
        fs::rename(path, aside, error);
        if (!error)
            printError("the settings file " + path.string() + " is damaged; kept as " +
                       aside.string());
        return !error;
    }
    return false;
}

/// As `read`; nothing of a damaged file, which is put aside, or false if it cannot be.
bool readSound(const fs::path& path, std::optional<std::string>& text) {
    text = read(path);
    if (!text || (text->size() <= largestFile && isINI(*text)))
        return true;
    text.reset();
    return putAside(path);
}

/// Whether what is added after `text` begins a line of its own.
bool endsLine(std::string_view text) {
    return text.ends_with('\n') && !text.ends_with("\\\n");
}

void endLine(std::string& text) {
    while (!endsLine(text))
        text += '\n';
}

std::string edited(const std::string& text, const SettingsFile::Values& values) {
    std::string added;
    for (const auto& [key, value] : values)
        added += key + (value ? "=true\n" : "=false\n");
    std::string result;
    bool isAdded = false;
    visitGeneral(linesOf(text), [&](const Line& line, bool general) {
        if (general && values.contains(line.key))
            return;
        result += line.text;
        if (isAdded || !isGeneral(line.section))
            return;
        endLine(result);
        result += added;
        isAdded = true;
    });
    if (isAdded)
        return result;
    if (!result.empty()) {
        endLine(result);
        result += '\n';
    }
    return result + "[General]\n" + added;
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count < 0 && errno != EINTR)
            return false;
        text.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return fsync(descriptor) == 0;
}

/// The rights of the file that is replaced, those of a new one otherwise.
void keepRights(int descriptor, const fs::path& before) {
    struct stat status {};

    if (stat(before.c_str(), &status) == 0)
        static_cast<void>(fchmod(descriptor, status.st_mode & 07777));
}

bool replace(const fs::path& path, std::string_view text) {
    std::error_code error;
    // A link stays a link.
    fs::path target = fs::canonical(path, error);
    if (error)
        target = path;
    if (fs::create_directories(target.parent_path(), error))
        fs::permissions(target.parent_path(), fs::perms::owner_all, error);
    fs::path fresh = target;
    fresh += ".new." + std::to_string(getpid());
    const FileDescriptor file(
        open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file)
        return false;
    keepRights(file.get(), target);
    if (writeAll(file.get(), text) && rename(fresh.c_str(), target.c_str()) == 0)
        return true;
    unlink(fresh.c_str());
    return false;
}

/// There is none, or it may be read and written.
bool isReplaceable(const fs::path& path, bool isRead) {
    std::error_code error;
    return !fs::exists(path, error) || (isRead && access(path.c_str(), W_OK) == 0);
}

} // namespace

SettingsFile::SettingsFile(fs::path path) : m_path(std::move(path)) {}

std::optional<std::string> SettingsFile::value(std::string_view key) const {
    std::optional<std::string> text;
    static_cast<void>(readSound(m_path, text));
    std::optional<std::string> value;
    if (text)
        visitGeneral(linesOf(*text), [&](const Line& line, bool general) {
            if (general && line.key == key)
                value = line.value;
        });
    return value;
}

bool SettingsFile::save(const Values& values) const {
    std::optional<std::string> text;
    const char* problem = nullptr;
    if (!readSound(m_path, text))
        problem = "is damaged and cannot be put aside";
    else if (!isReplaceable(m_path, text.has_value()) ||
             !replace(m_path, edited(text.value_or(""), values)))
        problem = "cannot be written";
    if (problem)
        printError("the settings are not saved: " + m_path.string() + " " + problem);
    return !problem;
}

} // namespace quorvane
