// Ground tiles: the full ground types and the corner pieces between two of them, the
// tiles.ini catalogue, the tile manifest for the map compiler and the Tiled tilesets.
//
// Every ground type has a base texture that repeats on the cell lattice, so any two
// tiles of a type join without a seam; variants differ only by details painted in the
// inside of the diamond, faded out before the edges.
#include <cstdio>
#include <functional>

#include "noise.h"
#include "output.h"
#include "recipes.h"
#include "base/gbk.h"

namespace art {
namespace {

constexpr float kPi = 3.14159265f;

// 1 at the centre of the diamond, 0 on its edge.
float Inner(float x, float y) {
    return 1.f - (std::fabs(x - 32.f) / 32.f + std::fabs(y - 16.f) / 16.f);
}
bool InDiamond(int x, int y) {
    return std::fabs(x + 0.5f - 32.f) + 2.f * std::fabs(y + 0.5f - 16.f) <= 32.f;
}

// Bump lighting from a height function: light from the upper left.
float Bump(const std::function<float(float, float)>& h, float x, float y, float k) {
    return 1.f + (h(x - 1, y - 1) - h(x + 1, y + 1)) * k;
}

// Painters by ground; the numbers also seed each ground's noise, so a ground keeps its
// pictures whatever type number the recipes give it.
enum Ground { kGrass = 1, kDirt, kStone, kSand, kWater, kCave, kRock = 11, kAsh = 12, kScorch = 13 };

const struct {
    const char* name;
    Ground ground;
} kGrounds[] = {{"grass", kGrass}, {"dirt", kDirt}, {"stone", kStone}, {"sand", kSand},
                {"water", kWater}, {"cave", kCave}, {"rock", kRock},   {"ash", kAsh},
                {"scorch", kScorch}};

Ground GroundOf(const std::string& name) {
    for (const auto& g : kGrounds)
        if (name == g.name) return g.ground;
    return kGrass;
}

Col GrassBase(float x, float y) {
    float n1 = IsoNoise(x, y, 11, 2, 3);
    float n2 = IsoNoise(x, y, 12, 6, 2);
    Col c = Mix(Hex(0x4A6230), Hex(0x5E7537), Smooth(0.2f, 0.8f, n1));
    c = Mix(c, Hex(0x7C7A44), Smooth(0.62f, 0.9f, n2) * 0.35f);  // dry patches
    float g = IsoGrain(int(x), int(y), 13);
    c = Shade(c, 0.92f + g * 0.14f);
    // Short vertical blades: a root pixel and the two above it.
    for (int k = 0; k < 3; ++k) {
        float r = IsoGrain(int(x), int(y) + k, 14);
        if (r > 0.86f) {
            float t = 1.f - k / 3.f;
            c = Shade(c, 1.f + 0.28f * t);
            break;
        }
        if (k == 0 && IsoGrain(int(x) - 1, int(y) - 1, 14) > 0.86f) c = Shade(c, 0.8f);
    }
    return c;
}

Col DirtBase(float x, float y) {
    auto h = [](float a, float b) { return IsoNoise(a, b, 21, 4, 3); };
    float n = h(x, y);
    Col c = Mix(Hex(0x67503A), Hex(0x836649), Smooth(0.2f, 0.8f, n));
    c = Shade(c, Bump(h, x, y, 0.8f));
    float g = IsoGrain(int(x), int(y), 22);
    c = Shade(c, 0.93f + g * 0.12f);
    if (IsoGrain(int(x), int(y), 23) > 0.975f) c = Hex(0xA89578);          // grit
    if (IsoGrain(int(x) - 1, int(y) - 1, 23) > 0.975f) c = Shade(c, 0.75f);  // its shadow
    return c;
}

Col SandBase(float x, float y) {
    float a = x / 64.f + y / 32.f;
    float warp = IsoNoise(x, y, 41, 2, 2);
    float rip = std::sin(2 * kPi * (a * 4 + warp * 1.5f));
    Col c = Mix(Hex(0xA8936A), Hex(0xC9B68A), IsoNoise(x, y, 42, 3, 3));
    c = Shade(c, 1.f + rip * 0.05f);
    c = Shade(c, 0.95f + IsoGrain(int(x), int(y), 43) * 0.09f);
    return c;
}

Col WaterBase(float x, float y) {
    float n = IsoNoise(x, y, 51, 2, 3);
    Col c = Mix(Hex(0x2C5364), Hex(0x366372), Smooth(0.2f, 0.85f, n));
    float v = IsoNoise(x, y, 52, 5, 2);
    float vein = 1.f - std::fabs(2 * v - 1);
    c = Mix(c, Hex(0x6FA4AC), Smooth(0.82f, 0.97f, vein) * 0.55f);  // caustic light
    float w = IsoNoise(x, y, 53, 8, 1);
    c = Shade(c, 0.97f + w * 0.06f);
    return c;
}

Col CaveBase(float x, float y) {
    auto h = [](float a, float b) { return IsoNoise(a, b, 61, 3, 3); };
    Col c = Mix(Hex(0x36312D), Hex(0x5A534C), Smooth(0.2f, 0.8f, h(x, y)));
    c = Shade(c, Bump(h, x, y, 1.1f));
    float r = IsoNoise(x, y, 62, 4, 2);
    float crack = 1.f - std::fabs(2 * r - 1);
    if (crack > 0.94f) c = Shade(c, 0.6f);
    c = Shade(c, 0.94f + IsoGrain(int(x), int(y), 64) * 0.1f);
    return c;
}

// The rock of cave walls seen from above: dark lumps catching a little light and a
// few mineral specks.
Col RockBase(float x, float y) {
    auto h = [](float a, float b) { return IsoNoise(a, b, 71, 3, 3); };
    Col c = Mix(Hex(0x0D0B09), Hex(0x1C1713), Smooth(0.3f, 0.7f, h(x, y)));
    c = Shade(c, Bump(h, x, y, 0.8f));
    c = Shade(c, 0.95f + IsoGrain(int(x), int(y), 74) * 0.08f);
    return c;
}

// Burned ground: soot-dark earth with drifts of pale ash, charred patches and the
// odd ember still glowing.
Col AshBase(float x, float y) {
    auto h = [](float a, float b) { return IsoNoise(a, b, 81, 3, 3); };
    Col c = Mix(Hex(0x2E2926), Hex(0x463F3A), Smooth(0.2f, 0.8f, h(x, y)));
    c = Mix(c, Hex(0x8A847C), Smooth(0.58f, 0.85f, IsoNoise(x, y, 82, 2, 2)) * 0.3f);
    c = Mix(c, Hex(0x120F0D), Smooth(0.62f, 0.9f, IsoNoise(x, y, 83, 5, 2)) * 0.45f);
    c = Shade(c, Bump(h, x, y, 0.8f));
    c = Shade(c, 0.92f + IsoGrain(int(x), int(y), 84) * 0.14f);
    if (IsoGrain(int(x), int(y), 85) > 0.993f) c = Hex(0xC8642A);
    return c;
}

// Flagstones: 2 x 2 slabs per cell along the lattice axes, mortar on the joins.
// Slab shades come from the slab's lattice index, so they repeat with the cell.
// merge joins neighbouring slabs inside the cell into long ones (bits: 1 and 2 join
// along the first axis in the upper and lower half, 4 and 8 along the second axis);
// joints on the cell's edges always stay, so every variant meets every other.
Col StoneBase(float x, float y, int merge = 0) {
    float a = x / 64.f + y / 32.f - 0.5f, b = x / 64.f - y / 32.f + 0.5f;  // 0 on cell edges
    float fa = a - std::floor(a), fb = b - std::floor(b);
    float sa = fa * 2, sb = fb * 2;
    int ia = std::min(1, int(sa)), ib = std::min(1, int(sb));
    float la = sa - ia, lb = sb - ib;
    float dLoA = la, dHiA = 1 - la, dLoB = lb, dHiB = 1 - lb;
    int ta = ia, tb = ib;
    if (merge & (ib == 0 ? 1 : 2)) {  // slabs (0, ib) and (1, ib) are one
        if (ia == 0) dHiA = 9; else dLoA = 9;
        ta = 0;
    }
    if (merge & (ia == 0 ? 4 : 8)) {  // slabs (ia, 0) and (ia, 1) are one
        if (ib == 0) dHiB = 9; else dLoB = 9;
        tb = 0;
    }
    float edge = std::min(std::min(dLoA, dHiA), std::min(dLoB, dHiB));  // 0 on joins
    float tone = Rand01(ta, tb, 31 + merge);
    Col c = Mix(Hex(0x6C6A64), Hex(0x8F8A80), tone);
    c = Mix(c, Hex(0x77705C), Rand01(tb, ta, 32) * 0.4f);
    float n = IsoNoise(x, y, 33, 6, 2);
    c = Shade(c, 0.9f + n * 0.2f);
    // Bevel: lit along the slab's upper-left sides, dark along the lower-right.
    float edgePx = edge * 22.f;
    if (edgePx < 1.3f) return Hex(0x3B3833);
    if (edgePx < 3.f) {
        // a grows towards the lower right, b towards the upper right.
        float s = (edge == dLoA) ? 1.2f : (edge == dHiA) ? 0.78f : (edge == dLoB) ? 0.92f : 1.08f;
        c = Shade(c, s);
    }
    c = Shade(c, 0.95f + IsoGrain(int(x), int(y), 34) * 0.09f);
    return c;
}

// The keep's flagstones after the fire: the same slabs under soot, darker in the
// joints, with scorch marks that wander across them.
Col ScorchBase(float x, float y, int merge = 0) {
    Col c = Shade(StoneBase(x, y, merge), 0.66f);
    c = Mix(c, Hex(0x161311), Smooth(0.5f, 0.85f, IsoNoise(x, y, 91, 3, 2)) * 0.55f);
    c = Mix(c, Hex(0x3A2A20), Smooth(0.6f, 0.9f, IsoNoise(x, y, 92, 2, 2)) * 0.35f);  // rust-brown heat stains
    return c;
}

Col Base(int type, float x, float y) {
    switch (type) {
        case kGrass: return GrassBase(x, y);
        case kDirt: return DirtBase(x, y);
        case kStone: return StoneBase(x, y);
        case kSand: return SandBase(x, y);
        case kWater: return WaterBase(x, y);
        case kRock: return RockBase(x, y);
        case kAsh: return AshBase(x, y);
        case kScorch: return ScorchBase(x, y);
        default: return CaveBase(x, y);
    }
}

Img BaseTile(int type) {
    Img im(64, 32);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            if (InDiamond(x, y)) im.Set(x, y, Base(type, x + 0.5f, y + 0.5f));
    return im;
}

// Interior detail painters; all stay where Inner() is comfortably above 0.
void GrassTuft(Img& im, float cx, float cy, Rng& r) {
    int blades = r.I(4, 7);
    for (int i = 0; i < blades; ++i) {
        float dx = r.R(-3.5f, 3.5f), len = r.R(3, 6.5f), lean = r.R(-2.f, 2.f);
        float bx = cx + dx, by = cy;
        Col c = Mix(Hex(0x4E6B2C), Hex(0x9AAA58), r.F());
        Paint(im, bx - 4, by - len - 2, bx + 4, by + 1,
              [&](float x, float y) { return SdSegment(x, y, bx, by, bx + lean, by - len, 0.55f); },
              [&](float x, float y, float) { return Shade(c, 0.8f + 0.4f * (by - y) / len); });
    }
}
void Flower(Img& im, float cx, float cy, Col petal) {
    Paint(im, cx - 3, cy - 3, cx + 3, cy + 3,
          [&](float x, float y) { return SdCircle(x, y, cx, cy, 1.3f); },
          [&](float x, float y, float) { return x + y < cx + cy ? Shade(petal, 1.2f) : petal; });
    im.Blend(int(cx), int(cy), Hex(0xE8D070), 0.8f);
}
void Pebble(Img& im, float cx, float cy, float r, Col c) {
    Paint(im, cx - r - 2, cy - r, cx + r + 3, cy + r + 2,
          [&](float x, float y) { return SdEllipse(x, y, cx + 1, cy + 1, r, r * 0.6f); },
          [&](float, float, float) { return Hex(0x000000); }, 0.3f);
    Paint(im, cx - r - 2, cy - r - 2, cx + r + 2, cy + r + 2,
          [&](float x, float y) { return SdEllipse(x, y, cx, cy, r, r * 0.62f); },
          [&](float x, float y, float d) {
              float l = ((cx - x) + (cy - y) * 1.6f) / (r * 1.6f);
              Col k = Shade(c, 1.f + l * 0.3f);
              return d > -0.8f ? Shade(c, 0.6f) : k;
          });
}
// Soft ring of light on water, squashed to the ground plane.
void Ripple(Img& im, float cx, float cy, float r, float strength) {
    for (int y = int(cy - r) - 2; y <= int(cy + r) + 2; ++y)
        for (int x = int(cx - 2 * r) - 2; x <= int(cx + 2 * r) + 2; ++x) {
            if (!im.In(x, y) || im.A(x, y) <= 0) continue;
            float fx = x + 0.5f, fy = y + 0.5f;
            float d = std::hypot((fx - cx) / 2.f, fy - cy) - r;
            float ring = std::exp(-d * d * 1.5f);
            float lit = (fy < cy) ? 1.f : 0.55f;  // upper half catches the sky
            float fade = Smooth(0.0f, 0.25f, Inner(fx, fy));
            im.Tint(x, y, Hex(0xA9CBCB), ring * strength * lit * fade);
        }
}

Img FullTile(int type, int k) {
    Img im = BaseTile(type);
    if (type == kStone || type == kScorch) {
        static const int kMerge[10] = {0, 1, 4, 3, 0, 12, 2, 8, 0, 3};
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 64; ++x)
                if (InDiamond(x, y))
                    im.Set(x, y, type == kStone ? StoneBase(x + 0.5f, y + 0.5f, kMerge[k % 10])
                                                : ScorchBase(x + 0.5f, y + 0.5f, kMerge[k % 10]));
    }
    // Broad light and dark patches of this picture only, gone before the edges, so a
    // field of random variants does not show the lattice.
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x) {
            if (!InDiamond(x, y)) continue;
            float fx = x + 0.5f, fy = y + 0.5f;
            float w = Smooth(0.f, 0.6f, Inner(fx, fy));
            float t = VNoise(fx / 11.f, fy / 6.f, uint32_t(type * 77 + k)) - 0.5f;
            im.Set(x, y, Shade(im.Get(x, y), 1.f + t * 0.3f * w));
        }
    Rng r(uint32_t(type * 1000 + k));
    auto spot = [&](float margin, float& x, float& y) {
        for (int t = 0; t < 40; ++t) {
            x = r.R(8, 56); y = r.R(4, 28);
            if (Inner(x, y) > margin) return true;
        }
        return false;
    };
    float x, y;
    switch (type) {
        case kGrass: {
            int tufts = k < 8 ? k % 3 : 2 + k % 2;
            for (int i = 0; i < tufts; ++i)
                if (spot(0.4f, x, y)) GrassTuft(im, x, y, r);
            if (k >= 8) {
                Col petals[] = {Hex(0xD8D4C8), Hex(0xC7A84A), Hex(0x9C84B8), Hex(0xC46A50)};
                int n = 3 + k % 3;
                for (int i = 0; i < n; ++i)
                    if (spot(0.3f, x, y)) Flower(im, x, y, petals[(k + i) % 4]);
            }
            if (k == 5 && spot(0.45f, x, y)) Pebble(im, x, y, 2.2f, Hex(0x8A8880));
            break;
        }
        case kDirt: {
            int n = 1 + k % 4;
            for (int i = 0; i < n; ++i)
                if (spot(0.35f, x, y)) Pebble(im, x, y, r.R(1.2f, 2.6f), Hex(0x8C8070));
            if (k % 3 == 1) {  // a shallow wheel rut across the middle
                float off = r.R(-4, 4);
                for (int yy = 0; yy < 32; ++yy)
                    for (int xx = 0; xx < 64; ++xx) {
                        if (!InDiamond(xx, yy)) continue;
                        float fx = xx + 0.5f, fy = yy + 0.5f;
                        float d = std::fabs((fy - 16 - off * 0.5f) - (fx - 32) * 0.5f);
                        float f = Smooth(0.1f, 0.35f, Inner(fx, fy));
                        if (d < 1.4f) im.Tint(xx, yy, Hex(0x4A3626), 0.45f * f);
                        else if (d < 2.6f) im.Tint(xx, yy, Hex(0xA48866), 0.25f * f);
                    }
            }
            if (k % 4 == 3 && spot(0.5f, x, y)) GrassTuft(im, x, y, r);
            break;
        }
        case kStone: {
            // Moss in the joints and stains, different per picture.
            for (int yy = 0; yy < 32; ++yy)
                for (int xx = 0; xx < 64; ++xx) {
                    if (!InDiamond(xx, yy)) continue;
                    float fx = xx + 0.5f, fy = yy + 0.5f;
                    float f = Smooth(0.1f, 0.3f, Inner(fx, fy));
                    float m = VNoise(fx / 6.f, fy / 4.f, 300 + k);
                    if (m > 0.72f) im.Tint(xx, yy, Hex(0x4E5E2E), (m - 0.72f) * 2.2f * f);
                    float s = VNoise(fx / 9.f, fy / 6.f, 400 + k);
                    if (k % 2 && s > 0.7f) im.Tint(xx, yy, Hex(0x4A443C), (s - 0.7f) * 1.5f * f);
                }
            if (k % 3 == 2 && spot(0.45f, x, y)) {  // a crack
                float ang = r.R(0, kPi), len = r.R(4, 8);
                float dx = std::cos(ang) * len, dy = std::sin(ang) * len * 0.5f;
                Paint(im, x - 10, y - 6, x + 10, y + 6,
                      [&](float px, float py) { return SdSegment(px, py, x - dx, y - dy, x + dx, y + dy, 0.45f); },
                      [&](float, float, float) { return Hex(0x35322D); });
            }
            break;
        }
        case kSand: {
            int n = k % 3;
            for (int i = 0; i < n; ++i)
                if (spot(0.35f, x, y)) Pebble(im, x, y, r.R(1.0f, 2.0f), Hex(0x9A9286));
            if (k % 4 == 1 && spot(0.45f, x, y)) {  // shell
                Paint(im, x - 3, y - 3, x + 3, y + 3,
                      [&](float px, float py) { return SdEllipse(px, py, x, y, 2.0f, 1.4f); },
                      [&](float px, float, float d) { return d > -0.6f ? Hex(0x8C7D6A) : Shade(Hex(0xE6DCC8), 1.f - (px - x) * 0.05f); });
            }
            if (k % 5 == 4 && spot(0.5f, x, y)) GrassTuft(im, x, y, r);
            break;
        }
        case kWater: {
            int n = 1 + k % 3;
            for (int i = 0; i < n; ++i)
                if (spot(0.4f, x, y)) Ripple(im, x, y, r.R(2.5f, 6.f), r.R(0.22f, 0.42f));
            int glints = k % 4 + 1;
            for (int i = 0; i < glints; ++i)
                if (spot(0.25f, x, y)) {
                    float len = r.R(2, 5);
                    Paint(im, x - len - 1, y - 1, x + len + 1, y + 1.5f,
                          [&](float px, float py) { return SdSegment(px, py, x - len, y, x + len, y, 0.5f); },
                          [&](float, float, float) { return Hex(0xCFE4E0); }, 0.7f);
                }
            break;
        }
        case kRock: {
            // Knobs of rock standing out of the mass, and now and then a seam of ore.
            int n = 1 + k % 3;
            for (int i = 0; i < n; ++i)
                if (spot(0.35f, x, y)) Pebble(im, x, y, r.R(2.f, 4.f), Hex(0x241E19));
            if (k == 1 && spot(0.45f, x, y)) {
                float ang = r.R(0, kPi), len = r.R(4, 7);
                float dx = std::cos(ang) * len, dy = std::sin(ang) * len * 0.5f;
                Paint(im, x - 12, y - 7, x + 12, y + 7,
                      [&](float px, float py) { return SdSegment(px, py, x - dx, y - dy, x + dx, y + dy, 0.7f); },
                      [&](float px, float, float) { return Rand01(int(px), 0, 75 + k) > 0.6f ? Hex(0xB08A48) : Hex(0x6A4E30); });
            }
            break;
        }
        case kScorch: {
            // A crack, a drift of ash in the joints, cinders.
            if (k % 3 != 0 && spot(0.45f, x, y)) {
                float ang = r.R(0, kPi), len = r.R(5, 10);
                float dx = std::cos(ang) * len, dy = std::sin(ang) * len * 0.5f;
                Paint(im, x - 12, y - 7, x + 12, y + 7,
                      [&](float px, float py) { return SdSegment(px, py, x - dx, y - dy, x + dx, y + dy, 0.5f); },
                      [&](float, float, float) { return Hex(0x0E0C0B); });
            }
            for (int yy = 0; yy < 32; ++yy)
                for (int xx = 0; xx < 64; ++xx) {
                    if (!InDiamond(xx, yy)) continue;
                    float fx = xx + 0.5f, fy = yy + 0.5f;
                    float f = Smooth(0.1f, 0.3f, Inner(fx, fy));
                    float a = VNoise(fx / 7.f, fy / 4.f, 500 + k);
                    if (a > 0.68f) im.Tint(xx, yy, Hex(0x7A746C), (a - 0.68f) * 2.f * f);
                }
            if (k % 4 == 1 && spot(0.3f, x, y))
                Paint(im, x - 2, y - 2, x + 2, y + 2, [&](float px, float py) { return SdCircle(px, py, x, y, 0.9f); },
                      [&](float, float, float) { return Hex(0xC8582A); });
            break;
        }
        case kAsh: {
            // Drifts of pale ash and patches of char of this picture only, then charred
            // sticks, cinders and, on a few pictures, a scorched bone.
            for (int yy = 0; yy < 32; ++yy)
                for (int xx = 0; xx < 64; ++xx) {
                    if (!InDiamond(xx, yy)) continue;
                    float fx = xx + 0.5f, fy = yy + 0.5f;
                    float f = Smooth(0.f, 0.45f, Inner(fx, fy));
                    float a = VNoise(fx / 8.f, fy / 4.f, 600 + k), b = VNoise(fx / 6.f, fy / 3.f, 700 + k);
                    if (a > 0.6f) im.Tint(xx, yy, Hex(0x8E8880), (a - 0.6f) * 1.6f * f);
                    if (b > 0.62f) im.Tint(xx, yy, Hex(0x100D0C), (b - 0.62f) * 1.8f * f);
                }
            int n = k % 3;
            for (int i = 0; i < n; ++i)
                if (spot(0.4f, x, y)) {
                    float ang = r.R(0, kPi), len = r.R(3, 7);
                    float dx = std::cos(ang) * len, dy = std::sin(ang) * len * 0.5f;
                    Paint(im, x - 10, y - 6, x + 10, y + 6,
                          [&](float px, float py) { return SdSegment(px, py, x - dx, y - dy, x + dx, y + dy, 1.f); },
                          [&](float, float py, float d) { return d > -0.5f ? Hex(0x0C0A09) : (py < y ? Hex(0x3A302A) : Hex(0x1A1614)); });
                }
            int cinders = 1 + k % 4;
            for (int i = 0; i < cinders; ++i)
                if (spot(0.3f, x, y)) {
                    Paint(im, x - 2, y - 2, x + 2, y + 2, [&](float px, float py) { return SdCircle(px, py, x, y, 0.9f); },
                          [&](float, float, float) { return i % 2 ? Hex(0xE07A30) : Hex(0x9A3A1A); });
                }
            if (k % 5 == 3 && spot(0.45f, x, y))
                Paint(im, x - 6, y - 3, x + 6, y + 3,
                      [&](float px, float py) { return SdSegment(px, py, x - 3.5f, y + 1, x + 3.5f, y - 1, 0.8f); },
                      [&](float, float py, float d) { return d > -0.4f ? Hex(0x3A3530) : (py < y ? Hex(0xA8A090) : Hex(0x807868)); });
            break;
        }
        default: {
            int n = 1 + k % 3;
            for (int i = 0; i < n; ++i)
                if (spot(0.35f, x, y)) Pebble(im, x, y, r.R(1.3f, 3.f), Hex(0x6A625A));
            if (k == 2 && spot(0.4f, x, y)) {  // puddle
                float rx = r.R(5, 8), ry = rx * 0.45f;
                Paint(im, x - rx - 1, y - ry - 1, x + rx + 1, y + ry + 1,
                      [&](float px, float py) { return SdEllipse(px, py, x, y, rx, ry); },
                      [&](float px, float py, float) { return Mix(Hex(0x1E2A30), Hex(0x4C6068), Clamp01((x - px + y - py) / rx * 0.5f + 0.2f)); });
            }
            if (k % 5 == 3 && spot(0.4f, x, y)) {  // old bone
                Paint(im, x - 6, y - 3, x + 6, y + 3,
                      [&](float px, float py) { return SdSegment(px, py, x - 3.5f, y + 1, x + 3.5f, y - 1, 0.8f); },
                      [&](float, float py, float d) { return d > -0.4f ? Hex(0x6E6658) : (py < y ? Hex(0xCFC7B0) : Hex(0xA79F8A)); });
            }
            break;
        }
    }
    // Details must not spill over the diamond onto the neighbours' places.
    for (int yy = 0; yy < 32; ++yy)
        for (int xx = 0; xx < 64; ++xx)
            if (!InDiamond(xx, yy)) im.Set(xx, yy, {}, 0.f);
    return im;
}

