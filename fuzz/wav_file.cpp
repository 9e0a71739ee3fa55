// Sound-effect WAV reader on damaged headers, fed as bytes: an accepted effect
// has a PCM format the mixer can convert and a buffer of exactly the RIFF size,
// never above the cap, filled only from bytes the file holds.
#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstring>

#include "base/byte_reader.h"
#include "media/wav_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CByteReader in(data, size, "fuzz.wav");
    SWavEffect e;
    const EWavRead r = ReadWavEffect(in, e);
    if (r != EWavRead::Ok) {
        if ((r == EWavRead::BadHeader || r == EWavRead::TooLarge) && in.Error().empty()) __builtin_trap();
        return 0;
    }
    const SWavFormat& f = e.format;
    if (f.tag != 1 || f.channels < 1 || f.channels > 8 || f.blockAlign != f.channels * f.bits / 8) __builtin_trap();
    if (e.riffSize < kWavUnfilledTail || e.riffSize > kWavMaxBufferBytes || e.buffer.size() != e.riffSize)
        __builtin_trap();
    if (size > kWavHeaderBytes) {
        const size_t filled = std::min(size - kWavHeaderBytes, size_t(e.riffSize - kWavUnfilledTail));
        if (std::memcmp(e.buffer.data(), data + kWavHeaderBytes, filled) != 0) __builtin_trap();
    }
    return 0;
}
