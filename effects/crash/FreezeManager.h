#pragma once

#include <memory>
#include <string>

#include "base/EffectManager.h"
#include "platform/Platform.h"
#include "platform/Screens.h"

namespace quorvane {

/// Makes the machine seem to hang: every 20 to 40 seconds, an overlay takes the clicks of the main
/// screen for 3 to 4 seconds. Main thread only; owned through a shared pointer. The owner must call
/// `stop` before it drops the manager, or a panel that is shown stays up.
class FreezeManager final : public EffectManager,
                            public std::enable_shared_from_this<FreezeManager> {
public:
    [[nodiscard]] static std::shared_ptr<FreezeManager> create(const Platform& platform);
    ~FreezeManager() override;

    void start() override;
    /// Removes an overlay at once. The delayed end of a freeze that has begun still runs; if the
    /// effect is active again by then, it starts a second chain of freezes beside the first.
    void stop() override;

    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

    [[nodiscard]] std::string obstacle() override { return m_platform.screens.obstacle(); }

private:
    explicit FreezeManager(const Platform& platform);

    void scheduleNext();
    void showFreeze();
    void endFreeze();
    void removePanel();
    [[nodiscard]] double draw(double low, double high);

    Platform m_platform;
    Observable<bool> m_isActive;
    std::shared_ptr<Timer> m_freezeTimer;
    std::shared_ptr<OverlayPanel> m_freezeWindow;
};

} // namespace quorvane
