#pragma once

#include <string>

#include "platform/macos/MacDesktop.h"
#include "platform/macos/MacPlatform.h"
#include "platform/macos/MacTerminationSignals.h"

/// The macOS platform, under the names that main.cpp uses.
namespace quorvane::Host {

using Desktop = MacDesktop;
using Platform = MacPlatform;
using TerminationSignals = MacTerminationSignals;

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

} // namespace quorvane::Host
