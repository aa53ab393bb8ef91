#include "platform/linux/system/LinuxUserDefaults.h"

#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>

namespace quorvane {

namespace {

namespace fs = std::filesystem;

constexpr int mostDamagedFiles = 100;
// Bytes. The settings are a few lines; a larger file counts as damaged and is not read.
constexpr qint64 largestFile = 1 << 20;

QString toQString(const fs::path& path) {
    return QFile::decodeName(path.c_str());
}

bool isText(const QByteArray& bytes) {
    return std::none_of(bytes.begin(), bytes.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 && character != '\n' && character != '\r' && character != '\t';
    });
}

bool isINILine(const QByteArray& line) {
    if (line.isEmpty() || line.startsWith(';') || line.startsWith('#'))
        return true;
    return line.startsWith('[') ? line.contains(']') : line.contains('=');
}

/// QSettings reports a format error too, but only when a process reads the file for the first time.
bool isINI(const QByteArray& bytes) {
    bool continued = false;
    for (const QByteArray& line : bytes.split('\n')) {
        if (!std::exchange(continued, line.endsWith('\\')) && !isINILine(line.trimmed()))
            return false;
    }
    return isText(bytes);
}

/// A file that is missing or may not be read is not damaged.
bool isDamaged(const fs::path& path) {
    std::error_code error;
    QFile file(toQString(path));
    if (!fs::is_regular_file(path, error) || !file.open(QFile::ReadOnly))
        return false;
    return file.size() > largestFile || !isINI(file.readAll());
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
            std::fprintf(stderr, "quorvane: the settings file %s is damaged; kept as %s\n",
                         path.c_str(), aside.c_str());
        return !error;
    }
    return false;
}

/// Null if the file is damaged and cannot be put aside.
std::unique_ptr<QSettings> openSettings(const fs::path& path) {
    if (isDamaged(path) && !putAside(path))
        return nullptr;
    return std::make_unique<QSettings>(toQString(path), QSettings::IniFormat);
}

void complain(const fs::path& path, const char* reason) {
    std::fprintf(stderr, "quorvane: the settings are not saved: %s %s\n", path.c_str(), reason);
}

/// "true" in any case, or "1"; anything else is false.
bool isTrue(const QVariant& value) {
    const QString text = value.toString();
    return text == QLatin1String("1") ||
           text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

} // namespace

LinuxUserDefaults::LinuxUserDefaults(fs::path file) : m_file(std::move(file)) {}

bool LinuxUserDefaults::boolForKey(std::string_view key) const {
    if (const auto value = m_setHere.find(key); value != m_setHere.end())
        return value->second;
    const auto settings = openSettings(m_file);
    return settings && isTrue(settings->value(QString::fromStdString(std::string(key))));
}

void LinuxUserDefaults::setBool(std::string_view key, bool value) {
    m_setHere.insert_or_assign(std::string(key), value);
    const auto settings = openSettings(m_file);
    if (!settings) {
        complain(m_file, "is damaged and cannot be put aside");
        return;
    }
    for (const auto& [name, setting] : m_setHere)
        settings->setValue(QString::fromStdString(name), setting);
    settings->sync();
    if (settings->status() != QSettings::NoError)
        complain(m_file, "cannot be written");
}

fs::path LinuxUserDefaults::standardFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return fs::path(folder.toStdString()) / "quorvane" / "quorvane.ini";
}

} // namespace quorvane
