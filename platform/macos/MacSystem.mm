#include "platform/macos/MacSystem.h"

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

#include "platform/macos/MacStrings.h"

namespace quorvane {

namespace {

static_assert(static_cast<NSInteger>(LoginItemStatus::NotRegistered) ==
              SMAppServiceStatusNotRegistered);
static_assert(static_cast<NSInteger>(LoginItemStatus::Enabled) == SMAppServiceStatusEnabled);
static_assert(static_cast<NSInteger>(LoginItemStatus::RequiresApproval) ==
              SMAppServiceStatusRequiresApproval);
static_assert(static_cast<NSInteger>(LoginItemStatus::NotFound) == SMAppServiceStatusNotFound);

static_assert(static_cast<NSInteger>(HapticPattern::Generic) == NSHapticFeedbackPatternGeneric);
static_assert(static_cast<NSInteger>(HapticPattern::Alignment) == NSHapticFeedbackPatternAlignment);
static_assert(static_cast<NSInteger>(HapticPattern::LevelChange) ==
              NSHapticFeedbackPatternLevelChange);
static_assert(static_cast<NSUInteger>(HapticPerformanceTime::Default) ==
              NSHapticFeedbackPerformanceTimeDefault);
static_assert(static_cast<NSUInteger>(HapticPerformanceTime::Now) ==
              NSHapticFeedbackPerformanceTimeNow);
static_assert(static_cast<NSUInteger>(HapticPerformanceTime::DrawCompleted) ==
              NSHapticFeedbackPerformanceTimeDrawCompleted);

class MacHapticPerformer final : public HapticPerformer {
public:
    explicit MacHapticPerformer(id<NSHapticFeedbackPerformer> performer) : m_performer(performer) {}

    void performFeedback(HapticPattern pattern, HapticPerformanceTime time) override {
        [m_performer performFeedbackPattern:static_cast<NSHapticFeedbackPattern>(pattern)
                            performanceTime:static_cast<NSHapticFeedbackPerformanceTime>(time)];
    }

private:
    id<NSHapticFeedbackPerformer> m_performer;
};

} // namespace

LoginItemStatus MacApplication::loginItemStatus() const {
    return static_cast<LoginItemStatus>(SMAppService.mainAppService.status);
}

bool MacApplication::isActive() const {
    return NSRunningApplication.currentApplication.active;
}

bool MacUserDefaults::boolForKey(std::string_view key) const {
    return [NSUserDefaults.standardUserDefaults boolForKey:toNSString(key)];
}

void MacUserDefaults::setBool(std::string_view key, bool value) {
    [NSUserDefaults.standardUserDefaults setBool:value forKey:toNSString(key)];
}

std::optional<std::filesystem::path> MacBundle::urlForResource(std::string_view name,
                                                               std::string_view extension) const {
    NSURL* url = [NSBundle.mainBundle URLForResource:toNSString(name)
                                       withExtension:toNSString(extension)];
    if (!url)
        return std::nullopt;
    return std::filesystem::path(url.fileSystemRepresentation);
}

std::shared_ptr<HapticPerformer> MacHaptics::defaultPerformer() {
    return std::make_shared<MacHapticPerformer>(NSHapticFeedbackManager.defaultPerformer);
}

} // namespace quorvane
