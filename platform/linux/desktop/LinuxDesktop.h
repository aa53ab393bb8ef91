#pragma once

#include <memory>

#include "platform/Desktop.h"

namespace quorvane {

class ReducedMotion;
class X11ObscuredWindowWatcher;

/// The desktop's settings and, on X11, whether other windows cover ours. Connects to nothing before
/// `watchWindow`, so that the window does not wait for that.
class LinuxDesktop final : public Desktop {
public:
    LinuxDesktop();
    ~LinuxDesktop() override;

    [[nodiscard]] const Observable<bool>& reducesMotion() const override { return m_reducesMotion; }

    [[nodiscard]] const Observable<bool>& windowIsCovered() const override { return m_isCovered; }

    /// `window`: the winId() of a window that is on screen already, so that the server knows it.
    void watchWindow(std::uintptr_t window) override;

private:
    Observable<bool> m_reducesMotion;
    Observable<bool> m_isCovered;
    std::unique_ptr<ReducedMotion> m_motion;
    std::unique_ptr<X11ObscuredWindowWatcher> m_cover;
};

} // namespace quorvane
