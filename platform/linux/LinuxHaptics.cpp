#include "platform/linux/LinuxHaptics.h"

namespace quorvane {

namespace {

class NoPerformer final : public HapticPerformer {
public:
    void performFeedback(HapticPattern /*pattern*/, HapticPerformanceTime /*time*/) override {}
};

} // namespace

std::shared_ptr<HapticPerformer> LinuxHaptics::defaultPerformer() {
    return std::make_shared<NoPerformer>();
}

} // namespace quorvane
