#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/keyboard/KeyReaderProcess.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/QtApplication.h"
#include "tests/support/StandInReader.h"

namespace quorvane {

namespace {

/// The client of a reader that passes on what it is sent, for all inputs together.
class Client {
public:
    Client() {
        require(m_reader.start(), "the stand-in starts");
        while (!m_reader.isRunning())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void send(const std::string& bytes) {
        const auto expected = std::count(bytes.begin(), bytes.end(), 'k');
        m_keys = 0;
        m_standIn.send(bytes);
        while (m_keys < expected)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        require(m_keys == expected, "each byte of a key is heard once");
    }

private:
    QtApplication m_application;
    StandInReader m_standIn;
    std::vector<std::filesystem::path> m_keyboards{m_standIn.readableNode()};
    KeyReaderProcess m_reader{
        [this] { return KeyReaderPlaces{.own = m_standIn.program(), .installed = {}}; },
        [this] { return m_keyboards; }};
    std::ptrdiff_t m_keys = 0;
    Subscription m_heard = m_reader.listen([this] { ++m_keys; });
};

} // namespace

} // namespace quorvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static quorvane::Client client;
    // The last key is the sign that all before it has arrived.
    client.send(std::string(quorvane::textOf(data, size)) + "k");
    return 0;
}
