#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/Audio.h"

namespace quorvane {

/// What AudioService::createBuffer promises.
[[nodiscard]] std::shared_ptr<PCMBuffer> makePCMBuffer(const AudioFormat& format,
                                                       std::uint32_t frameCapacity);

/// What AudioService::standardFormat promises, on a system that plays every such format.
[[nodiscard]] std::optional<AudioFormat> makeStandardFormat(double sampleRate, unsigned channels);

} // namespace quorvane
