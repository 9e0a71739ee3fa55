// Painting surface for the art generator: premultiplied float RGBA pixels, shapes
// given as signed distance functions (negative inside) so every edge is anti-aliased
// against the shape's own colour, and a final conversion to 24-bit pixels in which
// anything less than half covered becomes the magenta key.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace art {

struct Col {
    float r = 0, g = 0, b = 0;
};
inline Col operator+(Col a, Col b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }
inline Col operator-(Col a, Col b) { return {a.r - b.r, a.g - b.g, a.b - b.b}; }
inline Col operator*(Col a, float s) { return {a.r * s, a.g * s, a.b * s}; }
inline Col operator*(Col a, Col b) { return {a.r * b.r, a.g * b.g, a.b * b.b}; }
inline Col Mix(Col a, Col b, float t) { return a + (b - a) * t; }
inline Col Hex(uint32_t v) {
    return {((v >> 16) & 255) / 255.f, ((v >> 8) & 255) / 255.f, (v & 255) / 255.f};
}
// Lighter or darker by a factor that keeps hue: s > 1 lightens towards white.
inline Col Shade(Col c, float s) {
    if (s <= 1) return c * s;
    return Mix(c, Col{1, 1, 1}, std::min(1.f, s - 1));
}
inline float Clamp01(float v) { return v < 0 ? 0 : (v > 1 ? 1 : v); }
inline float Smooth(float e0, float e1, float x) {
    float t = Clamp01((x - e0) / (e1 - e0));
    return t * t * (3 - 2 * t);
}

class Img {
public:
    Img() = default;
    Img(int w, int h) : w(w), h(h), px(size_t(w) * h * 4, 0.f) {}
    int w = 0, h = 0;
    std::vector<float> px;  // r, g, b premultiplied, then alpha

    bool In(int x, int y) const { return x >= 0 && y >= 0 && x < w && y < h; }
    float A(int x, int y) const { return px[(size_t(y) * w + x) * 4 + 3]; }
    Col Get(int x, int y) const {
        const float* p = &px[(size_t(y) * w + x) * 4];
        if (p[3] <= 0) return {};
        return {p[0] / p[3], p[1] / p[3], p[2] / p[3]};
    }
    void Set(int x, int y, Col c, float a = 1) {
        float* p = &px[(size_t(y) * w + x) * 4];
        p[0] = c.r * a; p[1] = c.g * a; p[2] = c.b * a; p[3] = a;
    }
    // Source-over with coverage a.
    void Blend(int x, int y, Col c, float a) {
        if (a <= 0 || !In(x, y)) return;
        if (a > 1) a = 1;
        float* p = &px[(size_t(y) * w + x) * 4];
        float k = 1 - a;
        p[0] = c.r * a + p[0] * k; p[1] = c.g * a + p[1] * k;
        p[2] = c.b * a + p[2] * k; p[3] = a + p[3] * k;
    }
    // Changes colour only where something is already painted (keeps coverage).
    void Tint(int x, int y, Col c, float t) {
        if (!In(x, y) || A(x, y) <= 0 || t <= 0) return;
        float a = A(x, y);
        Set(x, y, Mix(Get(x, y), c, Clamp01(t)), a);
    }
    void Fill(Col c, float a = 1) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) Set(x, y, c, a);
    }
    // Copies src over this image at (dx, dy) with source-over.
    void Draw(const Img& src, int dx, int dy, float alpha = 1.f);
    Img Crop(int x, int y, int cw, int ch) const;
};

// Paints the shape d(x, y) < 0 over the box [x0, x1) x [y0, y1), coloured by
// shade(x, y, d); coverage comes from the distance at the pixel centre.
template <class D, class S>
void Paint(Img& im, float x0, float y0, float x1, float y1, D d, S shade, float alpha = 1.f) {
    int ix0 = std::max(0, int(std::floor(x0))), iy0 = std::max(0, int(std::floor(y0)));
    int ix1 = std::min(im.w, int(std::ceil(x1))), iy1 = std::min(im.h, int(std::ceil(y1)));
    for (int y = iy0; y < iy1; ++y)
        for (int x = ix0; x < ix1; ++x) {
            float fx = x + 0.5f, fy = y + 0.5f;
            float dist = d(fx, fy);
            float cov = Clamp01(0.5f - dist);
            if (cov <= 0) continue;
            im.Blend(x, y, shade(fx, fy, dist), cov * alpha);
        }
}

// Distance helpers.
inline float SdCircle(float x, float y, float cx, float cy, float r) {
    return std::hypot(x - cx, y - cy) - r;
}
inline float SdEllipse(float x, float y, float cx, float cy, float rx, float ry) {
    float nx = (x - cx) / rx, ny = (y - cy) / ry;
    float k = std::sqrt(nx * nx + ny * ny);
    return (k - 1) * std::min(rx, ry);
}
inline float SdBox(float x, float y, float cx, float cy, float hx, float hy, float r = 0) {
    float qx = std::fabs(x - cx) - hx + r, qy = std::fabs(y - cy) - hy + r;
    float ox = std::max(qx, 0.f), oy = std::max(qy, 0.f);
    return std::hypot(ox, oy) + std::min(std::max(qx, qy), 0.f) - r;
}
inline float SdSegment(float x, float y, float ax, float ay, float bx, float by, float r) {
    float pax = x - ax, pay = y - ay, bax = bx - ax, bay = by - ay;
    float l = bax * bax + bay * bay;
    float t = l > 0 ? Clamp01((pax * bax + pay * bay) / l) : 0;
    return std::hypot(pax - bax * t, pay - bay * t) - r;
}
// Exact distance to a closed polygon.
float SdPoly(float x, float y, const std::vector<float>& xy);

// Final pixels: 24-bit RGB rows top-down; uncovered -> magenta; colours close to
// the key are pushed away from it so only transparent pixels carry it.
std::vector<uint8_t> ToRgb8(const Img& im);
bool NearKey(uint8_t r, uint8_t g, uint8_t b);

std::vector<uint8_t> EncodeBmp(int w, int h, const std::vector<uint8_t>& rgb);
// Both writers leave a file alone when it already holds exactly these bytes.
bool WritePng(const std::string& path, int w, int h, const std::vector<uint8_t>& rgb,
              bool keyTransparent);
bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes);
void MakeDirs(const std::string& path);

}  // namespace art
