#include <array>
#include <gmock/gmock.h>
#include <memory>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/linux/system/LinuxConsole.h"
#include "platform/macos/MacConsole.h"
#include "platform/simulated/SimulatedSystem.h"
#include "tests/contract/Contract.h"

namespace quorvane {

namespace {

class ConsoleBackend : public ContractBackend {
public:
    virtual Console& console() = 0;
    /// What has been written so far.
    virtual std::string written() = 0;
};

class SimulatedBackend final : public ConsoleBackend {
public:
    Console& console() override { return m_console; }

    std::string written() override {
        std::string text;
        for (const std::string& line : m_console.lines)
            text += line + "\n";
        return text;
    }

private:
    SimulatedConsole m_console;
};

template <typename DescriptorConsole>
class PipeBackend final : public ConsoleBackend {
public:
    PipeBackend() : m_ends(makePipe()), m_console(m_ends[1]) {}

    ~PipeBackend() override {
        close(m_ends[0]);
        close(m_ends[1]);
    }

    Console& console() override { return m_console; }

    std::string written() override {
        std::array<char, 512> bytes{};
        pollfd waiting{.fd = m_ends[0], .events = POLLIN, .revents = 0};
        while (poll(&waiting, 1, 0) > 0) {
            const ssize_t count = read(m_ends[0], bytes.data(), bytes.size());
            if (count <= 0)
                break;
            m_text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return m_text;
    }

private:
    static std::array<int, 2> makePipe() {
        std::array<int, 2> ends{-1, -1};
        EXPECT_EQ(pipe(ends.data()), 0);
        return ends;
    }

    std::array<int, 2> m_ends;
    std::string m_text;
    DescriptorConsole m_console;
};

using ConsoleContract = Contract<ConsoleBackend>;

TEST_P(ConsoleContract, EachLineIsOutAsSoonAsItIsPrinted) {
    m_backend->console().print("✅ [FAN] first");
    EXPECT_EQ(m_backend->written(), "✅ [FAN] first\n");
    m_backend->console().print("second");
    EXPECT_EQ(m_backend->written(), "✅ [FAN] first\nsecond\n");
}

TEST_P(ConsoleContract, AnEmptyLineIsALine) {
    m_backend->console().print("");
    EXPECT_EQ(m_backend->written(), "\n");
}

TEST_P(ConsoleContract, ALineIsNoFormatString) {
    m_backend->console().print("100 %s %n");
    EXPECT_EQ(m_backend->written(), "100 %s %n\n");
}

INSTANTIATE_TEST_SUITE_P(Simulated, ConsoleContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(Linux, ConsoleContract, on<PipeBackend<LinuxConsole>>());
INSTANTIATE_TEST_SUITE_P(Mac, ConsoleContract, on<PipeBackend<MacConsole>>());

} // namespace

} // namespace quorvane
