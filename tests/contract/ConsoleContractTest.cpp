#include <array>
#include <gmock/gmock.h>
#include <memory>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "base/NonCopyable.h"
#include "platform/linux/system/LinuxConsole.h"
#include "platform/macos/MacConsole.h"
#include "platform/simulated/SimulatedSystem.h"

namespace quorvane {

namespace {

class ConsoleContractBackend : NonCopyable {
public:
    virtual ~ConsoleContractBackend() = default;

    virtual Console& console() = 0;
    /// What has been written so far.
    virtual std::string written() = 0;
};

class SimulatedBackend final : public ConsoleContractBackend {
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
class PipeBackend final : public ConsoleContractBackend {
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

using ConsoleBackendMaker = std::unique_ptr<ConsoleContractBackend> (*)();

class ConsoleContract : public testing::TestWithParam<ConsoleBackendMaker> {
protected:
    std::unique_ptr<ConsoleContractBackend> m_backend = GetParam()();
};

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

template <typename Backend>
std::unique_ptr<ConsoleContractBackend> make() {
    return std::make_unique<Backend>();
}

INSTANTIATE_TEST_SUITE_P(Simulated, ConsoleContract, testing::Values(&make<SimulatedBackend>));
INSTANTIATE_TEST_SUITE_P(Linux, ConsoleContract, testing::Values(&make<PipeBackend<LinuxConsole>>));
INSTANTIATE_TEST_SUITE_P(Mac, ConsoleContract, testing::Values(&make<PipeBackend<MacConsole>>));

} // namespace

} // namespace quorvane
