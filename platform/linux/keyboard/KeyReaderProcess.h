#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "platform/linux/keyboard/KeyReaderPlaces.h"
#include "platform/linux/keyboard/KeyboardNodes.h"
#include "platform/linux/keyboard/PipedChild.h"

namespace quorvane {

/// The program quorvane-key-reader as a child of this one: it writes a byte when it runs, and then
/// one for each key that goes down. It is started once, by this user if they may read a keyboard,
/// else through polkit as root, and stays until it or this object ends. It has keyboards open only
/// while there is a listener. Nothing here waits for it. Main thread only.
class KeyReaderProcess : NonCopyable {
public:
    using Places = std::function<KeyReaderPlaces()>;
    /// The event nodes of the machine's keyboards.
    using Keyboards = std::function<std::vector<std::filesystem::path>()>;

    explicit KeyReaderProcess(Places places = &findKeyReader,
                              Keyboards keyboards = &listKeyboardNodes);
    /// The reader ends by itself; an open question is taken away.
    ~KeyReaderProcess();

    /// Whether the reader has said that it runs.
    [[nodiscard]] bool isRunning() const { return m_runs; }

    /// Whether this user may read a keyboard.
    [[nodiscard]] bool canStartWithoutAsking() const;

    /// Starts the reader if it is neither there nor on its way. False if that would take a question
    /// or fails.
    bool start();

    /// Asks the person at this seat, through polkit, to let the reader run. Returns at once; does
    /// nothing while a question is open.
    void ask();
    /// Takes an open question away and clears `obstacle`.
    void withdraw();

    /// Calls `keyWentDown` for each key until the subscription is dropped, which this object
    /// outlives.
    [[nodiscard]] Subscription listen(std::function<void()> keyWentDown);

    /// As Accessibility::obstacle.
    [[nodiscard]] const Observable<std::string>& obstacle() const { return m_obstacle; }

private:
    bool spawn(const std::vector<std::string>& command);
    void handleOutput(std::string_view bytes);
    void handleRunning();
    void handleEnd(int status);
    void sendSwitch();

    Places m_places;
    Keyboards m_keyboards;
    std::unique_ptr<PipedChild> m_child;
    bool m_asked = false;
    bool m_runs = false;
    /// Whether the reader was last told to open the keyboards.
    bool m_opened = false;
    int m_listeners = 0;
    ChangeNotice m_keyWentDown;
    Observable<std::string> m_obstacle;
};

} // namespace quorvane
