#include "bmp.h"

#include <cstdio>
#include <vector>

namespace rolegen {

namespace {
void Put(std::vector<uint8_t>& b, size_t at, uint32_t v, int n) {
    for (int i = 0; i < n; ++i) b[at + i] = static_cast<uint8_t>(v >> (8 * i));
}
uint32_t Get(const std::vector<uint8_t>& b, size_t at, int n) {
    uint32_t v = 0;
    for (int i = 0; i < n; ++i) v |= static_cast<uint32_t>(b[at + i]) << (8 * i);
    return v;
}
}  // namespace

bool WriteBmp24(const std::string& path, const Image& img) {
    const size_t stride = (static_cast<size_t>(img.w) * 3 + 3) & ~size_t{3};
    const size_t size = 54 + stride * img.h;
    std::vector<uint8_t> b(size, 0);
    b[0] = 'B';
    b[1] = 'M';
    Put(b, 2, static_cast<uint32_t>(size), 4);
    Put(b, 10, 54, 4);
    Put(b, 14, 40, 4);
    Put(b, 18, static_cast<uint32_t>(img.w), 4);
    Put(b, 22, static_cast<uint32_t>(img.h), 4);
    Put(b, 26, 1, 2);
    Put(b, 28, 24, 2);
    Put(b, 34, static_cast<uint32_t>(stride * img.h), 4);
    Put(b, 38, 2835, 4);
    Put(b, 42, 2835, 4);
    for (int y = 0; y < img.h; ++y) {
        uint8_t* row = &b[54 + stride * static_cast<size_t>(img.h - 1 - y)];
        for (int x = 0; x < img.w; ++x) {
            const uint8_t* p = img.At(x, y);
            if (p[3]) {
                row[x * 3 + 0] = p[2];
                row[x * 3 + 1] = p[1];
                row[x * 3 + 2] = p[0];
            } else {
                row[x * 3 + 0] = 255;
                row[x * 3 + 1] = 0;
                row[x * 3 + 2] = 255;
            }
        }
    }
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    bool ok = std::fwrite(b.data(), 1, b.size(), f) == b.size();
    return std::fclose(f) == 0 && ok;
}

bool ReadBmp24(const std::string& path, Image& img) {
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    std::vector<uint8_t> b;
    uint8_t buf[65536];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) b.insert(b.end(), buf, buf + n);
    std::fclose(f);
    if (b.size() < 54 || b[0] != 'B' || b[1] != 'M' || Get(b, 28, 2) != 24 || Get(b, 30, 4) != 0) return false;
    int32_t w = static_cast<int32_t>(Get(b, 18, 4)), h = static_cast<int32_t>(Get(b, 22, 4));
    uint32_t off = Get(b, 10, 4);
    if (w <= 0 || h <= 0 || w > 8192 || h > 8192) return false;
    const size_t stride = (static_cast<size_t>(w) * 3 + 3) & ~size_t{3};
    if (off > b.size() || b.size() - off < stride * static_cast<size_t>(h)) return false;
    img.Reset(w, h);
    for (int y = 0; y < h; ++y) {
        const uint8_t* row = &b[off + stride * static_cast<size_t>(h - 1 - y)];
        for (int x = 0; x < w; ++x) {
            uint8_t* p = img.At(x, y);
            p[0] = row[x * 3 + 2];
            p[1] = row[x * 3 + 1];
            p[2] = row[x * 3 + 0];
            p[3] = (p[0] == 255 && p[1] == 0 && p[2] == 255) ? 0 : 255;
        }
    }
    return true;
}

}  // namespace rolegen
