#include "platform/macos/MacTerminationSignals.h"

#import <dispatch/dispatch.h>

#include <array>
#include <csignal>

namespace quorvane {

namespace {

constexpr std::array terminationSignals{SIGINT, SIGTERM};

} // namespace

struct MacTerminationSignals::Sources {
    std::array<dispatch_source_t, terminationSignals.size()> all{};
};

MacTerminationSignals::MacTerminationSignals() : m_sources(std::make_unique<Sources>()) {
    // Dispatch sources get ignored signals too.
    for (const int signal : terminationSignals)
        std::signal(signal, SIG_IGN);
}

MacTerminationSignals::~MacTerminationSignals() {
    ignore();
}

void MacTerminationSignals::listen(std::function<void()> handler) {
    ignore();
    for (std::size_t i = 0; i < terminationSignals.size(); ++i) {
        dispatch_source_t source = dispatch_source_create(
            DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<std::uintptr_t>(terminationSignals[i]), 0,
            dispatch_get_main_queue());
        dispatch_source_set_event_handler(source, ^{
          handler();
        });
        dispatch_resume(source);
        m_sources->all[i] = source;
    }
}

void MacTerminationSignals::ignore() {
    for (auto& source : m_sources->all) {
        if (source)
            dispatch_source_cancel(source);
        source = nullptr;
    }
}

} // namespace quorvane
