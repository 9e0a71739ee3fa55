// 16-bit PCM WAV files with the canonical 44-byte header (RIFF, fmt at 12, data at 36).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace audiogen {

// Converts samples in [-1, 1] to 16-bit with rounding and clamping.
std::vector<int16_t> ToPcm16(const std::vector<double>& samples);

// Complete file bytes: header + interleaved little-endian samples.
std::vector<uint8_t> BuildWav(const std::vector<int16_t>& samples, int channels, int rate);

bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes, std::string& error);

}  // namespace audiogen
