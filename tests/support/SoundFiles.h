#pragma once

#include <filesystem>

#include "platform/Audio.h"

namespace quorvane {

/// A rising tone, different in each channel, at about a third of full scale: no two places in it
/// are alike.
[[nodiscard]] PCMBuffer chirp(const AudioFormat& format, std::uint32_t frames);

/// Writes `sound` as 16-bit WAV.
void writeWAV(const std::filesystem::path& path, const PCMBuffer& sound);
/// Writes `sound` as 16-bit FLAC whose middle is overwritten: the decoder finds its length and its
/// end, but stops at the damage.
void writeDamagedFLAC(const std::filesystem::path& path, const PCMBuffer& sound);
/// Encodes `sound` with LAME. Throws when that fails.
void makeMP3(const std::filesystem::path& path, const PCMBuffer& sound);
void copyFirstHalf(const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace quorvane
