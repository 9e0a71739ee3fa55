// Interface pictures: splash scenes, the title, menus and their buttons, dialog,
// save, pack and talk panels, tutorial pages, the HUD bar and the boss-key screen.
// Also writes manifest/hud.txt, packs.txt and ui.txt with the positions painted in.
#include <cstdio>
#include <functional>
#include <string>

#include "iso.h"

#include "noise.h"
#include "output.h"
#include "recipes.h"
#include "text.h"
#include "uikit.h"

namespace art {
namespace {


// ---------------------------------------------------------------- scenery

struct Stop {
    float t;
    Col c;
};
void Sky(Img& im, const std::vector<Stop>& stops, int y0, int y1) {
    for (int y = y0; y < y1; ++y) {
        float t = float(y - y0) / std::max(1, y1 - y0 - 1);
        Col c = stops.back().c;
        for (size_t i = 1; i < stops.size(); ++i)
            if (t <= stops[i].t) {
                c = Mix(stops[i - 1].c, stops[i].c, (t - stops[i - 1].t) / (stops[i].t - stops[i - 1].t));
                break;
            }
        for (int x = 0; x < im.w; ++x) im.Set(x, y, c);
    }
}

// Fills everything below a noisy ridge line; col(x, y, depth below ridge).
void Ridge(Img& im, float baseY, float amp, float freq, uint32_t seed,
           const std::function<Col(float, float, float)>& col) {
    for (int x = 0; x < im.w; ++x) {
        float ry = baseY - amp * (Fbm(x * freq, 0.5f, seed, 5) - 0.5f) * 2.f;
        for (int y = std::max(0, int(ry) - 1); y < im.h; ++y) {
            float cov = Clamp01(y + 1.f - ry);
            if (cov <= 0) continue;
            im.Blend(x, y, col(float(x), float(y), y - ry), cov);
        }
    }
}

void Stars(Img& im, int y1, uint32_t seed, int n) {
    Rng r(seed);
    for (int i = 0; i < n; ++i) {
        int x = r.I(0, im.w - 1), y = r.I(0, y1);
        float b = r.R(0.2f, 0.8f) * (1.f - float(y) / y1);
        im.Blend(x, y, Hex(0xE8E4D8), b);
    }
}

void Moon(Img& im, float cx, float cy, float r) {
    Paint(im, cx - r * 4, cy - r * 4, cx + r * 4, cy + r * 4,
          [&](float x, float y) { return SdCircle(x, y, cx, cy, r * 3.5f); },
          [&](float, float, float) { return Hex(0x9AA4B0); }, 0.f);
    for (int y = int(cy - r * 4); y < cy + r * 4; ++y)
        for (int x = int(cx - r * 4); x < cx + r * 4; ++x) {
            if (!im.In(x, y)) continue;
            float d = std::hypot(x - cx, y - cy);
            if (d > r) {
                Col b = im.Get(x, y);
                im.Set(x, y, b + Hex(0x3A4048) * (0.35f * std::exp(-(d - r) / (r * 0.9f))));
            }
        }
    Paint(im, cx - r - 1, cy - r - 1, cx + r + 1, cy + r + 1,
          [&](float x, float y) { return SdCircle(x, y, cx, cy, r); },
          [&](float x, float y, float) {
              float n = VNoise(x / 4.f, y / 4.f, 77);
              return Shade(Hex(0xDCD8C8), 0.9f + n * 0.12f - ((x - cx) + (y - cy)) / r * 0.06f);
          });
}

// Small pine silhouettes along a line.
void TreeLine(Img& im, float y0, float density, float hmin, float hmax, Col c, uint32_t seed) {
    Rng r(seed);
    for (float x = -10; x < im.w + 10; x += r.R(2.f, 8.f) / density) {
        float h = r.R(hmin, hmax), w = h * 0.32f;
        float by = y0 + r.R(-3, 3) + 16 * (Fbm(x * 0.01f, 0.3f, seed, 3) - 0.5f);
        std::vector<float> xy = {x, by - h, x + w, by, x - w, by};
        Paint(im, x - w - 1, by - h - 1, x + w + 1, by + 1,
              [&](float px, float py) { return SdPoly(px, py, xy); },
              [&](float, float, float) { return c; });
    }
}

void Mist(Img& im, float y0, float y1, Col c, float strength, uint32_t seed) {
    for (int y = int(y0); y < int(y1); ++y)
        for (int x = 0; x < im.w; ++x) {
            if (!im.In(x, y)) continue;
            float band = std::sin((y - y0) / (y1 - y0) * 3.1416f);
            float n = Fbm(x / 90.f, y / 18.f, seed, 4);
            float k = band * Smooth(0.35f, 0.8f, n) * strength;
            im.Set(x, y, Mix(im.Get(x, y), c, k));
        }
}

// Glowing flame tongues rising from (x, y).
void Fire(Img& im, float cx, float by, float w, float h, uint32_t seed) {
    for (int y = int(by - h * 1.3f); y < by + 2; ++y)
        for (int x = int(cx - w); x < cx + w; ++x) {
            if (!im.In(x, y)) continue;
            float t = (by - y) / h;                     // 0 at the base, 1 at the top
            float n = Fbm(x / 6.f, (y + seed) / 9.f, seed, 4);
            float shape = 1.f - std::fabs(x - cx) / w - t * 0.9f + (n - 0.5f) * 0.9f;
            if (shape <= 0) continue;
            float k = Clamp01(shape * 2.5f);
            Col c = Mix(Hex(0x8A2A10), Hex(0xF0B050), Clamp01(shape * 1.6f));
            c = Mix(c, Hex(0xFFF0C0), Smooth(0.55f, 0.9f, shape));
            im.Set(x, y, Mix(im.Get(x, y), c, k));
        }
}

void Glow(Img& im, float cx, float cy, float r, Col c, float strength) {
    for (int y = int(cy - r); y < cy + r; ++y)
        for (int x = int(cx - r); x < cx + r; ++x) {
            if (!im.In(x, y)) continue;
            float d = std::hypot(x - cx, y - cy) / r;
            if (d >= 1) continue;
            float k = (1 - d) * (1 - d) * strength;
            im.Set(x, y, im.Get(x, y) + c * k);
        }
}

void Embers(Img& im, float cx, float cy, float spread, int n, uint32_t seed) {
    Rng r(seed);
    for (int i = 0; i < n; ++i) {
        float x = cx + r.R(-spread, spread) + r.R(0, spread * 0.5f);
        float y = cy - r.R(0, spread * 1.4f);
        Col c = r.F() < 0.5f ? Hex(0xF0A040) : Hex(0xE06020);
        im.Blend(int(x), int(y), c, r.R(0.5f, 1.f));
        if (r.F() < 0.3f) im.Blend(int(x) + 1, int(y), c, 0.4f);
    }
}

void Smoke(Img& im, float cx, float by, float h, Col c, uint32_t seed) {
    for (int y = int(by - h); y < by; ++y)
        for (int x = 0; x < im.w; ++x) {
            float t = (by - y) / h;
            float off = t * t * 120.f;  // the wind bends the plume to the right
            float w = 14 + t * 70;
            float n = Fbm(x / 30.f, y / 20.f, seed, 4);
            float d = std::fabs(x - cx - off) / w;
            float k = Clamp01((1 - d) * 1.2f + (n - 0.5f) * 1.2f) * (1 - t) * 0.7f;
            if (k > 0 && im.In(x, y)) im.Set(x, y, Mix(im.Get(x, y), c, k));
        }
}

// The keep on its hill: towers with battlements and a few lit or burning windows.
void Keep(Img& im, float cx, float by, float s, Col c, Col window, bool ruined, uint32_t seed) {
    struct T { float dx, w, h; };
    std::vector<T> towers = {{-70, 26, 110}, {-30, 60, 80}, {22, 30, 140}, {60, 44, 70}, {92, 22, 95}};
    Rng r(seed);
    for (const T& t : towers) {
        float x0 = cx + t.dx * s, x1 = x0 + t.w * s, top = by - t.h * s;
        Paint(im, x0 - 1, top - 8 * s, x1 + 1, by + 1,
              [&](float x, float y) {
                  float d = SdBox(x, y, (x0 + x1) / 2, (top + by) / 2, (x1 - x0) / 2, (by - top) / 2);
                  // Battlements, broken on the ruined keep.
                  float m = std::fmod(x - x0, 8 * s);
                  float crest = (m < 4.5f * s) ? -6 * s : 0;
                  if (ruined) crest += 16 * s * (VNoise(x / 9.f, 0, seed + int(t.dx)) - 0.3f);
                  if (y < top) d = std::max(SdBox(x, y, (x0 + x1) / 2, top - 3 * s, (x1 - x0) / 2, 3 * s) ,
                                            top + crest - y);
                  return d;
              },
              [&](float, float, float) { return c; });
        for (int k = 0; k < 3; ++k) {
            float wx = x0 + r.R(0.2f, 0.7f) * (x1 - x0), wy = top + r.R(0.15f, 0.7f) * (by - top);
            if (r.F() < 0.5f) continue;
            Paint(im, wx - 2, wy - 4, wx + 3, wy + 5,
                  [&](float x, float y) { return SdBox(x, y, wx, wy, 1.2f * s, 3.f * s, 1.f); },
                  [&](float, float, float) { return window; });
        }
    }
}

void Rain(Img& im, uint32_t seed, int n, Col c, float strength) {
    Rng r(seed);
    for (int i = 0; i < n; ++i) {
        float x = r.R(-40, float(im.w)), y = r.R(-20, float(im.h)), len = r.R(8, 18);
        float k = r.R(0.15f, 1.f) * strength;
        for (int j = 0; j < int(len); ++j) {
            int px = int(x + j * 0.35f), py = int(y + j);
            if (im.In(px, py)) im.Set(px, py, Mix(im.Get(px, py), c, k * (0.4f + 0.6f * j / len)));
        }
    }
}

void Vignette(Img& im, float strength) {
    for (int y = 0; y < im.h; ++y)
        for (int x = 0; x < im.w; ++x) {
            float dx = (x - im.w / 2.f) / (im.w / 2.f), dy = (y - im.h / 2.f) / (im.h / 2.f);
            float k = Clamp01((dx * dx + dy * dy - 0.35f) * 0.7f) * strength;
            im.Set(x, y, Shade(im.Get(x, y), 1.f - k));
        }
}

// A cottage silhouette with lit windows, for the village scenes.
void Cottage(Img& im, float x, float by, float w, float h, Col wall, Col roof, Col lit, uint32_t seed) {
    Poly(im, {x, by, x + w, by, x + w, by - h, x, by - h}, [&](float, float) { return wall; }, wall, 0.f);
    Poly(im, {x - 6, by - h + 2, x + w / 2, by - h - w * 0.5f, x + w + 6, by - h + 2},
         [&](float, float) { return roof; }, roof, 0.f);
    Rng r(seed);
    for (int k = 0; k < 2; ++k) {
        float wx = x + w * (0.25f + 0.45f * k), wy = by - h * 0.6f;
        if (r.F() < 0.25f) continue;
        Poly(im, {wx - 4, wy - 5, wx + 4, wy - 5, wx + 4, wy + 5, wx - 4, wy + 5},
             [&](float, float py) { return Mix(lit, Shade(lit, 0.6f), (py - wy + 5) / 10.f); }, Hex(0x100C08), 1.f);
        Glow(im, wx, wy, 26, Shade(lit, 0.5f) * 0.25f, 0.9f);
    }
}

// ---------------------------------------------------------------- scenes

Img SplashStudio() {
    Img im(640, 480);
    Sky(im, {{0, Hex(0x121012)}, {1, Hex(0x1E1A18)}}, 0, 480);
    float cx = 320, cy = 200;
    Glow(im, cx, cy - 10, 160, Hex(0x6A3A18), 0.6f);
    // A candle in a ring: the studio's mark.
    Paint(im, cx - 70, cy - 70, cx + 70, cy + 70,
          [&](float x, float y) { return std::fabs(SdCircle(x, y, cx, cy, 58)) - 3.f; },
          [&](float x, float y, float) { return Shade(Hex(0xA0804A), 1.f - ((x - cx) + (y - cy)) / 120.f); });
    Poly(im, {cx - 12, cy + 40, cx + 12, cy + 40, cx + 12, cy - 8, cx - 12, cy - 8},
         [&](float x, float) { return Shade(Hex(0xD8CCB0), 1.1f - (x - cx + 12) / 40.f); }, Hex(0x2A2018));
    Paint(im, cx - 12, cy - 44, cx + 12, cy - 6,
          [&](float x, float y) { return SdEllipse(x, y, cx, cy - 22, 6.5f, 15) + (y > cy - 14 ? 0 : 0); },
          [&](float x, float y, float) {
              float t = Clamp01((y - (cy - 37)) / 30.f);
              return Mix(Hex(0xFFF4C8), Hex(0xE07A2A), t * 0.8f + std::fabs(x - cx) / 10.f);
          });
    TextStyle st;
    st.size = 34; st.top = Hex(0xE8DCC0); st.bottom = Hex(0xB09870);
    DrawText(im, Caption("studio"), cx, 320, st);
    TextStyle sm = st;
    sm.size = 16; sm.top = sm.bottom = Hex(0x9A8C74); sm.bevel = 0; sm.shadow = 1;
    DrawText(im, Caption("presents"), cx, 362, sm);
    Vignette(im, 0.6f);
    return im;
}

Img SplashKeep() {
    Img im(640, 480);
    Sky(im, {{0, Hex(0x08090E)}, {0.6f, Hex(0x1A1418)}, {1, Hex(0x3A1A10)}}, 0, 480);
    Stars(im, 220, 21, 140);
    Moon(im, 520, 80, 16);
    Ridge(im, 330, 40, 0.004f, 22, [](float, float, float d) { return Mix(Hex(0x18141A), Hex(0x0E0C0E), Clamp01(d / 100)); });
    Smoke(im, 330, 210, 200, Hex(0x2A2222), 23);
    Keep(im, 320, 300, 1.1f, Hex(0x0C0A0C), Hex(0xF0902A), true, 24);
    Fire(im, 345, 150, 26, 60, 25);
    Fire(im, 280, 218, 30, 50, 26);
    Fire(im, 395, 228, 22, 40, 27);
    Glow(im, 340, 200, 200, Hex(0x7A2A08), 0.55f);
    Embers(im, 340, 170, 120, 160, 28);
    Ridge(im, 400, 25, 0.006f, 29, [](float, float, float) { return Hex(0x08070A); });
    TreeLine(im, 410, 1.2f, 18, 40, Hex(0x060508), 30);
    Vignette(im, 0.7f);
    return im;
}

Img SplashDawn() {
    Img im(640, 480);
    Sky(im, {{0, Hex(0x3A4A68)}, {0.45f, Hex(0xB88A7A)}, {0.62f, Hex(0xE8B67A)}, {1, Hex(0xF2D49A)}}, 0, 300);
    Glow(im, 400, 250, 220, Hex(0x8A5A20), 0.5f);
    Paint(im, 380, 230, 420, 270, [](float x, float y) { return SdCircle(x, y, 400, 252, 15); },
          [](float, float, float) { return Hex(0xFFF0C8); });
    Ridge(im, 230, 40, 0.003f, 31, [](float, float, float d) { return Mix(Hex(0x8A7A8A), Hex(0x7A6A7E), Clamp01(d / 80)); });
    Mist(im, 220, 290, Hex(0xE8C8A8), 0.7f, 32);
    Ridge(im, 290, 30, 0.005f, 33, [](float, float, float d) { return Mix(Hex(0x5A5A5E), Hex(0x4A4A50), Clamp01(d / 80)); });
    TreeLine(im, 298, 0.8f, 10, 22, Hex(0x3E4448), 34);
    Mist(im, 280, 340, Hex(0xD8B89A), 0.6f, 35);
    Ridge(im, 350, 25, 0.007f, 36, [](float x, float, float d) {
        return Mix(Hex(0x3E4A30), Hex(0x2A3420), Clamp01(d / 60 + x / 2000));
    });
    // The river catching the dawn: the sky's colours, ripples and dark banks.
    for (int y = 350; y < 480; ++y)
        for (int x = 0; x < 640; ++x) {
            float depth = (y - 350) / 130.f;
            float centre = 330 + std::sin(y * 0.03f) * 60 + (y - 350) * 0.8f;
            float w = 5 + (y - 350) * 0.45f;
            float d = std::fabs(x - centre) - w;
            if (d < 0) {
                float across = std::fabs(x - centre) / w;
                Col c = Mix(Hex(0xE8B880), Hex(0x6A6A88), Clamp01(across * 0.8f + depth * 0.5f));
                float rip = Fbm(x / 30.f, y / 1.6f, 37, 3);
                c = Shade(c, 0.85f + rip * 0.3f);
                if (rip > 0.68f && across < 0.6f) c = Mix(c, Hex(0xFFF0D0), 0.6f);
                im.Set(x, y, c);
            } else if (d < 2.5f + depth * 3) {
                im.Set(x, y, Mix(im.Get(x, y), Hex(0x1E2418), 0.7f));
            }
        }
    TreeLine(im, 486, 0.35f, 30, 70, Hex(0x1A2218), 38);
    Vignette(im, 0.4f);
    return im;
}

Img SplashRain() {
    Img im(640, 480);
    Sky(im, {{0, Hex(0x2A3038)}, {1, Hex(0x4A525A)}}, 0, 300);
    Ridge(im, 210, 30, 0.004f, 41, [](float, float, float) { return Hex(0x3A4048); });
    TreeLine(im, 250, 1.f, 14, 30, Hex(0x2A3034), 42);
    Mist(im, 200, 280, Hex(0x5A6068), 0.6f, 43);
    // Street: wet cobbles growing larger towards the viewer.
    for (int y = 300; y < 480; ++y) {
        float depth = (y - 300) / 180.f;
        float rowH = 3 + depth * 9;
        float row = std::floor(std::log1p((y - 300) / 3.f) * 6.f);
        float fy = std::fmod(std::log1p((y - 300) / 3.f) * 6.f, 1.f);
        for (int x = 0; x < 640; ++x) {
            float cw = 6 + depth * 16;
            float sx = (x - 320) / cw + row * 0.5f;
            float fx = sx - std::floor(sx);
            float tone = Rand01(int(std::floor(sx)), int(row), 44);
            Col c = Shade(Hex(0x2A2E34), 0.85f + tone * 0.15f + depth * 0.1f);
            c = Mix(c, Hex(0x4A5460), Fbm(x / 60.f, y / 6.f, 45, 3) * 0.35f);
            float edge = std::min(std::min(fx, 1 - fx) * cw, std::min(fy, 1 - fy) * rowH);
            if (edge < 1.0f) c = Shade(c, 0.6f);
            else if (fy < 0.3f) c = Shade(c, 1.06f);  // wet tops catch the sky
            im.Set(x, y, c);
        }
    }
    Cottage(im, 40, 320, 110, 70, Hex(0x2E2A28), Hex(0x1E1A1A), Hex(0xE8A050), 45);
    Cottage(im, 200, 306, 80, 55, Hex(0x34302C), Hex(0x221E1E), Hex(0xE09040), 46);
    Cottage(im, 420, 318, 120, 75, Hex(0x2C2826), Hex(0x1C1818), Hex(0xE8A858), 47);
    Cottage(im, 560, 300, 90, 50, Hex(0x302C2A), Hex(0x201C1C), Hex(0xD89040), 48);
    // Reflections of the lit windows on the wet ground.
    for (float wx : {68.f, 118.f, 220.f, 450.f, 505.f, 585.f})
        for (int y = 330; y < 420; ++y)
            for (int x = int(wx) - 3; x <= int(wx) + 3; ++x) {
                float k = (1 - (y - 330) / 90.f) * 0.35f * VNoise(x / 2.f, y / 1.2f, 49);
                if (im.In(x, y)) im.Set(x, y, Mix(im.Get(x, y), Hex(0xD89048), k));
            }
    Rain(im, 50, 1400, Hex(0xA8B4C0), 0.45f);
    Vignette(im, 0.5f);
    return im;
}

void TitleText(Img& im, float cx, float cy, int size) {
    GlowText(im, Caption("title"), cx, cy, size, Hex(0xC8581A), size / 5, 1.6f);
    TextStyle st;
    st.size = size;
    st.top = Hex(0xF4E2B0);
    st.bottom = Hex(0xB8602A);
    st.outline = Hex(0x140C08);
    st.outlineWidth = 2.5f;
    st.shadow = 3;
    st.bevel = 0.45f;
    DrawText(im, Caption("title"), cx, cy, st);
}

Img SplashTitle() {
    Img im(640, 480);
    Sky(im, {{0, Hex(0x0C0A0A)}, {0.7f, Hex(0x1E1612)}, {1, Hex(0x3A2012)}}, 0, 480);
    Glow(im, 320, 480, 300, Hex(0x5A2008), 0.6f);
    Embers(im, 320, 470, 260, 260, 51);
    // A sword planted in ash.
    Poly(im, {316, 390, 324, 390, 322, 270, 318, 270},
         [](float x, float y) { return Shade(Hex(0x8A8C90), (x < 320 ? 1.2f : 0.7f) - (y - 270) / 400.f); }, Hex(0x0A0A0A));
    Poly(im, {296, 268, 344, 268, 344, 274, 296, 274}, [](float, float y) { return Shade(Hex(0x6A5030), y < 271 ? 1.2f : 0.8f); }, Hex(0x0A0A0A));
    Poly(im, {317, 236, 323, 236, 323, 268, 317, 268}, [](float x, float) { return Shade(Hex(0x3A2A20), x < 320 ? 1.2f : 0.8f); }, Hex(0x0A0A0A));
    Paint(im, 312, 226, 328, 240, [](float x, float y) { return SdCircle(x, y, 320, 233, 5); },
          [](float x, float y, float) { return Shade(Hex(0xA08040), 1.2f - (x - 320 + y - 233) / 10.f); });
    Ridge(im, 392, 8, 0.01f, 52, [](float, float y, float) { return Mix(Hex(0x2A2420), Hex(0x120E0C), Clamp01((y - 392) / 80)); });
    TitleText(im, 320, 140, 78);
    TextStyle sm;
    sm.size = 18; sm.top = sm.bottom = Hex(0xA89478); sm.bevel = 0; sm.shadow = 1;
    DrawText(im, Caption("subtitle"), 320, 200, sm);
    Vignette(im, 0.6f);
    return im;
}

Img MainMenuBg() {
    Img im(640, 480);
    Sky(im, {{0, Hex(0x141824)}, {0.5f, Hex(0x3A3038)}, {0.8f, Hex(0x7A4A3A)}, {1, Hex(0x9A6040)}}, 0, 330);
    Stars(im, 160, 61, 90);
    Ridge(im, 250, 50, 0.0035f, 62, [](float, float, float d) { return Mix(Hex(0x3A3440), Hex(0x2A2630), Clamp01(d / 90)); });
    Keep(im, 470, 236, 0.55f, Hex(0x1A161C), Hex(0xC06A28), true, 63);
    Smoke(im, 480, 160, 120, Hex(0x4A3A3A), 64);
    Mist(im, 240, 300, Hex(0x8A6A5A), 0.5f, 65);
    Ridge(im, 320, 30, 0.006f, 66, [](float, float, float d) { return Mix(Hex(0x222A24), Hex(0x161C18), Clamp01(d / 100)); });
    TreeLine(im, 330, 1.f, 12, 28, Hex(0x121814), 67);
    Ridge(im, 420, 20, 0.008f, 68, [](float, float, float) { return Hex(0x0E1210); });
    TreeLine(im, 480, 0.4f, 70, 150, Hex(0x080A08), 69);
    Vignette(im, 0.5f);
    TitleText(im, 320, 110, 72);
    // A dark stone backing for the four buttons (x 220, y 220 + 56 k).
    for (int y = 206; y < 446; ++y)
        for (int x = 204; x < 436; ++x) {
            float d = -SdBox(x + 0.5f, y + 0.5f, 320, 326, 116, 120, 10);
            if (d < 0) continue;
            float k = Clamp01(d / 8.f) * 0.55f;
            im.Set(x, y, Shade(im.Get(x, y), 1.f - k));
            if (d < 1.5f) im.Set(x, y, Mix(im.Get(x, y), Hex(0x8A6A40), 0.5f));
        }
    return im;
}

Img TextPageBg(uint32_t seed, bool result) {
    Img im(640, 480);
    if (result) {
        Sky(im, {{0, Hex(0x2A3448)}, {0.6f, Hex(0x8A7068)}, {1, Hex(0xD8A878)}}, 0, 480);
        Ridge(im, 330, 60, 0.004f, seed, [](float, float, float d) { return Mix(Hex(0x3A3A44), Hex(0x202028), Clamp01(d / 120)); });
        // The shrine on its hilltop.
        float sx = 575, sy = 300;
        // The hill the shrine stands on.
        Paint(im, sx - 140, sy - 10, sx + 140, sy + 120, [&](float x, float y) { return SdEllipse(x, y, sx + 10, sy + 60, 130, 62); },
              [](float, float y, float) { return Mix(Hex(0x34343E), Hex(0x202028), Clamp01((y - 300) / 90)); });
        Poly(im, {sx - 20, sy, sx + 20, sy, sx + 16, sy - 36, sx - 16, sy - 36}, [](float, float) { return Hex(0x202028); }, Hex(0x202028), 0.f);
        Poly(im, {sx - 26, sy - 36, sx, sy - 52, sx + 26, sy - 36}, [](float, float) { return Hex(0x1A1A22); }, Hex(0x1A1A22), 0.f);
        Glow(im, sx, sy - 18, 40, Hex(0x8A5020), 0.8f);
        Mist(im, 300, 420, Hex(0xB89A88), 0.6f, seed + 1);
    } else {
        Sky(im, {{0, Hex(0x0E0C0C)}, {1, Hex(0x2A1E18)}}, 0, 480);
        Embers(im, 320, 480, 320, 200, seed);
        Glow(im, 320, 520, 320, Hex(0x4A1A06), 0.5f);
    }
    Img page(340, 360);
    Parchment(page, 0, 0, 340, 360, seed + 2);
    im.Draw(page, 150, 60, 1.f);
    WoodFrame(im, 142, 52, 356, 376, 9, seed + 3);
    Vignette(im, 0.4f);
    return im;
}

Img BossKey() {
    Img im(640, 480);
    im.Fill(Hex(0xD4D0C8));
    // Title bar, menu and tool rows of a dull office program.
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 640; ++x) im.Set(x, y, Mix(Hex(0x0A246A), Hex(0xA6CAF0), x / 640.f));
    TextStyle t;
    t.size = 12; t.top = t.bottom = Hex(0xFFFFFF); t.outlineWidth = 0; t.shadow = 0; t.bevel = 0;
    DrawText(im, "Quarterly Ledger - Northern Mills (read only)", 6, 3, t, false);
    TextStyle m = t;
    m.top = m.bottom = Hex(0x000000);
    DrawText(im, "File   Edit   View   Insert   Format   Tools   Data   Window   Help", 6, 23, m, false);
    for (int x = 0; x < 640; ++x) { im.Set(x, 40, Hex(0x808080)); im.Set(x, 41, Hex(0xFFFFFF)); }
    for (int k = 0; k < 18; ++k) {
        int x0 = 6 + k * 24;
        for (int y = 45; y < 63; ++y)
            for (int x = x0; x < x0 + 20; ++x)
                im.Set(x, y, (y == 45 || x == x0) ? Hex(0xFFFFFF) : (y == 62 || x == x0 + 19) ? Hex(0x808080) : Hex(0xC8C4BC));
    }
    const int top = 70, rowH = 17, colW = 70, hdrW = 34;
    const char* cols = "ABCDEFGHI";
    for (int y = top; y < 460; ++y)
        for (int x = 0; x < 640; ++x) {
            bool hdr = x < hdrW || y < top + rowH;
            Col c = hdr ? Hex(0xD4D0C8) : Hex(0xFFFFFF);
            if ((y - top) % rowH == 0 || (x >= hdrW && (x - hdrW) % colW == 0) || x == hdrW - 1) c = Hex(0xC0C0C0);
            im.Set(x, y, c);
        }
    for (int c = 0; c < 9; ++c) DrawText(im, std::string(1, cols[c]), hdrW + c * colW + colW / 2.f, top + rowH / 2.f, m, true);
    const char* heads[] = {"Account", "Jan", "Feb", "Mar", "Q1", "Apr", "May", "Jun", "Q2"};
    Rng r(71);
    for (int row = 1; row < 23; ++row) {
        float y = top + row * rowH + 2;
        DrawText(im, std::to_string(row), hdrW / 2.f, y + 6, m, true);
        for (int c = 0; c < 9; ++c) {
            std::string s;
            if (row == 1) s = heads[c];
            else if (c == 0) s = "Item " + std::to_string(1000 + row * 7);
            else {
                char b[32];
                std::snprintf(b, sizeof b, "%d.%02d", r.I(100, 9999), r.I(0, 99));
                s = b;
            }
            DrawText(im, s, hdrW + c * colW + 4, y, m, false);
        }
    }
    for (int y = 460; y < 480; ++y)
        for (int x = 0; x < 640; ++x) im.Set(x, y, Hex(0xD4D0C8));
    DrawText(im, "Ready", 6, 463, m, false);
    return im;
}

// ---------------------------------------------------------------- panels

Img PanelBase(int w, int h, uint32_t seed, bool parchment, const char* title) {
    Img im(w, h);
    if (parchment) Parchment(im, 0, 0, w, h, seed);
    else Inset(im, 0, 0, w, h, Hex(0x2E2824), seed, 0.06f);
    WoodFrame(im, 0, 0, w, h, 10, seed + 1);
    if (title && *title) {
        TextStyle st;
        st.size = 18;
        st.top = parchment ? Hex(0x4A2E18) : Hex(0xE8D8B0);
        st.bottom = parchment ? Hex(0x2A1A0E) : Hex(0xB0946A);
        st.outline = parchment ? Hex(0xC8B48C) : Hex(0x120C08);
        st.outlineWidth = parchment ? 0.f : 1.5f;
        st.shadow = parchment ? 0.f : 1.5f;
        st.engraved = parchment;
        DrawText(im, title, w / 2.f, 26, st);
        // A thin rule under the title.
        for (int x = 30; x < w - 30; ++x) {
            float k = 1.f - std::fabs(x - w / 2.f) / (w / 2.f - 30);
            im.Set(x, 40, Mix(im.Get(x, 40), parchment ? Hex(0x5A3E22) : Hex(0x9A7A48), k));
            im.Set(x, 41, Mix(im.Get(x, 41), parchment ? Hex(0xE8D8B0) : Hex(0x1A1410), k * 0.6f));
        }
    }
    return im;
}

Img MenuButton(const char* caption, bool hot, int w, int h, uint32_t seed) {
    Img im(w, h);
    Plaque(im, 0, 0, w, h, hot, seed);
    TextStyle st;
    st.size = h >= 44 ? 20 : 18;
    st.top = hot ? Hex(0xFFE8B8) : Hex(0xE0D4BC);
    st.bottom = hot ? Hex(0xF0A050) : Hex(0xA89880);
    st.outline = Hex(0x16100C);
    st.outlineWidth = 1.5f;
    st.shadow = 1.5f;
    DrawText(im, caption, w / 2.f, h / 2.f, st);
    return im;
}

enum Glyph { kUp, kDown, kClose, kPrev, kNext };
Img SmallButton(int size, Glyph g) {
    Img im(size, size);
    float c = size / 2.f, r = size / 2.f - 0.5f;
    RoundButton(im, c, c, r, false);
    Col ink = Hex(0xE8D8B0);
    float k = size / 28.f;
    auto tri = [&](std::vector<float> xy) {
        for (size_t i = 0; i < xy.size(); i += 2) { xy[i] = c + xy[i] * k; xy[i + 1] = c + xy[i + 1] * k; }
        Poly(im, xy, [&](float, float y) { return Mix(ink, Hex(0xB0946A), (y - c + 6 * k) / (12 * k)); }, Hex(0x120C08), 1.f);
    };
    switch (g) {
        case kUp: tri({-7, 4, 0, -6, 7, 4}); break;
        case kDown: tri({-7, -4, 7, -4, 0, 6}); break;
        case kPrev: tri({4, -7, 4, 7, -6, 0}); break;
        case kNext: tri({-4, -7, 6, 0, -4, 7}); break;
        case kClose:
            Paint(im, 0, 0, float(size), float(size),
                  [&](float x, float y) {
                      float a = SdSegment(x, y, c - 5.5f * k, c - 5.5f * k, c + 5.5f * k, c + 5.5f * k, 1.9f * k);
                      float b = SdSegment(x, y, c + 5.5f * k, c - 5.5f * k, c - 5.5f * k, c + 5.5f * k, 1.9f * k);
                      return std::min(a, b);
                  },
                  [&](float, float, float d) { return d > -1.f ? Hex(0x120C08) : Hex(0xD8A070); });
            break;
    }
    return im;
}

// Keyboard key cap with a label.
void KeyCap(Img& im, float x, float y, float w, float h, const std::string& label, bool lit) {
    Paint(im, x, y, x + w, y + h,
          [&](float px, float py) { return SdBox(px, py, x + w / 2, y + h / 2, w / 2 - 0.5f, h / 2 - 0.5f, 4); },
          [&](float px, float py, float d) {
              if (d > -1) return Hex(0x1A1410);
              Col c = lit ? Hex(0xE0B070) : Hex(0xD8CCB4);
              if (-d < 4) return Shade(c, (px - x) + (py - y) < (w + h) / 2 ? 1.15f : 0.7f);
              return c;
          });
    TextStyle st;
    st.size = 16; st.top = st.bottom = Hex(0x2A2018); st.outlineWidth = 0; st.shadow = 0; st.bevel = 0;
    DrawText(im, label, x + w / 2, y + h / 2 - 1, st);
}

void Mouse(Img& im, float cx, float cy, int litButton) {
    Paint(im, cx - 24, cy - 36, cx + 24, cy + 36,
          [&](float x, float y) { return SdBox(x, y, cx, cy, 20, 32, 18); },
          [&](float x, float y, float d) {
              if (d > -1.5f) return Hex(0x1A1410);
              bool btn = y < cy - 6;
              bool left = x < cx;
              if (btn && std::fabs(x - cx) < 1.2f) return Hex(0x1A1410);
              if (btn && std::fabs(y - (cy - 6)) < 1.2f) return Hex(0x1A1410);
              Col c = Hex(0xCFC4AE);
              if (btn && ((litButton == 0 && left) || (litButton == 1 && !left))) c = Hex(0xE88A3A);
              return Shade(c, 1.1f - ((x - cx) + (y - cy)) / 120.f);
          });
}

// A little figure in the game's proportions, for the tutorial pictures.
void Figure(Img& im, float x, float by, bool running, Col cloak) {
    float lean = running ? 6.f : 0.f;
    const float k = 1.6f;  // drawn larger than in the world so the pose reads
    Paint(im, x - 12 * k, by - 50 * k, x + 14 * k, by + 2,
          [&](float qx, float qy) {
              float px = x + (qx - x) / k, py = by + (qy - by) / k;
              float body = SdSegment(px, py, x, by - 16, x + lean, by - 36, 6.f);
              float head = SdCircle(px, py, x + lean * 1.2f, by - 43, 5.f);
              float l1 = SdSegment(px, py, x, by - 16, x + (running ? 9 : 3), by, 2.3f);
              float l2 = SdSegment(px, py, x, by - 16, x - (running ? 7 : 3), by - (running ? 3 : 0), 2.3f);
              return std::min(std::min(body, head), std::min(l1, l2)) * k;
          },
          [&](float qx, float qy, float d) {
              float px = x + (qx - x) / k, py = by + (qy - by) / k;
              if (d > -1.2f) return Hex(0x1A1410);
              if (py < by - 38) return Shade(Hex(0xD8B090), 1.1f - (px - x) / 20.f);
              return Shade(cloak, 1.1f - (px - x) / 16.f);
          });
    if (running)
        for (int m = 0; m < 3; ++m)
            Paint(im, x - 64, by - 70, x - 6, by - 8,
                  [&](float px, float py) { return SdSegment(px, py, x - 56 + m * 4, by - 62 + m * 16, x - 30 + m * 4, by - 62 + m * 16, 1.2f); },
                  [&](float, float, float) { return Hex(0x6A5A48); });
}

Img Tutorial(int page) {
    Img im = PanelBase(360, 240, 80 + page, true, nullptr);
    const std::string caption = Caption("tut" + std::to_string(page + 1));
    switch (page) {
        case 0:
            Mouse(im, 110, 100, 0);
            Figure(im, 240, 140, true, Hex(0x5A6A7A));
            break;
        case 1: {
            Mouse(im, 100, 100, 1);
            Figure(im, 230, 140, false, Hex(0x7A5A3A));
            Paint(im, 236, 40, 330, 96, [](float x, float y) {
                return std::min(SdBox(x, y, 282, 64, 44, 20, 10), SdPoly(x, y, {258, 80, 270, 80, 252, 96}));
            }, [](float, float, float d) { return d > -1.2f ? Hex(0x1A1410) : Hex(0xF0E6D0); });
            TextStyle st;
            st.size = 14; st.top = st.bottom = Hex(0x3A2A1A); st.outlineWidth = 0; st.shadow = 0; st.bevel = 0;
            DrawText(im, Caption("tut_greeting"), 282, 63, st);
            break;
        }
        case 2: {
            for (int k = 0; k < 9; ++k) KeyCap(im, 26 + k * 35, 40, 30, 30, std::to_string(k + 1), k == 2);
            // The potion the key uses.
            float cx = 180, cy = 128;
            Paint(im, cx - 22, cy - 30, cx + 22, cy + 26, [&](float x, float y) {
                return std::min(SdCircle(x, y, cx, cy + 6, 18), SdBox(x, y, cx, cy - 16, 6, 10, 2));
            }, [&](float x, float y, float d) {
                if (d > -1.5f) return Hex(0x1A1410);
                if (y < cy - 12) return Shade(Hex(0xB0C4C8), 1.1f - (x - cx) / 20.f);
                Col c = Mix(Hex(0xE0503A), Hex(0x7A1A14), Clamp01((y - cy) / 24.f + (x - cx) / 40.f));
                if (std::hypot(x - cx + 7, y - cy + 1) < 4) c = Hex(0xF8C0A8);
                return c;
            });
            break;
        }
        default: {
            KeyCap(im, 60, 70, 64, 44, "Esc", true);
            Img menu = PanelBase(120, 130, 90, false, Caption("gamemenu").c_str());
            for (int k = 0; k < 3; ++k)
                for (int y = 0; y < 16; ++y)
                    for (int x = 0; x < 84; ++x) menu.Set(18 + x, 56 + k * 22 + y, Shade(Hex(0x6A645C), 1.05f - y / 40.f));
            im.Draw(menu, 190, 30);
            Paint(im, 130, 80, 190, 100, [](float x, float y) { return SdSegment(x, y, 134, 92, 180, 92, 2); },
                  [](float, float, float) { return Hex(0x6A4A2A); });
            Poly(im, {178, 86, 188, 92, 178, 98}, [](float, float) { return Hex(0x6A4A2A); }, Hex(0x6A4A2A), 0.f);
            break;
        }
    }
    TextStyle st;
    st.size = 18; st.top = Hex(0x3A2414); st.bottom = Hex(0x1E140C); st.outlineWidth = 0; st.shadow = 0;
    st.engraved = true;
    DrawText(im, caption, 180, 186, st);
    return im;
}

struct Rect {
    int x, y, w, h;
};

// The HUD: a raised crest on the left for the skill, bars and screen buttons, and a
// strip along the bottom for the equipment and the bag. Above the frame is keyed.
Img Hud(std::string& manifest) {
    Img im(640, 100);
    const int stripTop = 40, crestW = 184;
    // Strip and crest body.
    Img body(640, 100);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 640; ++x) {
            bool in = y >= stripTop || (x < crestW && y >= 0 && SdBox(x + 0.5f, y + 0.5f, crestW / 2.f, 60, crestW / 2.f, 60, 14) < 0);
            if (!in) continue;
            body.Set(x, y, Hex(0x2E2824));
        }
    Inset(im, 0, 0, 640, 100, Hex(0x2E2824), 91, 0.06f);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 640; ++x)
            if (body.A(x, y) <= 0) im.Set(x, y, {}, 0.f);
    // Rims: dark wood along the top edges.
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 640; ++x) {
            if (im.A(x, y) <= 0) continue;
            bool edge = false;
            for (int k = 1; k <= 5 && !edge; ++k)
                if (y - k < 0 || im.A(x, y - k) <= 0 || (x - k >= 0 && im.A(x - k, y) <= 0) ||
                    (x + k < 640 && im.A(x + k, y) <= 0))
                    edge = true;
            if (x < 3 || x > 636 || y > 96) edge = true;
            if (edge) {
                float g = VNoise(x / 14.f, y * 0.9f, 92);
                im.Set(x, y, Shade(Hex(0x4A3524), 0.75f + g * 0.4f));
            }
        }
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 640; ++x) {
            if (im.A(x, y) <= 0) continue;
            bool outer = y == 0 || im.A(x, y - 1) <= 0 || (x > 0 && im.A(x - 1, y) <= 0) ||
                         (x < 639 && im.A(x + 1, y) <= 0) || x == 0 || x == 639 || y == 99;
            if (outer) im.Set(x, y, Hex(0x120C08));
        }
    Rect skill{12, 30, 32, 32}, level{12, 70, 32, 22};
    Rect hp{52, 32, 122, 10}, mp{52, 48, 122, 10}, ex{52, 64, 122, 6};
    Rect money{52, 76, 122, 18};
    Slot(im, skill.x, skill.y);
    Inset(im, level.x, level.y, level.w, level.h, Hex(0x1E1A16), 93);
    BarFrame(im, hp.x, hp.y, hp.w, hp.h);
    BarFrame(im, mp.x, mp.y, mp.w, mp.h);
    BarFrame(im, ex.x, ex.y, ex.w, ex.h);
    Inset(im, money.x, money.y, money.w, money.h, Hex(0x1E1A16), 94);
    // Coin mark in the money box.
    Paint(im, money.x + 2, money.y + 2, money.x + 18, money.y + 16, [&](float x, float y) { return SdCircle(x, y, money.x + 10, money.y + 9, 5.5f); },
          [&](float x, float y, float d) { return d > -1 ? Hex(0x3A2A10) : Shade(Hex(0xC8A040), 1.2f - (x - money.x - 10 + y - money.y - 9) / 10.f); });
    // Five screen buttons.
    const char* glyph[] = {"A", "N", "H", "M", "E"};
    std::vector<Rect> buttons;
    for (int k = 0; k < 5; ++k) {
        Rect b{54 + k * 24, 6, 20, 20};
        buttons.push_back(b);
        RoundButton(im, b.x + 10.f, b.y + 10.f, 10.f, false);
        TextStyle st;
        st.size = 11; st.top = Hex(0xE8D8B0); st.bottom = Hex(0xB0946A); st.outlineWidth = 1; st.shadow = 0;
        DrawText(im, glyph[k], b.x + 10.f, b.y + 9.5f, st);
    }
    // Equipment and bag.
    std::vector<Rect> equip, bag;
    for (int k = 0; k < 4; ++k) { equip.push_back({194 + k * 34, 56, 32, 32}); Slot(im, equip.back().x, equip.back().y); }
    for (int k = 0; k < 9; ++k) { bag.push_back({334 + k * 33, 56, 32, 32}); Slot(im, bag.back().x, bag.back().y); }
    // Little separators and labels over the strip.
    TextStyle lab;
    lab.size = 10; lab.top = lab.bottom = Hex(0x9A8464); lab.outlineWidth = 1; lab.shadow = 0; lab.bevel = 0;
    DrawText(im, Caption("hud_gear"), 194 + 66, 47, lab);
    DrawText(im, Caption("hud_bag"), 334 + 147, 47, lab);
    for (int k = 0; k < 9; ++k) {
        TextStyle n = lab;
        n.size = 9;
        DrawText(im, std::to_string(k + 1), bag[k].x + 28.f, bag[k].y + 40.f, n);
    }
    auto R = [](const Rect& r) {
        return " x=" + std::to_string(r.x) + " y=" + std::to_string(r.y) + " w=" + std::to_string(r.w) + " h=" + std::to_string(r.h);
    };
    manifest =
        "# hud_bg.bmp (640x100), drawn at panel x=0 y=380. Coordinates relative to the panel.\n"
        "# Pixels above the frame are magenta (transparent).\n"
        "panel x=0 y=380 w=640 h=100\n"
        "HPrect" + R(hp) + "\nMPrect" + R(mp) + "\nEXrect" + R(ex) + "\n"
        "skillButton" + R(skill) + "\n";
    const char* names[] = {"propertyButton", "noteButton", "rrButton", "missionButton", "menuButton"};
    for (int k = 0; k < 5; ++k) manifest += std::string(names[k]) + R(buttons[k]) + "\n";
    manifest += "levelLbl" + R(level) + "\nmoneyLbl x=" + std::to_string(money.x + 18) + " y=" + std::to_string(money.y) +
                " w=" + std::to_string(money.w - 18) + " h=" + std::to_string(money.h) + "\n";
    manifest += "weaponButtons WuX=" + std::to_string(equip[0].x) + " WuY=" + std::to_string(equip[0].y) +
                " JiaX=" + std::to_string(equip[1].x) + " JiaY=" + std::to_string(equip[1].y) +
                " Shi1X=" + std::to_string(equip[2].x) + " Shi1Y=" + std::to_string(equip[2].y) +
                " Shi2X=" + std::to_string(equip[3].x) + " Shi2Y=" + std::to_string(equip[3].y) + "\n";
    manifest += "itemButtons lines=1 firstBtnX=" + std::to_string(bag[0].x) + " firstBtnY=" + std::to_string(bag[0].y) +
                " xDis=1 yDis=0\n";
    manifest += "skillImages x=12 y=-36 width=32 height=32\n";
    return im;
}

