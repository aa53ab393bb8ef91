#pragma once

#include <memory>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/SoundServer.h"

namespace quorvane {

/// PipeWire, WirePlumber without hardware, and PipeWire's PulseAudio server. A test that fails is
/// repeated if PipeWire says that it missed a period meanwhile.
class PipeWireServer final : public SoundServer {
public:
    explicit PipeWireServer(const std::filesystem::path& folder);
    ~PipeWireServer() override;

    void start() override;
    void kill() override;

    void freeze() override { send(SIGSTOP); }

    void thaw() override { send(SIGCONT); }

    void addLateSink(const std::string& name) override;
    void removeSink(const std::string& name) override;

private:
    void launch(const std::vector<std::string>& command);
    void send(int signal) const;
    [[nodiscard]] bool isAlive() const;
    [[nodiscard]] std::vector<std::string>
    inItsEnvironment(const std::vector<std::string>& command) const;

    std::vector<std::unique_ptr<ChildProcess>> m_processes;
};

} // namespace quorvane