// One ground to another: the field below 0.5 is the base ground, above is the other.
Img TransitionTile(int base, int other, int mask, int variant) {
    float cN = (mask >> 3) & 1, cE = (mask >> 2) & 1, cS = (mask >> 1) & 1, cW = mask & 1;
    Img im(64, 32);
    const uint32_t seed = base == kGrass ? 0u : 100u * uint32_t(base);  // grass pieces keep their seeds
    auto corners = [&](float x, float y) {  // the corner values spread over the diamond
        float a = (x - 32) / 64.f + y / 32.f, b = -(x - 32) / 64.f + y / 32.f;
        return cN * (1 - a) * (1 - b) + cE * a * (1 - b) + cW * (1 - a) * b + cS * a * b;
    };
    auto field = [&](float x, float y) {
        float v = corners(x, y);
        float n = IsoNoise(x, y, seed + 700 + other, 2, 3) - 0.5f;
        float extra = (VNoise(x / 9.f, y / 5.f, seed + 800 + other * 10 + variant) - 0.5f) *
                      Smooth(0.f, 0.3f, Inner(x, y));
        return v + n * 0.42f + extra * 0.22f;
    };
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x) {
            if (!InDiamond(x, y)) continue;
            float fx = x + 0.5f, fy = y + 0.5f;
            float f = field(fx, fy);
            Col g = Base(base, fx, fy), o = Base(other, fx, fy);
            float t = Smooth(0.47f, 0.53f, f);
            Col c = Mix(g, o, t);
            float dEdge = (f - 0.5f);  // signed, >0 on the other side
            if (other == kRock) {
                // The rock stands above the floor. Where it lies up the screen its face
                // drops in front of it down to a shadow on the floor; its lip catches
                // the light. Elsewhere only a narrow shadow runs along its foot.
                float gy = field(fx, fy + 1.f) - field(fx, fy - 1.f);  // < 0: rock above
                // No face along an edge whose two corners are both floor: the full
                // floor tile beside it has none either.
                float up = Smooth(0.015f, 0.05f, -gy) * Smooth(0.05f, 0.2f, corners(fx, fy));
                const float band = 0.45f;
                float depth = (0.5f - f) / band;  // 0 at the lip, 1 at the foot of the face
                if (f < 0.5f && depth < 1.f && up > 0.f) {
                    float strata = VNoise(fx / 2.f, fy / 9.f, seed + 901 + variant);
                    Col face = Mix(Hex(0x3C3026), Hex(0x66543F), strata);
                    if (std::fmod(fy + strata * 6.f, 6.f) < 1.f) face = Shade(face, 0.72f);  // ledges
                    face = Shade(face, 1.1f - depth * 0.55f);
                    c = Mix(c, face, up * Smooth(1.f, 0.88f, depth));
                }
                if (f < 0.5f) {
                    // Shadow at the foot of the face, or along the edge where no face shows.
                    float footShadow = std::exp(-std::pow((depth - 1.05f) * 7.f, 2.f)) * up;
                    float edgeShadow = Smooth(0.5f, 0.f, depth) * (1 - up);
                    c = Shade(c, 1.f - 0.5f * footShadow - 0.4f * edgeShadow);
                } else {
                    c = Shade(c, 1.f + 0.3f * Smooth(0.6f, 0.5f, f) * (0.4f + up));  // lit lip
                }
            } else if (other == kWater) {
                // Muddy bank on the grass side, a pale line of foam at the water's edge.
                c = Mix(c, Hex(0x4A4330), Smooth(0.28f, 0.47f, f) * (1 - t) * 0.85f);
                float foam = std::exp(-std::pow((dEdge - 0.04f) * 45.f, 2.f));
                float brk = VNoise(fx / 3.f, fy / 2.f, 901 + variant);
                c = Mix(c, Hex(0xB9CFCB), foam * (0.4f + 0.5f * brk));
            } else {
                // The grass edge casts a little shade onto the lower ground, lit side up-left.
                float sh = Smooth(0.5f, 0.58f, f) * (1 - Smooth(0.58f, 0.66f, f));
                c = Shade(c, 1.f - sh * 0.35f);
                float rim = Smooth(0.4f, 0.47f, f) * (1 - t);
                c = Shade(c, 1.f + rim * 0.18f);
            }
            im.Set(x, y, c);
        }
    return im;
}

