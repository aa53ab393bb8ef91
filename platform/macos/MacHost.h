#pragma once

#include <functional>
#include <string>

#include "platform/macos/MacDesktop.h"
#include "platform/macos/MacPlatform.h"
#include "platform/macos/MacStopRunning.h"
#include "platform/macos/MacTerminationSignals.h"

class QWindow;

/// The macOS platform, under the names that main.cpp uses.
namespace quorvane::Host {

using Desktop = MacDesktop;
using Platform = MacPlatform;
using TerminationSignals = MacTerminationSignals;
using quorvane::stopRunning;

inline bool hasGraphicsCard() {
    return true;
}

/// macOS has one display server, which Qt finds by itself.
class DisplayServer {
public:
    /// Empty: nothing is wrong.
    [[nodiscard]] const std::string& error() const { return m_error; }

    void release() {}

private:
    std::string m_error;
};

/// LaunchServices starts one instance only and brings it to the front for a second start.
class SingleInstance {
public:
    enum class Kind { Single, Simulated };

    explicit SingleInstance(Kind /*kind*/) {}

    [[nodiscard]] bool isSecond() const { return m_isSecond; }

    /// Empty: there is nothing to tell.
    [[nodiscard]] const std::string& message() const { return m_message; }

    void serve(QWindow& /*window*/, const std::function<void()>& /*stop*/) {}

    void ignore() {}

private:
    std::string m_message;
    bool m_isSecond = false;
};

} // namespace quorvane::Host
