// BMP decoding into 5-6-5 pixels.
#include "resources/bmp.h"

#include <cstring>

#include "base/byte_reader.h"

namespace {

constexpr uint32_t BI_RGB = 0, BI_RLE8 = 1, BI_RLE4 = 2, BI_BITFIELDS = 3, BI_ALPHABITFIELDS = 6;
constexpr int32_t kMaxSide = 65535;

uint16_t Le16(const uint8_t* p) { return uint16_t(p[0] | p[1] << 8); }
uint32_t Le32(const uint8_t* p) { return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24; }

inline uint16_t Pack565(uint32_t r, uint32_t g, uint32_t b) { return uint16_t((r >> 3) << 11 | (g >> 2) << 5 | (b >> 3)); }

// One colour channel of a bit-field pixel, widened to 8 bits so that a full
// channel becomes 255.
struct SChannel {
    uint32_t mask = 0;
    int shift = 0;
    int bits = 0;
    uint8_t lut[256] = {};

    void Init(uint32_t m) {
        mask = m;
        if (m == 0) return;
        shift = __builtin_ctz(m);
        bits = 32 - __builtin_clz(m >> shift);
        if (bits <= 8) {
            const uint32_t maxv = (1u << bits) - 1;
            for (uint32_t v = 0; v <= maxv; ++v) lut[v] = uint8_t(v * 255 / maxv);
        }
    }
    uint32_t Get(uint32_t pixel) const {
        if (mask == 0) return 0;
        uint32_t v = (pixel & mask) >> shift;
        return bits <= 8 ? lut[v] : (v >> (bits - 8)) & 255;
    }
};

struct SLayout {
    SBmpInfo info;
    uint32_t paletteOffset = 0;
    uint32_t paletteCount = 0;
    uint32_t paletteEntry = 4;  // 3 for core headers
    uint32_t masks[3] = {0, 0, 0};
};

bool ParseLayout(const uint8_t* d, size_t size, SLayout* L) {
    if (!d || size < 14 + 12) return false;
    CByteReader in(d, size);
    if (!in.Expect("BM", 2, "signature")) return false;
    SBmpInfo& I = L->info;
    in.Seek(10);
    I.pixelOffset = in.ReadU32("pixel offset");
    I.headerSize = in.ReadU32("header size");
    const uint32_t hs = I.headerSize;
    int64_t height;
    uint32_t clrUsed = 0;
    if (hs == 12) {
        I.width = in.ReadU16("width");
        height = in.ReadU16("height");
        in.Skip(2, "planes");
        I.bitCount = in.ReadU16("bit count");
        I.compression = BI_RGB;
        L->paletteEntry = 3;
    } else if (hs == 40 || hs == 52 || hs == 56 || hs == 64 || hs == 108 || hs == 124) {
        if (size < 14 + size_t(hs)) return false;
        I.width = in.ReadI32("width");
        height = in.ReadI32("height");
        in.Skip(2, "planes");
        I.bitCount = in.ReadU16("bit count");
        I.compression = in.ReadU32("compression");
        in.Seek(46);
        clrUsed = in.ReadU32("colours used");
    } else {
        return false;
    }
    if (!in.Ok() || size < 14 + size_t(hs)) return false;
    if (I.width <= 0 || I.width > kMaxSide || height == 0 || height < -kMaxSide || height > kMaxSide) return false;
    I.topDown = height < 0;
    I.height = int32_t(height < 0 ? -height : height);

    const uint16_t bpp = I.bitCount;
    const uint32_t c = I.compression;
    uint64_t afterHeader = 14 + uint64_t(hs);
    switch (c) {
    case BI_RGB:
        if (bpp != 1 && bpp != 4 && bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32) return false;
        if (hs == 12 && bpp != 1 && bpp != 4 && bpp != 8 && bpp != 24) return false;
        if (bpp == 16) {
            L->masks[0] = 0x7C00, L->masks[1] = 0x03E0, L->masks[2] = 0x001F;
        } else if (bpp == 32) {
            L->masks[0] = 0xFF0000, L->masks[1] = 0xFF00, L->masks[2] = 0xFF;
        }
        break;
    case BI_RLE8:
    case BI_RLE4:
        if ((c == BI_RLE8 && bpp != 8) || (c == BI_RLE4 && bpp != 4) || I.topDown) return false;
        break;
    case BI_BITFIELDS:
    case BI_ALPHABITFIELDS: {
        if (bpp != 16 && bpp != 32) return false;
        // A plain info header is followed by the masks; later headers hold them.
        in.Seek(14 + 40);
        L->masks[0] = in.ReadU32("red mask");
        L->masks[1] = in.ReadU32("green mask");
        L->masks[2] = in.ReadU32("blue mask");
        if (!in.Ok()) return false;
        if (hs == 40) afterHeader += c == BI_BITFIELDS ? 12 : 16;
        break;
    }
    default:
        return false;
    }
    if (bpp <= 8) {
        const uint32_t maxCount = 1u << bpp;
        L->paletteCount = (clrUsed == 0 || clrUsed > maxCount) ? maxCount : clrUsed;
        L->paletteOffset = uint32_t(afterHeader);
        const uint64_t palEnd = afterHeader + uint64_t(L->paletteCount) * L->paletteEntry;
        if (palEnd > size) {
            // A palette cut short: keep the entries that are there.
            L->paletteCount = afterHeader >= size ? 0 : uint32_t((size - afterHeader) / L->paletteEntry);
            if (L->paletteCount == 0) return false;
        }
        if (I.pixelOffset == 0) I.pixelOffset = uint32_t(afterHeader + uint64_t(L->paletteCount) * L->paletteEntry);
    } else if (I.pixelOffset == 0) {
        I.pixelOffset = uint32_t(afterHeader);
    }
    if (I.pixelOffset >= size) return false;
    if (c == BI_RGB || c == BI_BITFIELDS || c == BI_ALPHABITFIELDS) {
        const uint64_t stride = ((uint64_t(I.width) * bpp + 31) / 32) * 4;
        const uint64_t lastRow = (uint64_t(I.width) * bpp + 7) / 8;
        if (uint64_t(I.pixelOffset) + stride * uint64_t(I.height - 1) + lastRow > size) return false;
    }
    return true;
}

void BuildPalette(const uint8_t* d, const SLayout& L, uint16_t* pal) {
    for (uint32_t i = 0; i < 256; ++i) pal[i] = 0;
    for (uint32_t i = 0; i < L.paletteCount; ++i) {
        const uint8_t* e = d + L.paletteOffset + i * L.paletteEntry;
        pal[i] = Pack565(e[2], e[1], e[0]);
    }
}

// Uncompressed rows, clipped to the target.
void DrawRows(const uint8_t* d, const SLayout& L, uint16_t* dst, int32_t dstW, int32_t dstH, int32_t pitch,
              int32_t x, int32_t y) {
    const SBmpInfo& I = L.info;
    const int32_t x0 = x < 0 ? -x : 0;
    const int32_t x1 = int64_t(x) + I.width > dstW ? dstW - x : I.width;
    if (x0 >= x1) return;
    const size_t stride = ((size_t(I.width) * I.bitCount + 31) / 32) * 4;
    uint16_t pal[256];
    if (I.bitCount <= 8) BuildPalette(d, L, pal);
    SChannel ch[3];
    if (I.bitCount == 16 || I.bitCount == 32)
        for (int k = 0; k < 3; ++k) ch[k].Init(L.masks[k]);
    const bool plain565 = I.bitCount == 16 && L.masks[0] == 0xF800 && L.masks[1] == 0x07E0 && L.masks[2] == 0x001F;

    for (int32_t r = 0; r < I.height; ++r) {
        const int64_t ty = int64_t(y) + r;
        if (ty < 0) continue;
        if (ty >= dstH) break;
        const int32_t fileRow = I.topDown ? r : I.height - 1 - r;
        const uint8_t* row = d + I.pixelOffset + size_t(fileRow) * stride;
        // out[i] is column x + i; i runs over the visible columns only.
        uint16_t* rowOut = dst + size_t(ty) * size_t(pitch);
        auto out = [rowOut, x](int32_t i) -> uint16_t& { return rowOut[x + i]; };
        switch (I.bitCount) {
        case 1:
            for (int32_t i = x0; i < x1; ++i) out(i) = pal[(row[i >> 3] >> (7 - (i & 7))) & 1];
            break;
        case 4:
            for (int32_t i = x0; i < x1; ++i) out(i) = pal[(row[i >> 1] >> ((i & 1) ? 0 : 4)) & 15];
            break;
        case 8:
            for (int32_t i = x0; i < x1; ++i) out(i) = pal[row[i]];
            break;
        case 16:
            if (plain565) {
                for (int32_t i = x0; i < x1; ++i) out(i) = Le16(row + 2 * i);
            } else {
                for (int32_t i = x0; i < x1; ++i) {
                    const uint32_t p = Le16(row + 2 * i);
                    out(i) = Pack565(ch[0].Get(p), ch[1].Get(p), ch[2].Get(p));
                }
            }
            break;
        case 24:
            for (int32_t i = x0; i < x1; ++i) {
                const uint8_t* p = row + 3 * size_t(i);
                out(i) = Pack565(p[2], p[1], p[0]);
            }
            break;
        case 32:
            for (int32_t i = x0; i < x1; ++i) {
                const uint32_t p = Le32(row + 4 * size_t(i));
                out(i) = Pack565(ch[0].Get(p), ch[1].Get(p), ch[2].Get(p));
            }
            break;
        }
    }
}

// RLE4 and RLE8: runs and absolute groups per bottom-up row, with end-of-line,
// end-of-picture and delta escapes. Skipped pixels keep the target's value.
bool DrawRle(const uint8_t* d, size_t size, const SLayout& L, uint16_t* dst, int32_t dstW, int32_t dstH,
             int32_t pitch, int32_t x, int32_t y) {
    const SBmpInfo& I = L.info;
    const bool four = I.compression == BI_RLE4;
    uint16_t pal[256];
    BuildPalette(d, L, pal);
    CByteReader in(d, size);
    in.Seek(I.pixelOffset);
    int64_t col = 0, row = 0;  // row counted from the bottom
    auto put = [&](uint32_t index) {
        if (col >= 0 && col < I.width && row < I.height) {
            const int64_t tx = x + col, ty = int64_t(y) + (I.height - 1 - row);
            if (tx >= 0 && tx < dstW && ty >= 0 && ty < dstH) dst[size_t(ty) * size_t(pitch) + size_t(tx)] = pal[index];
        }
        ++col;
    };
    while (row < I.height) {
        if (in.Remaining() < 2) return in.AtEnd();  // a stream may end without its end mark
        const uint8_t count = in.ReadU8(), value = in.ReadU8();
        if (count > 0) {
            for (uint32_t k = 0; k < count && col < I.width; ++k)
                put(four ? ((k & 1) ? value & 15 : value >> 4) : value);
            continue;
        }
        if (value == 0) {  // end of line
            col = 0;
            ++row;
        } else if (value == 1) {  // end of picture
            return true;
        } else if (value == 2) {  // delta
            if (in.Remaining() < 2) return false;
            col += in.ReadU8();
            row += in.ReadU8();
        } else {  // absolute group of `value` pixels, padded to 16 bits
            const size_t bytes = four ? (size_t(value) + 1) / 2 : value;
            const uint8_t* group = in.ReadSpan(bytes, "absolute group");
            if (!group) return false;
            for (uint32_t k = 0; k < value; ++k) {
                const uint8_t b = group[four ? k / 2 : k];
                put(four ? ((k & 1) ? b & 15 : b >> 4) : b);
            }
            // The pad byte may be missing at the very end.
            if ((bytes & 1) && in.Remaining() > 0) in.Skip(1);
        }
    }
    return true;
}

}  // namespace