std::string Tsx(const TileType& t) {
    char buf[1024];
    std::snprintf(buf, sizeof buf,
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                  "<tileset version=\"1.10\" tiledversion=\"1.10.0\" name=\"%s\" tilewidth=\"64\" "
                  "tileheight=\"32\" tilecount=\"200\" columns=\"10\">\n"
                  " <properties>\n  <property name=\"tiletype\" type=\"int\" value=\"%d\"/>\n"
                  "  <property name=\"prefix\" value=\"%s\"/>\n  <property name=\"pictures\" "
                  "type=\"int\" value=\"%d\"/>\n </properties>\n"
                  " <image source=\"sheet_%d.png\" width=\"640\" height=\"640\"/>\n",
                  t.name.c_str(), t.type, t.prefix.c_str(), t.count, t.type);
    return std::string(buf) + "</tileset>\n";
}

// A patch of ground laid out the way the map compiler lays cells, for review: grass
// with a pond, a road, a paved square and a sandy bank, all joined by corner pieces.
Img GroundScene() {
    const int n = 20;
    auto terrain = [&](int i, int j) {
        float fi = float(i), fj = float(j);
        if (std::hypot(fi - 5, fj - 6) < 3.2f) return kWater;
        if (std::hypot(fi - 5, fj - 6) < 4.6f && fj > 5) return kSand;
        if (std::fabs(fi - fj * 0.7f - 6.5f) < 1.2f && fj > 9) return kDirt;
        if (fi > 12 && fi < 17 && fj > 2 && fj < 7) return kStone;
        return kGrass;
    };
    Img im(64 * n + 64, 32 * n + 32);
    im.Fill(Hex(0x000000));
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            int c[4] = {terrain(i, j), terrain(i + 1, j), terrain(i + 1, j + 1), terrain(i, j + 1)};
            int other = kGrass;
            for (int v : c)
                if (v != kGrass) other = v;
            int mask = 0;
            for (int v = 0; v < 4; ++v)
                if (c[v] == other && other != kGrass) mask |= 8 >> v;
            uint32_t h = Hash3(i, j, 5);
            Img t;
            if (mask == 0) t = FullTile(kGrass, int(h % 12));
            else if (mask == 15) t = FullTile(other, int(h % (other == kWater ? 16 : 10)));
            else t = TransitionTile(kGrass, other, mask, int(h % 2));
            im.Draw(t, 32 * (i - j) + 32 * n - 32, 16 * (i + j));
        }
    return im;
}

