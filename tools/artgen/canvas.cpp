#include "canvas.h"

#include "resources/png_file.h"

#include <sys/stat.h>

#include <cstdio>

namespace art {

void Img::Draw(const Img& src, int dx, int dy, float alpha) {
    for (int y = 0; y < src.h; ++y)
        for (int x = 0; x < src.w; ++x) {
            float a = src.A(x, y);
            if (a > 0) Blend(dx + x, dy + y, src.Get(x, y), a * alpha);
        }
}

Img Img::Crop(int x0, int y0, int cw, int ch) const {
    Img out(cw, ch);
    for (int y = 0; y < ch; ++y)
        for (int x = 0; x < cw; ++x)
            if (In(x0 + x, y0 + y)) out.Set(x, y, Get(x0 + x, y0 + y), A(x0 + x, y0 + y));
    return out;
}

float SdPoly(float x, float y, const std::vector<float>& v) {
    size_t n = v.size() / 2;
    float d = 1e30f, s = 1;
    for (size_t i = 0, j = n - 1; i < n; j = i, ++i) {
        float ex = v[2 * j] - v[2 * i], ey = v[2 * j + 1] - v[2 * i + 1];
        float wx = x - v[2 * i], wy = y - v[2 * i + 1];
        float t = Clamp01((wx * ex + wy * ey) / (ex * ex + ey * ey));
        float bx = wx - ex * t, by = wy - ey * t;
        d = std::min(d, bx * bx + by * by);
        bool c1 = y >= v[2 * i + 1], c2 = y < v[2 * j + 1], c3 = ex * wy > ey * wx;
        if ((c1 && c2 && c3) || (!c1 && !c2 && !c3)) s = -s;
    }
    return s * std::sqrt(d);
}

bool NearKey(uint8_t r, uint8_t g, uint8_t b) {
    return r >= 200 && b >= 200 && g <= 60;
}

std::vector<uint8_t> ToRgb8(const Img& im) {
    std::vector<uint8_t> out(size_t(im.w) * im.h * 3);
    for (int y = 0; y < im.h; ++y)
        for (int x = 0; x < im.w; ++x) {
            uint8_t* o = &out[(size_t(y) * im.w + x) * 3];
            if (im.A(x, y) < 0.5f) {
                o[0] = 255; o[1] = 0; o[2] = 255;
                continue;
            }
            Col c = im.Get(x, y);
            auto q = [](float v) { return uint8_t(std::lround(Clamp01(v) * 255.f)); };
            o[0] = q(c.r); o[1] = q(c.g); o[2] = q(c.b);
            if (NearKey(o[0], o[1], o[2])) o[1] = 72;
        }
    return out;
}

static void Put16(std::vector<uint8_t>& b, uint32_t v) {
    b.push_back(uint8_t(v)); b.push_back(uint8_t(v >> 8));
}
static void Put32(std::vector<uint8_t>& b, uint32_t v) {
    Put16(b, v & 0xFFFF); Put16(b, v >> 16);
}

std::vector<uint8_t> EncodeBmp(int w, int h, const std::vector<uint8_t>& rgb) {
    uint32_t stride = (uint32_t(w) * 3 + 3) & ~3u;
    uint32_t dataSize = stride * uint32_t(h);
    std::vector<uint8_t> b;
    b.reserve(54 + dataSize);
    b.push_back('B'); b.push_back('M');
    Put32(b, 54 + dataSize); Put32(b, 0); Put32(b, 54);
    Put32(b, 40); Put32(b, uint32_t(w)); Put32(b, uint32_t(h));
    Put16(b, 1); Put16(b, 24); Put32(b, 0); Put32(b, dataSize);
    Put32(b, 2835); Put32(b, 2835); Put32(b, 0); Put32(b, 0);
    for (int y = h - 1; y >= 0; --y) {
        const uint8_t* row = &rgb[size_t(y) * w * 3];
        for (int x = 0; x < w; ++x) {
            b.push_back(row[x * 3 + 2]); b.push_back(row[x * 3 + 1]); b.push_back(row[x * 3]);
        }
        for (uint32_t p = uint32_t(w) * 3; p < stride; ++p) b.push_back(0);
    }
    return b;
}

namespace {

std::vector<uint8_t> ReadAll(const std::string& path) {
    std::vector<uint8_t> bytes;
    if (FILE* f = std::fopen(path.c_str(), "rb")) {
        uint8_t buf[65536];
        size_t n;
        while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) bytes.insert(bytes.end(), buf, buf + n);
        std::fclose(f);
    }
    return bytes;
}

// Writes the PNG beside its target and keeps the old file when nothing changed, so
// rebuilding the art leaves the tileset previews in the source tree untouched.
bool WritePngIfChanged(const std::string& path, int w, int h, int channels, const uint8_t* pixels) {
    const std::string tmp = path + ".new";
    if (!WritePngFile(tmp.c_str(), w, h, channels, pixels)) {
        std::remove(tmp.c_str());
        return false;
    }
    struct stat st;
    if (::stat(path.c_str(), &st) == 0 && ReadAll(tmp) == ReadAll(path)) return std::remove(tmp.c_str()) == 0;
    return std::rename(tmp.c_str(), path.c_str()) == 0;
}

}  // namespace

bool WritePng(const std::string& path, int w, int h, const std::vector<uint8_t>& rgb,
              bool keyTransparent) {
    if (!keyTransparent) return WritePngIfChanged(path, w, h, 3, rgb.data());
    std::vector<uint8_t> rgba(size_t(w) * size_t(h) * 4);
    for (size_t i = 0; i < size_t(w) * size_t(h); ++i) {
        const uint8_t* s = &rgb[i * 3];
        uint8_t* d = &rgba[i * 4];
        d[0] = s[0];
        d[1] = s[1];
        d[2] = s[2];
        d[3] = (s[0] == 255 && s[1] == 0 && s[2] == 255) ? 0 : 255;
    }
    return WritePngIfChanged(path, w, h, 4, rgba.data());
}

bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes) {
    struct stat st;
    if (::stat(path.c_str(), &st) == 0 && size_t(st.st_size) == bytes.size() && ReadAll(path) == bytes) return true;
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    size_t n = bytes.empty() ? 0 : std::fwrite(bytes.data(), 1, bytes.size(), f);
    return std::fclose(f) == 0 && n == bytes.size();
}

void MakeDirs(const std::string& path) {
    for (size_t i = 1; i <= path.size(); ++i)
        if (i == path.size() || path[i] == '/') ::mkdir(path.substr(0, i).c_str(), 0755);
}

}  // namespace art