Img PackPanel(int n, int w, int h, std::string& manifest) {
    Img im = PanelBase(w, h, 100 + n, false, "");
    int grid = n * 32 + (n - 1) * 4;
    int fx = (w - grid) / 2, fy = 44 + (h - 44 - 14 - grid) / 2;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) Slot(im, fx + i * 36, fy + j * 36);
    // Title strip for the title label.
    Inset(im, 30, 14, w - 64, 22, Hex(0x1E1A16), 110 + n);
    manifest += "pack" + std::to_string(n) + "_bg.bmp " + std::to_string(n) + "x" + std::to_string(n) +
                " picWidth=" + std::to_string(w) + " picHeight=" + std::to_string(h) +
                " firstBtnX=" + std::to_string(fx) + " firstBtnY=" + std::to_string(fy) +
                " xDis=4 yDis=4 title x=34 y=15 close x=" + std::to_string(w - 32) + " y=12\n";
    return im;
}

Img TalkBox() {
    Img im(600, 150);
    Inset(im, 0, 0, 600, 150, Hex(0x241E1A), 120, 0.05f);
    WoodFrame(im, 0, 0, 600, 150, 9, 121);
    // Portrait frame: an 80 x 80 face fits inside at (20, 35).
    Slot(im, 20, 35, 80);
    Inset(im, 112, 16, 472, 118, Hex(0x2C2622), 122, 0.04f);
    return im;
}

