#include "platform/linux/audio/OpenALAudioConfiguration.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace quorvane {

namespace {

// The drivers are those that end in a real device: OpenAL's own last resort plays to nobody and
// calls that a success. Four periods of 192 frames are 16 ms at 48 kHz. Of shorter buffers more
// runs dry on a busy machine, and longer ones make a key's crack late; with fewer periods
// PulseAudio wakes more often, with two all the time. A period is one tick of the kernel's clock,
// by which sound cards without an interrupt of their own go: with one of 320 frames they drop out.
// Stereo on speakers with nothing done to it, so that a sound leaves as it is in its file; the
// resampler matters only for files of another rate than the device's.
constexpr std::string_view ownSettings = R"([general]
drivers = pulse,alsa
channels = stereo
stereo-mode = speakers
hrtf = false
period_size = 192
periods = 4
output-limiter = false
resampler = bsinc12
)";

std::string environmentVariable(const char* name) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value ? value : "";
}

/// In the order in which OpenAL Soft reads them: each wins over the ones before.
std::vector<std::filesystem::path> personsFiles() {
    std::vector<std::filesystem::path> files{"/etc/openal/alsoft.conf"};
    const std::string home = environmentVariable("HOME");
    const std::string config = environmentVariable("XDG_CONFIG_HOME");
    if (!home.empty())
        files.push_back(std::filesystem::path(home) / ".alsoftrc");
    if (!config.empty())
        files.push_back(std::filesystem::path(config) / "alsoft.conf");
    else if (!home.empty())
        files.push_back(std::filesystem::path(home) / ".config/alsoft.conf");
    return files;
}

std::string allSettings() {
    std::ostringstream settings;
    settings << ownSettings;
    for (const auto& file : personsFiles()) {
        std::ifstream stream(file);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        settings << "\n[general]\n" << text;
    }
    return settings.str();
}

} // namespace

void configureOpenALAudio() {
    // OpenAL's own words on standard error would stand beside the program's.
    setenv("ALSOFT_LOGLEVEL", "0", 0); // NOLINT(concurrency-mt-unsafe)
    if (!environmentVariable("ALSOFT_CONF").empty())
        return;
    // A file without a name: nothing to clean up, and it is there for as long as the process.
    const int file = memfd_create("quorvane-alsoft.conf", MFD_CLOEXEC);
    if (file < 0)
        return;
    const std::string settings = allSettings();
    if (write(file, settings.data(), settings.size()) != static_cast<ssize_t>(settings.size())) {
        close(file);
        return;
    }
    const std::string path = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file);
    setenv("ALSOFT_CONF", path.c_str(), 1); // NOLINT(concurrency-mt-unsafe)
}

} // namespace quorvane
