#include "media/cursor_ani.h"

#include <cstring>

namespace {

uint32_t U32(const uint8_t* p) { return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24; }
uint16_t U16(const uint8_t* p) { return uint16_t(p[0] | p[1] << 8); }
int32_t I32(const uint8_t* p) { return int32_t(U32(p)); }

}  // namespace

uint32_t SAniCursor::TotalJiffies() const {
    uint32_t t = 0;
    for (uint32_t j : jiffies) t += j;
    return t;
}

uint32_t SAniCursor::ImageAt(uint32_t ms) const {
    if (sequence.empty()) return 0;
    uint32_t total = TotalJiffies();
    if (total == 0) return sequence[0];
    uint32_t j = (ms * 60 / 1000) % total;
    for (size_t i = 0; i < sequence.size(); ++i) {
        if (j < jiffies[i]) return sequence[i];
        j -= jiffies[i];
    }
    return sequence.back();
}

bool ParseCursorImage(const uint8_t* data, size_t size, SCursorImage& out, std::string& error) {
    if (size < 6 + 16) return error = "image too short", false;
    uint16_t type = U16(data + 2), count = U16(data + 4);
    if (U16(data) != 0 || (type != 1 && type != 2) || count < 1) return error = "not an icon or cursor", false;
    const uint8_t* e = data + 6;
    uint32_t bytes = U32(e + 8), offset = U32(e + 12);
    if (offset > size || bytes > size - offset || bytes < 40) return error = "image entry outside the data", false;
    const uint8_t* bmp = data + offset;
    uint32_t headerSize = U32(bmp);
    int32_t w = I32(bmp + 4), h2 = I32(bmp + 8);
    uint16_t bits = U16(bmp + 14);
    uint32_t compression = U32(bmp + 16), colours = U32(bmp + 32);
    if (headerSize < 40 || headerSize > bytes || w <= 0 || w > 256 || h2 <= 0 || h2 > 512 || (h2 & 1))
        return error = "bad image header", false;
    if (compression != 0) return error = "compressed cursor images are not supported", false;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return error = "bad bit depth", false;
    int32_t h = h2 / 2;
    size_t paletteCount = bits <= 8 ? (colours ? colours : (1u << bits)) : 0;
    if (paletteCount > 256) return error = "bad palette", false;
    size_t xorStride = ((size_t(w) * bits + 31) / 32) * 4;
    size_t andStride = ((size_t(w) + 31) / 32) * 4;
    size_t need = headerSize + paletteCount * 4 + xorStride * size_t(h) + andStride * size_t(h);
    if (need > bytes) {
        // 32-bit images may leave the AND mask out.
        if (!(bits == 32 && need - andStride * size_t(h) <= bytes)) return error = "image data truncated", false;
    }
    const uint8_t* palette = bmp + headerSize;
    const uint8_t* xorBits = palette + paletteCount * 4;
    const uint8_t* andBits = xorBits + xorStride * size_t(h);
    bool haveAnd = need <= bytes;
    out.width = w;
    out.height = h;
    out.hotX = type == 2 ? U16(e + 4) : w / 2;
    out.hotY = type == 2 ? U16(e + 6) : h / 2;
    out.argb.assign(size_t(w) * size_t(h), 0);
    bool anyAlpha = false;
    for (int32_t y = 0; y < h; ++y) {
        const uint8_t* row = xorBits + xorStride * size_t(h - 1 - y);  // rows are stored bottom-up
        const uint8_t* mask = andBits + andStride * size_t(h - 1 - y);
        for (int32_t x = 0; x < w; ++x) {
            uint32_t b = 0, g = 0, r = 0, a = 255;
            if (bits == 32) {
                b = row[x * 4];
                g = row[x * 4 + 1];
                r = row[x * 4 + 2];
                a = row[x * 4 + 3];
                anyAlpha = anyAlpha || a != 0;
            } else if (bits == 24) {
                b = row[x * 3];
                g = row[x * 3 + 1];
                r = row[x * 3 + 2];
            } else {
                size_t bit = size_t(x) * bits;
                uint32_t idx = (row[bit / 8] >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
                if (idx >= paletteCount) idx = 0;
                b = palette[idx * 4];
                g = palette[idx * 4 + 1];
                r = palette[idx * 4 + 2];
            }
            if (bits != 32 && haveAnd && ((mask[x / 8] >> (7 - x % 8)) & 1)) a = 0;
            out.argb[size_t(y) * size_t(w) + size_t(x)] = a << 24 | r << 16 | g << 8 | b;
        }
    }
    // A 32-bit image with an all-zero alpha channel uses its AND mask instead.
    if (bits == 32 && !anyAlpha && haveAnd) {
        for (int32_t y = 0; y < h; ++y) {
            const uint8_t* mask = andBits + andStride * size_t(h - 1 - y);
            for (int32_t x = 0; x < w; ++x) {
                uint32_t& p = out.argb[size_t(y) * size_t(w) + size_t(x)];
                if (!((mask[x / 8] >> (7 - x % 8)) & 1)) p |= 0xFF000000u;
            }
        }
    }
    return true;
}

bool ParseAniCursor(const uint8_t* data, size_t size, SAniCursor& out, std::string& error) {
    out = SAniCursor{};
    if (size < 12 || memcmp(data, "RIFF", 4) != 0 || memcmp(data + 8, "ACON", 4) != 0)
        return error = "not a RIFF ACON file", false;
    size_t end = size_t(U32(data + 4)) + 8;
    if (end > size) end = size;
    uint32_t steps = 0, frames = 0, rate = 0;
    bool haveHeader = false;
    std::vector<uint32_t> rates, seq;
    size_t p = 12;
    while (p + 8 <= end) {
        const uint8_t* id = data + p;
        uint32_t len = U32(data + p + 4);
        if (len > end - p - 8) return error = "chunk runs past the end of the file", false;
        const uint8_t* body = data + p + 8;
        if (memcmp(id, "anih", 4) == 0) {
            if (len < 36) return error = "short anih chunk", false;
            frames = U32(body + 4);
            steps = U32(body + 8);
            rate = U32(body + 28);
            haveHeader = true;
            if (frames == 0 || frames > 1024 || steps == 0 || steps > 4096) return error = "bad frame counts", false;
        } else if (memcmp(id, "rate", 4) == 0 || memcmp(id, "seq ", 4) == 0) {
            std::vector<uint32_t>& v = id[0] == 'r' ? rates : seq;
            for (uint32_t i = 0; i + 4 <= len; i += 4) v.push_back(U32(body + i));
        } else if (memcmp(id, "LIST", 4) == 0 && len >= 4 && memcmp(body, "fram", 4) == 0) {
            size_t q = 4;
            while (q + 8 <= len) {
                uint32_t ilen = U32(body + q + 4);
                if (ilen > len - q - 8) return error = "frame runs past its list", false;
                if (memcmp(body + q, "icon", 4) == 0) {
                    SCursorImage img;
                    if (!ParseCursorImage(body + q + 8, ilen, img, error)) return false;
                    out.images.push_back(std::move(img));
                }
                q += 8 + ilen + (ilen & 1);
            }
        }
        p += 8 + len + (len & 1);
    }
    if (!haveHeader) return error = "no anih chunk", false;
    if (out.images.size() != frames) return error = "frame count does not match the frames found", false;
    for (uint32_t i = 0; i < steps; ++i) {
        uint32_t img = i < seq.size() ? seq[i] : (seq.empty() ? i % frames : 0);
        if (img >= frames) return error = "sequence names a missing frame", false;
        out.sequence.push_back(img);
        uint32_t j = i < rates.size() ? rates[i] : rate;
        out.jiffies.push_back(j ? j : 1);
    }
    return true;
}