bool BmpParse(const uint8_t* data, size_t size, SBmpInfo* info) {
    SLayout L;
    if (!ParseLayout(data, size, &L)) return false;
    if (info) *info = L.info;
    return true;
}

bool BmpGetSize(const uint8_t* data, size_t size, int32_t* width, int32_t* height) {
    SLayout L;
    if (!ParseLayout(data, size, &L)) return false;
    if (width) *width = L.info.width;
    if (height) *height = L.info.height;
    return true;
}

bool BmpDecodeTo565(const uint8_t* data, size_t size, uint16_t* dst, int32_t dstW, int32_t dstH, int32_t pitch,
                    int32_t x, int32_t y) {
    SLayout L;
    if (!ParseLayout(data, size, &L) || !dst || dstW <= 0 || dstH <= 0 || pitch < dstW) return false;
    if (L.info.compression == BI_RLE8 || L.info.compression == BI_RLE4)
        return DrawRle(data, size, L, dst, dstW, dstH, pitch, x, y);
    DrawRows(data, L, dst, dstW, dstH, pitch, x, y);
    return true;
}

std::vector<uint8_t> BmpEncode24(const uint32_t* rgb, int32_t width, int32_t height) {
    const uint32_t stride = (uint32_t(width) * 3 + 3) & ~3u;
    const uint32_t imageSize = stride * uint32_t(height);
    std::vector<uint8_t> out(54 + imageSize, 0);
    auto put16 = [&](size_t at, uint16_t v) { out[at] = uint8_t(v), out[at + 1] = uint8_t(v >> 8); };
    auto put32 = [&](size_t at, uint32_t v) {
        for (int i = 0; i < 4; ++i) out[at + size_t(i)] = uint8_t(v >> (8 * i));
    };
    out[0] = 'B', out[1] = 'M';
    put32(2, uint32_t(out.size()));
    put32(10, 54);
    put32(14, 40);
    put32(18, uint32_t(width));
    put32(22, uint32_t(height));
    put16(26, 1);
    put16(28, 24);
    put32(34, imageSize);
    put32(38, 2835);
    put32(42, 2835);
    for (int32_t r = 0; r < height; ++r) {
        uint8_t* row = out.data() + 54 + size_t(height - 1 - r) * stride;
        for (int32_t c = 0; c < width; ++c) {
            const uint32_t p = rgb[size_t(r) * size_t(width) + size_t(c)];
            row[3 * c] = uint8_t(p), row[3 * c + 1] = uint8_t(p >> 8), row[3 * c + 2] = uint8_t(p >> 16);
        }
    }
    return out;
}
