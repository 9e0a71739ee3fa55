// BMP decoder on arbitrary files, drawn at an offset into a small target so
// that clipping on every edge is exercised.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "resources/bmp.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const int32_t x = int8_t(data[0]), y = int8_t(data[1]);
    static std::vector<uint16_t> target(96 * 64);
    int32_t w = 0, h = 0;
    BmpGetSize(data + 2, size - 2, &w, &h);
    BmpDecodeTo565(data + 2, size - 2, target.data(), 80, 64, 96, x, y);
    return 0;
}
