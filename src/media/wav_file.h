// Sound-effect WAV files as the engine reads them: the canonical 44-byte header
// (the RIFF size R at offset 4, the PCM format at 20, samples from 44). An
// effect's buffer is R bytes, of which the first R - 800 are filled from offset
// 44 on; whatever the file lacks stays silent. The RIFF size rules, not the file
// size, so a header may claim more than the file holds: R is capped at what an
// effect may take.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

class CByteReader;

struct SWavFormat {
    uint16_t tag = 0;  // 1: PCM, the only one taken
    uint16_t channels = 0;
    uint32_t rate = 0;
    uint16_t blockAlign = 0;
    uint16_t bits = 0;  // 8, 16 or 32
};

constexpr size_t kWavHeaderBytes = 44;
constexpr uint32_t kWavUnfilledTail = 800;       // the tail never filled from the file
constexpr uint32_t kWavMaxBufferBytes = 4u << 20;  // about 24 s of 44.1 kHz 16-bit stereo
// The most of a file an effect reads: the header and the filled part of the
// largest buffer.
constexpr size_t kWavMaxReadBytes = kWavHeaderBytes + kWavMaxBufferBytes - kWavUnfilledTail;

struct SWavEffect {
    SWavFormat format;
    uint32_t riffSize = 0;
    std::vector<uint8_t> buffer;  // riffSize bytes
};

enum class EWavRead {
    Ok,
    BadHeader,  // shorter than a header, not 8/16/32-bit PCM of 1 to 8 channels, R below 4
    TooLarge,   // R above kWavMaxBufferBytes
    TooShort,   // R below the 800-byte unfilled tail: nothing can be filled
};

// Reads an effect from the first bytes of a WAV file (at least everything up to
// offset 44 + R - 800 when the file has it). The reader's error says why a
// header was refused.
EWavRead ReadWavEffect(CByteReader& in, SWavEffect& out);