// A stretch of mine for review: rock with tunnels and a chamber cut into it, the way
// the maps lay cave floor and rock pieces.
Img CaveScene() {
    const int n = 20;
    auto floor = [&](int i, int j) {
        float fi = float(i), fj = float(j);
        if (std::fabs(fj - 6.f) <= 1.5f && i > 0) return true;           // gallery along the first axis
        if (std::fabs(fi - 12.f) <= 1.2f && j >= 6 && j < 17) return true;  // side tunnel
        return std::hypot(fi - 12.f, fj - 14.f) < 3.6f;                    // chamber
    };
    Img im(64 * n + 64, 32 * n + 32);
    im.Fill(Hex(0x000000));
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            int mask = (floor(i, j) ? 0 : 8) | (floor(i + 1, j) ? 0 : 4) | (floor(i + 1, j + 1) ? 0 : 2) |
                       (floor(i, j + 1) ? 0 : 1);
            uint32_t h = Hash3(i, j, 6);
            Img t;
            if (mask == 0) t = FullTile(kCave, int(h % 10));
            else if (mask == 15) t = FullTile(kRock, int(h % 10));
            else t = TransitionTile(kCave, kRock, mask, int(h % 2));
            im.Draw(t, 32 * (i - j) + 32 * n - 32, 16 * (i + j));
        }
    return im;
}

}  // namespace