Img SavePanel() {
    Img im = PanelBase(400, 380, 130, false, "");
    for (int k = 0; k < 6; ++k) {
        int y = 62 + k * 48;
        Inset(im, 24, y, 352, 38, Hex(0x3A322C), 131 + k);
        Rivet(im, 34, y + 19.f, 2.f);
        Rivet(im, 366, y + 19.f, 2.f);
    }
    return im;
}

}  // namespace

void GenUi(Output& out) {
    out.AddPicture("ui", "ui/splash1.bmp", SplashStudio());
    out.AddPicture("ui", "ui/splash2.bmp", SplashKeep());
    out.AddPicture("ui", "ui/splash3.bmp", SplashDawn());
    out.AddPicture("ui", "ui/splash4.bmp", SplashRain());
    out.AddPicture("ui", "ui/splash5.bmp", SplashTitle());
    out.AddPicture("ui", "ui/mainmenu_bg.bmp", MainMenuBg());
    struct B { const char* file; const char* caption; };  // caption: recipe key
    const B mm[] = {{"mm_start", "mm_start"}, {"mm_load", "mm_load"}, {"mm_credits", "mm_credits"}, {"mm_quit", "mm_quit"}};
    uint32_t seed = 200;
    for (const B& b : mm) {
        out.AddPicture("ui", std::string("ui/") + b.file + ".bmp", MenuButton(Caption(b.caption).c_str(), false, 200, 44, seed));
        out.AddPicture("ui", std::string("ui/") + b.file + "_h.bmp", MenuButton(Caption(b.caption).c_str(), true, 200, 44, seed));
        ++seed;
    }
    out.AddPicture("ui", "ui/gamemenu_bg.bmp", PanelBase(260, 320, 210, false, Caption("gamemenu").c_str()));
    const B gm[] = {{"gm_back", "gm_back"}, {"gm_save", "gm_save"}, {"gm_load", "gm_load"}, {"gm_help", "gm_help"}, {"gm_exit", "gm_exit"}};
    for (const B& b : gm) out.AddPicture("ui", std::string("ui/") + b.file + ".bmp", MenuButton(Caption(b.caption).c_str(), false, 200, 40, seed++));
    out.AddPicture("ui", "ui/dlg_bg.bmp", PanelBase(480, 380, 220, true, ""));
    out.AddPicture("ui", "ui/dlg_up.bmp", SmallButton(28, kUp));
    out.AddPicture("ui", "ui/dlg_down.bmp", SmallButton(28, kDown));
    out.AddPicture("ui", "ui/dlg_close.bmp", SmallButton(28, kClose));
    out.AddPicture("ui", "ui/save_bg.bmp", SavePanel());
    out.AddPicture("ui", "ui/save_close.bmp", SmallButton(28, kClose));
    out.AddPicture("ui", "ui/credits_bg.bmp", TextPageBg(230, false));
    out.AddPicture("ui", "ui/result_bg.bmp", TextPageBg(240, true));
    out.AddPicture("ui", "ui/bosskey.bmp", BossKey());
    std::string hud;
    out.AddPicture("ui", "ui/hud_bg.bmp", Hud(hud));
    out.AddText("manifest/hud.txt", hud);
    std::string packs = "# pack panels: picture, grid, layout numbers for packpanel.ini (relative to the panel)\n";
    out.AddPicture("ui", "ui/pack3_bg.bmp", PackPanel(3, 200, 230, packs));
    out.AddPicture("ui", "ui/pack4_bg.bmp", PackPanel(4, 240, 270, packs));
    out.AddPicture("ui", "ui/pack5_bg.bmp", PackPanel(5, 280, 310, packs));
    out.AddText("manifest/packs.txt", packs);
    out.AddPicture("ui", "ui/pack_close.bmp", SmallButton(24, kClose));
    out.AddPicture("ui", "ui/talk_bg.bmp", TalkBox());
    for (int p = 0; p < 4; ++p) out.AddPicture("ui", "ui/tut" + std::to_string(p + 1) + ".bmp", Tutorial(p));
    out.AddPicture("ui", "ui/tut_prev.bmp", SmallButton(28, kPrev));
    out.AddPicture("ui", "ui/tut_next.bmp", SmallButton(28, kNext));
    out.AddPicture("ui", "ui/tut_close.bmp", SmallButton(28, kClose));
    out.AddText("manifest/ui.txt",
                "# where the painted pictures expect their buttons and texts (panel-relative)\n"
                "mainmenu buttons x=220 y=220,276,332,388 (200x44, screen positions; title drawn at top)\n"
                "gamemenu panel 260x320 title y=26 buttons x=30 y=62,110,158,206,254 (200x40)\n"
                "dlg panel 480x380 title y=26 text x=24 y=50 w=432 h=300 up x=440 y=52 down x=440 y=336 close x=444 y=8\n"
                "save panel 400x380 title y=26 close x=362 y=10 slots y=62,110,158,206,254,302 (352x38 at x=24)\n"
                "talk box 600x150 face x=20 y=35 (80x80) text x=116 y=20 w=464 h=110\n"
                "tutorial page 360x240 prev x=10 y=204 next x=322 y=204 close x=322 y=8\n"
                "credits/result text area x=160 y=70 w=320 h=340\n");
}

}  // namespace art
