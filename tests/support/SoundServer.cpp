#include "tests/support/SoundServer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/PipeWireServer.h"
#include "tests/support/PulseAudioServer.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

void setVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): before there are threads.
}

PlayedStream streamOf(const nlohmann::json& told) {
    const auto& volume = told.at("volume");
    return {.index = told.at("index"),
            .sink = told.at("sink"),
            .isCorked = told.at("corked"),
            .isMuted = told.at("mute"),
            .volume = volume.empty() ? "" : volume.begin()->at("value_percent"),
            .format = told.at("sample_specification"),
            .properties = told.at("properties")};
}

} // namespace

void PrintTo(SoundServerKind kind, std::ostream* stream) {
    switch (kind) {
    case SoundServerKind::PulseAudio:
        *stream << "PulseAudio";
        break;
    case SoundServerKind::PipeWire:
        *stream << "PipeWire";
        break;
    }
}

std::unique_ptr<SoundServer> SoundServer::make(SoundServerKind kind,
                                               const std::filesystem::path& folder) {
    if (kind == SoundServerKind::PipeWire)
        return std::make_unique<PipeWireServer>(folder);
    return std::make_unique<PulseAudioServer>(folder);
}

SoundServer::SoundServer(std::filesystem::path folder) : m_folder(std::move(folder)) {
    setVariable("HOME", m_folder.string());
    setVariable("XDG_CONFIG_HOME", (m_folder / "config").string());
    setVariable("PULSE_RUNTIME_PATH", m_folder.string());
    setVariable("PULSE_COOKIE", (m_folder / "cookie").string());
    setVariable("PULSE_SERVER", "unix:" + socketPath());
}

void SoundServer::addSink(const std::string& name) {
    control({"load-module", "module-null-sink", "sink_name=" + name + std::string(sinkArguments)});
    const auto isThere = [&] { return hasSink(name); };
    if (!waitUntil(isThere))
        throw std::runtime_error("no sink " + name);
}

void SoundServer::chooseSink(const std::string& name) {
    control({"set-default-sink", name});
    if (!waitUntil([&] { return isDefaultSink(name); }))
        throw std::runtime_error("not the default sink: " + name);
}

void SoundServer::suspendSink(const std::string& name, bool suspended) {
    control({"suspend-sink", name, suspended ? "1" : "0"});
}

unsigned SoundServer::sinkIndex(const std::string& name) const {
    for (const auto& sink : nlohmann::json::parse(control({"--format=json", "list", "sinks"})))
        if (sink.at("name") == name)
            return sink.at("index");
    throw std::runtime_error("no sink " + name);
}

std::vector<PlayedStream> SoundServer::streams() const {
    std::vector<PlayedStream> streams;
    for (const auto& told :
         nlohmann::json::parse(control({"--format=json", "list", "sink-inputs"})))
        streams.push_back(streamOf(told));
    return streams;
}

std::string SoundServer::control(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command{"pactl"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto log = m_folder / "pactl.txt";
    std::filesystem::remove(log);
    const int status = ChildProcess(command, log).wait();
    const std::string text = fileText(log);
    if (status != 0)
        throw std::runtime_error("pactl " + arguments.front() + ": " + text);
    return text;
}

bool SoundServer::hasSink(const std::string& name) const {
    return control({"list", "short", "sinks"}).find("\t" + name + "\t") != std::string::npos;
}

bool SoundServer::acceptsConnections() const {
    const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = socketPath();
    std::memcpy(address.sun_path, path.c_str(), std::min(path.size(), sizeof address.sun_path - 1));
    const bool connected =
        connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(client);
    return connected;
}

bool SoundServer::isDefaultSink(std::string_view name) const {
    return control({"get-default-sink"}) == std::string(name) + "\n";
}

} // namespace quorvane