bool KnownGround(const std::string& name) {
    for (const auto& g : kGrounds)
        if (name == g.name) return true;
    return false;
}

void GenTiles(Output& out, const std::string& tilesetDir) {
    const std::vector<TileType>& types = GetRecipes().tiles;
    std::string ini = "[typecount]\r\ncount=" + std::to_string(types.size()) + "\r\n";
    std::string man =
        "# tiles manifest: <type> <k> <sheet x> <sheet y> <file> <role...>\n"
        "# picture k of a type sits on its 640x640 tile sheet at (k%10*64, (k%100)/10*32).\n"
        "# roles: '<ground> full <variant>' or '<grass-other> NESW=<nesw> <variant>', where a 1 corner\n"
        "# is the other ground and mask = 8N+4E+2S+1W, k = mask-1 + 14*variant.\n";
    for (const TileType& t : types) {
        ini += "\r\n[" + std::to_string(t.type) + "]\r\npiccount=" + std::to_string(t.count) +
               "\r\n" + Utf8ToGbk("前缀") + "=" + t.prefix + "\r\n" + Utf8ToGbk("起始数") +
               "=1\r\n" + Utf8ToGbk("末尾数") + "=" + std::to_string(t.count) + "\r\n" +
               Utf8ToGbk("补位") + "=true\r\n";
        Img sheet(640, 640);
        for (int k = 0; k < t.count; ++k) {
            Img im;
            std::string role;
            if (t.base == 0) {
                im = FullTile(GroundOf(t.name), k);
                role = t.name + " full " + std::to_string(k);
            } else {
                const Ground base = GroundOf(types[size_t(t.base - 1)].name);
                const Ground other = GroundOf(types[size_t(t.other - 1)].name);
                int mask = k % 14 + 1, variant = k / 14;
                im = TransitionTile(base, other, mask, variant);
                char nesw[5] = {char('0' + ((mask >> 3) & 1)), char('0' + ((mask >> 2) & 1)),
                                char('0' + ((mask >> 1) & 1)), char('0' + (mask & 1)), 0};
                role = t.name + " NESW=" + nesw + " " + std::to_string(variant);
            }
            char file[32];
            std::snprintf(file, sizeof file, "%s%02d.bmp", t.prefix.c_str(), k + 1);
            int sx = k % 10 * 64, sy = (k % 100) / 10 * 32;
            out.AddPicture("tiles", "tiles/" + std::to_string(t.type) + "/" + file, im);
            sheet.Draw(im, sx, sy);
            man += std::to_string(t.type) + " " + std::to_string(k) + " " + std::to_string(sx) +
                   " " + std::to_string(sy) + " " + file + " " + role + "\n";
        }
        if (!tilesetDir.empty()) {
            WritePng(tilesetDir + "/sheet_" + std::to_string(t.type) + ".png", 640, 640,
                     ToRgb8(sheet), true);
            std::string tsx = Tsx(t);
            WriteFile(tilesetDir + "/tiles_" + std::to_string(t.type) + ".tsx",
                      std::vector<uint8_t>(tsx.begin(), tsx.end()));
        }
    }
    out.AddText("ini/tiles.ini", ini);
    Img scene = GroundScene();
    out.AddReview("scene", "ground", scene);
    Img zoom(640, 400);
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 640; ++x) zoom.Set(x, y, scene.Get(250 + x / 2, 60 + y / 2));
    out.AddReview("scene", "ground_zoom", zoom);
    Img cave = CaveScene();
    out.AddReview("scene", "cave", cave);
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 640; ++x) zoom.Set(x, y, cave.Get(420 + x / 2, 100 + y / 2));
    out.AddReview("scene", "cave_zoom", zoom);
    out.AddText("manifest/tiles.txt", man);
}

}  // namespace art
