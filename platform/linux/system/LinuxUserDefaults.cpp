#include "platform/linux/system/LinuxUserDefaults.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <strings.h>
#include <utility>

#include "platform/linux/common/XDGFolders.h"
#include "platform/posix/StandardError.h"
#include "platform/posix/Threads.h"

namespace quorvane {

namespace {

constexpr std::chrono::seconds longestWait{1};

/// "true" in any case, or "1", perhaps in quotation marks; anything else is false.
bool isTrue(std::string text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    return text == "1" || strcasecmp(text.c_str(), "true") == 0;
}

} // namespace

struct LinuxUserDefaults::Saving {
    explicit Saving(std::filesystem::path path) : file(std::move(path)) {}

    SettingsFile file;
    std::mutex mutex;
    std::condition_variable ended;
    // To be written; none after that.
    std::optional<SettingsFile::Values> values;
    bool isRunning = false;

    void run() {
        std::unique_lock lock(mutex);
        while (values) {
            const SettingsFile::Values next = *std::exchange(values, std::nullopt);
            lock.unlock();
            static_cast<void>(file.save(next));
            lock.lock();
        }
        isRunning = false;
        ended.notify_all();
    }
};

LinuxUserDefaults::LinuxUserDefaults(std::filesystem::path file)
    : m_saving(std::make_shared<Saving>(std::move(file))) {}

LinuxUserDefaults::~LinuxUserDefaults() {
    finish();
}

bool LinuxUserDefaults::boolForKey(std::string_view key) const {
    if (const auto value = m_setHere.find(key); value != m_setHere.end())
        return value->second;
    return isTrue(m_saving->file.value(key).value_or(""));
}

void LinuxUserDefaults::setBool(std::string_view key, bool value) {
    m_setHere.insert_or_assign(std::string(key), value);
    {
        const std::lock_guard lock(m_saving->mutex);
        m_saving->values = m_setHere;
        if (std::exchange(m_saving->isRunning, true))
            return;
    }
    if (m_thread.joinable())
        m_thread.join();
    m_thread = startThread("settings", [saving = m_saving] { saving->run(); });
    // Better late than lost.
    if (!m_thread.joinable())
        m_saving->run();
}

void LinuxUserDefaults::finish() {
    if (!m_thread.joinable())
        return;
    std::unique_lock lock(m_saving->mutex);
    const bool ended =
        m_saving->ended.wait_for(lock, longestWait, [this] { return !m_saving->isRunning; });
    lock.unlock();
    if (ended) {
        m_thread.join();
        return;
    }
    printError("the settings are not saved: " + m_saving->file.path().string() +
               " takes longer than a second");
    m_thread.detach();
}

std::filesystem::path LinuxUserDefaults::standardFile() {
    return xdgConfigFolder() / "quorvane" / "quorvane.ini";
}

} // namespace quorvane
