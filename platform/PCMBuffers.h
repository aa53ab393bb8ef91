#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/Audio.h"

namespace quorvane {

/// Implements AudioService::createBuffer.
[[nodiscard]] std::shared_ptr<PCMBuffer> makePCMBuffer(const AudioFormat& format,
                                                       std::uint32_t frameCapacity);

/// Implements AudioService::standardFormat.
[[nodiscard]] std::optional<AudioFormat> makeStandardFormat(double sampleRate, unsigned channels);

} // namespace quorvane
