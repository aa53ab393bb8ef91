#pragma once

#include <memory>

#include "base/EffectManager.h"
#include "platform/Platform.h"
#include "platform/Screens.h"

namespace quorvane {

/// Makes the machine seem to hang now and then: after 20 to 40 seconds of normal use, an overlay
/// takes the clicks of the main screen for 3 to 4 seconds. Main thread only; owned through a shared
/// pointer. Its owner calls `stop` before letting go of it: a panel that is up then would stay up.
class FreezeManager final : public EffectManager,
                            public std::enable_shared_from_this<FreezeManager> {
public:
    [[nodiscard]] static std::shared_ptr<FreezeManager> create(const Platform& platform);
    ~FreezeManager() override;

    void start() override;
    /// Takes an overlay away at once. The end of a freeze that is under way still comes; if the
    /// effect has been started again by then, it begins a second chain of freezes beside the first.
    void stop() override;

    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

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
