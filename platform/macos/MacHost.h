#pragma once

#include <string>

#include "platform/macos/MacDesktop.h"
#include "platform/macos/MacPlatform.h"
#include "platform/macos/MacTerminationSignals.h"

/// The machine that the program runs on, under the names by which the main program knows it.
namespace quorvane::Host {

using Desktop = MacDesktop;
using Platform = MacPlatform;
using TerminationSignals = MacTerminationSignals;

inline bool hasGraphicsCard() {
    return true;
}

/// There is but one display server, and the toolkit knows it.
class DisplayServer {
public:
    /// Empty: nothing is wrong.
    [[nodiscard]] const std::string& error() const { return m_error; }

    void release() {}

private:
    std::string m_error;
};

} // namespace quorvane::Host
