#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "base/EffectManager.h"
#include "effects/crash/BSODView.h"
#include "platform/Platform.h"
#include "platform/Screens.h"

namespace quorvane {

/// Covers the main screen with a stop screen for 5 seconds, every 15 seconds. The progress runs
/// from 0 to 1 by the wall clock; the screen ends after 5 seconds even if that clock is set back.
/// Main thread only; owned through a shared pointer. The owner must call `stop` before it drops the
/// manager, or a panel that is shown stays up.
class BSODManager final : public EffectManager, public std::enable_shared_from_this<BSODManager> {
public:
    struct StopCode {
        std::string_view code;
        std::string_view msg;
    };

    static constexpr std::array<StopCode, 6> errors{{
        {.code = "0x0000007E", .msg = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED"},
        {.code = "0x000000D1", .msg = "DRIVER_IRQL_NOT_LESS_OR_EQUAL"},
        {.code = "0x0000003B", .msg = "SYSTEM_SERVICE_EXCEPTION"},
        {.code = "0xC000021A", .msg = "WINLOGON_FATAL_ERROR"},
        {.code = "0x00000050", .msg = "PAGE_FAULT_IN_NONPAGED_AREA"},
        {.code = "0x000000EF", .msg = "CRITICAL_PROCESS_DIED"},
    }};

    [[nodiscard]] static std::shared_ptr<BSODManager> create(const Platform& platform);
    ~BSODManager() override;

    void start() override;
    /// Removes a stop screen at once. The texts and the progress stay as they are.
    void stop() override;

    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

    [[nodiscard]] std::string obstacle() override { return m_platform.screens.obstacle(); }

    /// True from the start of a stop screen until its progress is complete, also without a panel.
    [[nodiscard]] const Observable<bool>& isShowing() const { return m_isShowing; }

    [[nodiscard]] const Observable<std::string>& errorMessage() const {
        return m_screen->errorMessage;
    }

    [[nodiscard]] const Observable<std::string>& errorCode() const { return m_screen->errorCode; }

    /// 0 to 1; stays at its last value until the next stop screen.
    [[nodiscard]] const Observable<double>& progress() const { return m_screen->progress; }

private:
    explicit BSODManager(const Platform& platform);

    /// When a stop screen began, on both clocks.
    struct Start {
        double date;
        double mediaTime;
    };

    void showBSOD();
    void showPanel();
    void tick(Timer& timer, const Start& start);
    [[nodiscard]] double fractionSince(const Start& start) const;
    void removePanel();

    Platform m_platform;
    Observable<bool> m_isActive;
    Observable<bool> m_isShowing;
    // Shared with the view, which lives as long as its panel.
    std::shared_ptr<StopScreen> m_screen = std::make_shared<StopScreen>();
    std::shared_ptr<Timer> m_bsodTimer;
    std::shared_ptr<Timer> m_progressTimer;
    std::shared_ptr<OverlayPanel> m_bsodWindow;
};

} // namespace quorvane
