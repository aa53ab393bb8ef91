#pragma once

#include "platform/Application.h"
#include "platform/Haptics.h"
#include "platform/System.h"

namespace quorvane {

/// The program as a login item and as a running application.
class MacApplication final : public Application {
public:
    [[nodiscard]] LoginItemStatus loginItemStatus() const override;
    [[nodiscard]] bool isActive() const override;
};

/// The standard user defaults.
class MacUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] bool boolForKey(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;
};

/// The main bundle's resources.
class MacBundle final : public Bundle {
public:
    [[nodiscard]] std::optional<std::filesystem::path>
    urlForResource(std::string_view name, std::string_view extension) const override;
};

/// The trackpad's pulses, which a trackpad without them ignores.
class MacHaptics final : public HapticService {
public:
    [[nodiscard]] std::shared_ptr<HapticPerformer> defaultPerformer() override;
};

} // namespace quorvane
