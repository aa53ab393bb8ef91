#include "platform/linux/instance/SingleInstance.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include <QByteArray>

#include "platform/linux/instance/BusName.h"
#include "platform/linux/instance/FrontWindow.h"

namespace quorvane {

namespace {

// Of the bus's RequestName.
constexpr std::uint32_t doNotQueue = 4;
constexpr unsigned nameIsOurs = 1;
constexpr unsigned nameIsTaken = 3;

constexpr auto startupIdKey = "desktop-startup-id";
constexpr auto activationKey = "activation-token";

/// Reads the next argument, of the type a{sv}; false if it is none.
bool readTokens(sd_bus_message* call, StartupTokens& tokens) {
    if (sd_bus_message_enter_container(call, 'a', "{sv}") < 0)
        return false;
    while (sd_bus_message_enter_container(call, 'e', "sv") > 0) {
        const char* key = nullptr;
        const char* type = nullptr;
        if (sd_bus_message_read(call, "s", &key) < 0 ||
            sd_bus_message_peek_type(call, nullptr, &type) < 0)
            return false;
        const char* text = "";
        if (std::string_view(type) != "s")
            sd_bus_message_skip(call, "v");
        else if (sd_bus_message_read(call, "v", "s", &text) < 0)
            return false;
        if (std::string_view(key) == startupIdKey)
            tokens.id = text;
        else if (std::string_view(key) == activationKey)
            tokens.activation = text;
        sd_bus_message_exit_container(call);
    }
    return sd_bus_message_exit_container(call) >= 0;
}

std::string environment(const char* name) {
    return qgetenv(name).toStdString();
}

} // namespace

SingleInstance::SingleInstance(Kind kind) {
    if (kind == Kind::Single) {
        takeName();
        takeLock();
    }
    if (m_bus.isHung()) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
        if (!m_isSecond)
            m_message = "the session bus does not answer, and is not used";
    }
}

void SingleInstance::takeName() {
    // Again when the first one has just ended.
    while (m_bus.isOpen()) {
        const unsigned result = numberIn(m_bus.askDaemon("RequestName", "su", busName, doNotQueue));
        if (result != nameIsTaken || wakeFirst())
            return;
    }
}

/// An instance that holds the lock without the name found no bus when it was started.
void SingleInstance::takeLock() {
    if (m_isSecond)
        return;
    m_lock.emplace();
    m_isSecond = m_lock->isTaken();
    if (m_isSecond)
        m_message = "already running";
}

/// False if there is no first one any more.
bool SingleInstance::wakeFirst() {
    const std::string id = environment("DESKTOP_STARTUP_ID");
    const std::string token = environment("XDG_ACTIVATION_TOKEN");
    const BusMessage answer =
        m_bus.ask(m_bus.call(busName, busPath, busInterface, "Activate", "a{sv}", 2, startupIdKey,
                             "s", id.c_str(), activationKey, "s", token.c_str()));
    for (const char* gone :
         {SD_BUS_ERROR_NO_REPLY, SD_BUS_ERROR_SERVICE_UNKNOWN, SD_BUS_ERROR_NAME_HAS_NO_OWNER}) {
        if (answer && sd_bus_message_is_method_error(answer.get(), gone) != 0)
            return false;
    }
    m_isSecond = true;
    if (!answer)
        m_message = "already running, but it has not answered yet; 'quorvane --stop' ends it";
    return true;
}

void SingleInstance::serve(QWindow& window, std::function<void()> stop) {
    m_window = &window;
    m_stop = std::move(stop);
    if (!m_bus.isOpen())
        return;
    // Calls that came earlier wait, unread.
    sd_bus_add_object(
        m_bus.get(), nullptr, busPath,
        [](sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
            return static_cast<SingleInstance*>(self)->handle(call);
        },
        this);
    m_readable =
        std::make_unique<QSocketNotifier>(sd_bus_get_fd(m_bus.get()), QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, m_readable.get(),
                     [this] { read(); });
    // What has been read already does not make the socket readable.
    read();
}

/// Without the bus the program goes on, and a second start finds the lock.
void SingleInstance::read() {
    if (m_bus.process())
        return;
    m_readable->setEnabled(false);
    m_readable.release()->deleteLater();
}

int SingleInstance::handle(sd_bus_message* call) {
    const auto is = [call](const char* member) {
        return sd_bus_message_is_method_call(call, busInterface, member) != 0;
    };
    StartupTokens tokens;
    const char* action = "";
    bool isValid = false;
    if (is("Activate"))
        isValid = readTokens(call, tokens);
    else if (is("Open"))
        isValid = sd_bus_message_skip(call, "as") >= 0 && readTokens(call, tokens);
    else if (is("ActivateAction"))
        isValid =
            sd_bus_message_read(call, "s", &action) > 0 && std::string_view(action) == stopAction;
    else
        return 0;
    if (!isValid) {
        sd_bus_reply_method_errorf(call, SD_BUS_ERROR_INVALID_ARGS, "not an action of Quorvane");
        return 1;
    }
    sd_bus_reply_method_return(call, "");
    if (*action != '\0')
        m_stop();
    else
        bringToFront(*m_window, tokens);
    return 1;
}

} // namespace quorvane
