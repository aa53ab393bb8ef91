#include "platform/linux/keyboard/KeyReaderProcess.h"

#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "platform/posix/StandardError.h"

namespace quorvane {

namespace {

// The reader's protocol.
constexpr char keyByte = 'k';
constexpr char openByte = 'o';
constexpr char closeByte = 'c';

// Exit statuses: the reader's, and pkexec's own.
constexpr int noActiveSession = 3;
constexpr int questionRefused = 126;
constexpr int questionFailed = 127;

// What the user is told.
constexpr auto questionOpen = "Permission needed — answer the question on your screen";
constexpr auto allowedLate = "Allowed — switch it on again";
constexpr auto refused = "Permission refused — switch it on again to be asked again";
constexpr auto noAgent = "Not allowed — needs a polkit agent and an administrator's password";
constexpr auto noPolkit = "pkexec needed to ask for permission — install polkit";
constexpr auto notInstalled = "Not installed — as root: cmake --install build --prefix /usr";
constexpr auto noKeyboard = "Keyboard not found — plug one in and switch it on again";
constexpr auto notOnSeat = "No active session at this screen — switch it on again there";
constexpr auto failed = "Key reader failed — use the switch to start it again";

bool exitedWith(int status, int code) {
    return WIFEXITED(status) && WEXITSTATUS(status) == code;
}

const char* explain(int status, bool wasQuestion) {
    if (wasQuestion && exitedWith(status, questionRefused))
        return refused;
    if (wasQuestion && exitedWith(status, questionFailed))
        return noAgent;
    return exitedWith(status, noActiveSession) ? notOnSeat : failed;
}

void report(int status) {
    if (WIFSIGNALED(status))
        printError("the key reader ended: signal " + std::to_string(WTERMSIG(status)));
    else
        printError("the key reader ended: status " + std::to_string(WEXITSTATUS(status)));
}

} // namespace

KeyReaderProcess::KeyReaderProcess(Places places, Keyboards keyboards)
    : m_places(std::move(places)), m_keyboards(std::move(keyboards)) {}

KeyReaderProcess::~KeyReaderProcess() {
    withdraw();
}

bool KeyReaderProcess::canStartWithoutAsking() const {
    if (m_places().own.empty())
        return false;
    const auto nodes = m_keyboards();
    return std::any_of(nodes.begin(), nodes.end(), canReadKeyboard);
}

bool KeyReaderProcess::start() {
    if (!m_runs && m_asked)
        withdraw();
    if (!m_child && (!canStartWithoutAsking() || !spawn({m_places().own.string()})))
        return false;
    m_obstacle = std::string();
    return true;
}

void KeyReaderProcess::ask() {
    if (m_child)
        return;
    const auto program = m_places().installed;
    if (m_keyboards().empty())
        m_obstacle = noKeyboard;
    else if (program.empty())
        m_obstacle = notInstalled;
    // Without the option it would ask on the terminal where there is no agent to ask on the screen.
    else if (spawn({"pkexec", "--disable-internal-agent", program.string()})) {
        m_asked = true;
        m_obstacle = questionOpen;
    } else
        m_obstacle = errno == ENOENT ? noPolkit : failed;
}

void KeyReaderProcess::withdraw() {
    if (m_child && m_asked && !m_runs) {
        // If it has just been allowed it is root's and stays, but ends with its input.
        m_child->terminate();
        m_child.reset();
        m_asked = false;
    }
    m_obstacle = std::string();
}

bool KeyReaderProcess::spawn(const std::vector<std::string>& command) {
    m_child = PipedChild::start(command, {.output = [this](auto bytes) { handleOutput(bytes); },
                                          .writable = [this] { sendSwitch(); },
                                          .ended = [this](int status) { handleEnd(status); }});
    m_asked = false;
    m_runs = false;
    m_opened = false;
    return m_child != nullptr;
}

void KeyReaderProcess::handleOutput(std::string_view bytes) {
    for (const char byte : bytes) {
        if (byte != keyByte)
            continue;
        if (m_runs)
            m_keyWentDown.notify();
        else
            handleRunning();
    }
}

void KeyReaderProcess::handleRunning() {
    m_runs = true;
    sendSwitch();
    if (m_asked)
        m_obstacle = allowedLate;
}

void KeyReaderProcess::handleEnd(int status) {
    const bool wasQuestion = m_asked && !m_runs;
    m_child.reset();
    m_asked = false;
    m_runs = false;
    // pkexec has said it by itself.
    if (!wasQuestion ||
        (!exitedWith(status, questionRefused) && !exitedWith(status, questionFailed)))
        report(status);
    const bool isMissed = wasQuestion || m_listeners > 0;
    m_obstacle = isMissed ? explain(status, wasQuestion) : "";
}

Subscription KeyReaderProcess::listen(std::function<void()> keyWentDown) {
    auto heard = std::make_shared<Subscription>(m_keyWentDown.observe(std::move(keyWentDown)));
    ++m_listeners;
    sendSwitch();
    return Subscription([this, heard] {
        heard->cancel();
        --m_listeners;
        sendSwitch();
    });
}

void KeyReaderProcess::sendSwitch() {
    const bool isWanted = m_listeners > 0;
    if (m_runs && isWanted != m_opened && m_child->write(isWanted ? openByte : closeByte))
        m_opened = isWanted;
}

} // namespace quorvane
