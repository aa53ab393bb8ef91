#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/Audio.h"
#include "tests/support/Recording.h"

namespace quorvane {

/// Stereo sound at 44.1 kHz of `frames` frames, at most 490,000 (11 s), that never gets louder than
/// 0.8. Each frame tells its place: the left channel has the hundreds, as it were, the right one
/// the rest. The steps are wide enough for files of 16 bits.
[[nodiscard]] PCMBuffer stampedSound(std::uint32_t frames);

/// The place in the stamped sound that is heard in that frame of a recording; none where it is
/// silent or fades.
[[nodiscard]] std::optional<std::size_t> placeAt(const Recording& recording, std::size_t frame);

/// The first frame at or after `start` with a place; none if there is none.
[[nodiscard]] std::optional<std::size_t> firstPlaced(const Recording& recording, std::size_t start);

/// How many frames behind the first placed one do not follow the frame before them in a loop of
/// `loop` frames: silent, faded, or from another place.
[[nodiscard]] std::size_t jumps(const Recording& recording, std::size_t loop);

} // namespace quorvane
