// Sound-effect WAV files.
#include "media/wav_file.h"

#include <cstring>

#include "base/byte_reader.h"

EWavRead ReadWavEffect(CByteReader& in, SWavEffect& out) {
    // The format ends at offset 36; the samples start at 44.
    if (in.Size() < 36) {
        in.Fail("shorter than a WAV header");
        return EWavRead::BadHeader;
    }
    SWavEffect e;
    in.Seek(4);
    e.riffSize = in.ReadU32("RIFF size");
    in.Seek(20);
    SWavFormat& f = e.format;
    f.tag = in.ReadU16("format tag");
    f.channels = in.ReadU16("channels");
    f.rate = in.ReadU32("sample rate");
    in.Skip(4, "byte rate");
    f.blockAlign = in.ReadU16("block align");
    f.bits = in.ReadU16("bits per sample");
    const bool formatOk = f.tag == 1 && f.channels >= 1 && f.channels <= 8 && f.rate >= 100 && f.rate <= 200000 &&
                          (f.bits == 8 || f.bits == 16 || f.bits == 32) && f.blockAlign == f.channels * f.bits / 8;
    if (!in.Ok() || !formatOk || e.riffSize < 4) {
        in.FailAt(20, "not 8, 16 or 32-bit PCM of 1 to 8 channels");
        return EWavRead::BadHeader;
    }
    if (e.riffSize > kWavMaxBufferBytes) {
        in.FailAt(4, "claims %u bytes of samples, more than the %u a sound may hold", e.riffSize, kWavMaxBufferBytes);
        return EWavRead::TooLarge;
    }
    if (e.riffSize < kWavUnfilledTail) return EWavRead::TooShort;
    // R bytes of silence, of which the first R - 800 come from the file.
    e.buffer.assign(e.riffSize, f.bits == 8 ? 0x80 : 0);
    if (in.Size() >= kWavHeaderBytes) {
        in.Seek(kWavHeaderBytes);
        const size_t fill = e.riffSize - kWavUnfilledTail;
        const size_t n = in.Remaining() < fill ? in.Remaining() : fill;
        in.ReadBytes(e.buffer.data(), n, "samples");
    }
    out = std::move(e);
    return EWavRead::Ok;
}
