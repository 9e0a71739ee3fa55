#include "text.h"

#include <cstdio>

namespace art {

bool TextInit() { return true; }
void TextQuit() {}

void DrawText(Img& im, const std::string& utf8, float cx, float cy, const TextStyle& st,
              bool centre) {
    Mask m = RenderText(utf8, st.size);
    if (m.w == 0) return;
    int pad = int(st.outlineWidth + st.shadow) + 2;
    int ox = centre ? int(std::lround(cx - m.w / 2.f)) : int(cx);
    int oy = centre ? int(std::lround(cy - m.h / 2.f)) : int(cy);
    // Outline: coverage dilated by the outline width.
    int r = int(std::ceil(st.outlineWidth));
    auto dil = [&](int x, int y) {
        float best = m.At(x, y);
        for (int dy = -r; dy <= r; ++dy)
            for (int dx = -r; dx <= r; ++dx) {
                float dd = std::sqrt(float(dx * dx + dy * dy));
                if (dd > st.outlineWidth + 0.5f) continue;
                float k = Clamp01(st.outlineWidth + 0.5f - dd);
                best = std::max(best, m.At(x + dx, y + dy) * k);
            }
        return best;
    };
    int sh = int(std::lround(st.shadow));
    float top = float(pad), bot = float(m.h - pad);
    for (int y = -pad; y < m.h + pad; ++y)
        for (int x = -pad; x < m.w + pad; ++x) {
            int px = ox + x, py = oy + y;
            if (!im.In(px, py)) continue;
            if (sh > 0) {
                float s = dil(x - sh, y - sh);
                if (s > 0) im.Blend(px, py, Hex(0x000000), s * 0.55f);
            }
            if (st.outlineWidth > 0) {
                float o = dil(x, y);
                if (o > 0) im.Blend(px, py, st.outline, o);
            }
            float a = m.At(x, y);
            if (a <= 0) continue;
            float t = Clamp01((y - top * 0.2f) / std::max(1.f, bot));
            Col c = Mix(st.top, st.bottom, t);
            float lit = m.At(x - 1, y - 1) - m.At(x + 1, y + 1);
            if (st.engraved) lit = -lit;
            c = Shade(c, 1.f - lit * st.bevel);
            im.Blend(px, py, c, a);
        }
}

void GlowText(Img& im, const std::string& utf8, float cx, float cy, int size, Col c,
              int radius, float strength) {
    Mask m = RenderText(utf8, size);
    if (m.w == 0) return;
    int pad = radius * 2;
    int w = m.w + 2 * pad, h = m.h + 2 * pad;
    std::vector<float> a(size_t(w) * h, 0.f), t(a.size());
    for (int y = 0; y < m.h; ++y)
        for (int x = 0; x < m.w; ++x) a[size_t(y + pad) * w + x + pad] = m.At(x, y);
    // Three box blurs approximate a gaussian.
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < h; ++y) {
            float acc = 0;
            for (int x = -radius; x < w + radius; ++x) {
                if (x + radius < w) acc += a[size_t(y) * w + x + radius];
                if (x - radius - 1 >= 0) acc -= a[size_t(y) * w + x - radius - 1];
                if (x >= 0 && x < w) t[size_t(y) * w + x] = acc / (2 * radius + 1);
            }
        }
        for (int x = 0; x < w; ++x) {
            float acc = 0;
            for (int y = -radius; y < h + radius; ++y) {
                if (y + radius < h) acc += t[size_t(y + radius) * w + x];
                if (y - radius - 1 >= 0) acc -= t[size_t(y - radius - 1) * w + x];
                if (y >= 0 && y < h) a[size_t(y) * w + x] = acc / (2 * radius + 1);
            }
        }
    }
    int ox = int(std::lround(cx - m.w / 2.f)) - pad, oy = int(std::lround(cy - m.h / 2.f)) - pad;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            float k = a[size_t(y) * w + x] * strength;
            if (k <= 0 || !im.In(ox + x, oy + y) || im.A(ox + x, oy + y) <= 0) continue;
            Col b = im.Get(ox + x, oy + y);
            im.Set(ox + x, oy + y, b + c * k, im.A(ox + x, oy + y));
        }
}

}  // namespace art
