#pragma once

#include <memory>

#include "tests/support/ChildProcess.h"
#include "tests/support/SoundServer.h"

namespace quorvane {

class PulseAudioServer final : public SoundServer {
public:
    explicit PulseAudioServer(const std::filesystem::path& folder) : SoundServer(folder) {}

    void start() override;
    void kill() override;

    void freeze() override { m_process->send(SIGSTOP); }

    void thaw() override { m_process->send(SIGCONT); }

    void addLateSink(const std::string& name) override;
    void removeSink(const std::string& name) override;

private:
    std::unique_ptr<ChildProcess> m_process;
    std::unique_ptr<ChildProcess> m_lateSinkReader;
};

} // namespace quorvane
