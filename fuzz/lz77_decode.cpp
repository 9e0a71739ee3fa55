// LZ77 block decoder on arbitrary streams; the first two bytes choose the
// output length. Whatever decodes must also survive a compress round trip.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "resources/lz77.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const int32_t outLen = int32_t(data[0] | data[1] << 8) + 1;
    static CCompressLZ77 codec;
    std::vector<uint8_t> out(static_cast<size_t>(outLen));
    if (codec.DecompressBounded(out.data(), outLen, data + 2, size - 2) != 1) return 0;
    std::vector<uint8_t> z(out.size() + 8, 0);
    const int32_t n = codec.Compress(out.data(), outLen, z.data());
    if (n > 0) {
        std::vector<uint8_t> back(out.size());
        if (codec.DecompressBounded(back.data(), outLen, z.data(), size_t(n)) != 1 || back != out) __builtin_trap();
    }
    return 0;
}
