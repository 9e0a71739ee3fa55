// Builds WAV files byte by byte for the sound and music tests.
#pragma once
#include <cmath>
#include <cstdint>
#include <vector>

#include "common/bytes.h"

namespace mediatest {

using testbytes::Set16;
using testbytes::Set32;

// A canonical 44-byte header followed by `data`; the RIFF size is the file size
// minus 8 unless `riffSize` is given.
inline std::vector<uint8_t> MakeWav(const std::vector<uint8_t>& data, int channels = 1, int rate = 44100,
                                    int bits = 16, int64_t riffSize = -1, int formatTag = 1) {
    std::vector<uint8_t> v(44, 0);
    const char* tags[] = {"RIFF", "WAVE", "fmt ", "data"};
    const size_t at[] = {0, 8, 12, 36};
    for (int i = 0; i < 4; ++i)
        for (int k = 0; k < 4; ++k) v[at[i] + size_t(k)] = uint8_t(tags[i][k]);
    Set32(v, 4, riffSize >= 0 ? uint32_t(riffSize) : uint32_t(36 + data.size()));
    Set32(v, 16, 16);
    Set16(v, 20, uint16_t(formatTag));
    Set16(v, 22, uint16_t(channels));
    Set32(v, 24, uint32_t(rate));
    Set32(v, 28, uint32_t(rate * channels * bits / 8));
    Set16(v, 32, uint16_t(channels * bits / 8));
    Set16(v, 34, uint16_t(bits));
    Set32(v, 40, uint32_t(data.size()));
    v.insert(v.end(), data.begin(), data.end());
    return v;
}

// Mono 16-bit 44.1 kHz tone of the given length.
inline std::vector<uint8_t> Tone(double seconds, double hz = 440.0) {
    const size_t n = size_t(seconds * 44100);
    std::vector<uint8_t> d(n * 2);
    for (size_t i = 0; i < n; ++i) {
        const int16_t s = int16_t(8000 * std::sin(6.283185307 * hz * double(i) / 44100.0));
        d[2 * i] = uint8_t(s);
        d[2 * i + 1] = uint8_t(uint16_t(s) >> 8);
    }
    return d;
}

}  // namespace mediatest
