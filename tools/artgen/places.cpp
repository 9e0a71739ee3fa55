// Map objects of the places beyond the village: the Greycloak camp at the ford (tents,
// palisades, banner, weapon rack), the Old Mine (timber frames, rails, carts, ore,
// rock spires, lanterns, bones), Cinder Keep (keep walls whole and broken, towers,
// pillars, burned timbers, rubble, the throne, braziers), the Ember Shrine (chapel,
// standing stone, steps, crags) and a few more for the village (fields, the smithy,
// the armourer's stand), plus six-cell bridges for the river at the ford.
#include <algorithm>
#include <array>
#include <cmath>

#include "objkit.h"

namespace art {
namespace obj {
namespace {

// An empty object of U x V cells and height H (pixels above the ground) with a margin
// m all round: the anchor puts the footprint's top corner at the picture's centre line.
ObjDef Make(const char* name, int U, int V, int H, int m = 6) {
    ObjDef o;
    o.name = name;
    o.ax = 32 * (V - 1) + m;
    o.ay = H + m;
    o.im = Img(32 * (U + V) + 2 * m, H + 16 * (U + V) + 2 * m);
    return o;
}

// A soft dark shadow for things standing on stone or rock (the grass shadow is green).
void StoneShadow(Img& im, float cx, float cy, float rx, float ry) {
    Paint(im, cx - rx - 1, cy - ry - 1, cx + rx + 1, cy + ry + 1,
          [&](float x, float y) { return SdEllipse(x, y, cx, cy, rx, ry); },
          [&](float, float, float) { return Hex(0x1C1A18); });
}

void BlockAll(ObjDef& o, int U, int V) {
    for (int i = 0; i < U; ++i)
        for (int j = 0; j < V; ++j) o.block.push_back({i, j});
}

Col Soot(Col c, float x, float z, float ztop, uint32_t seed) {
    float k = Smooth(ztop - 40, ztop, z) * 0.55f + Smooth(0.45f, 0.8f, VNoise(x / 3.f, z / 22.f, seed)) * 0.5f;
    return Mix(c, Hex(0x1E1A18), Clamp01(k));
}

Col Char(float along, float across, uint32_t seed) {
    // Charred wood: black with a crackle of lighter fissures.
    float n = VNoise(along / 2.5f, across / 1.5f, seed);
    Col c = Mix(Hex(0x141010), Hex(0x2E2420), n);
    float cr = std::fabs(std::fmod(along * 0.9f + VNoise(along / 4.f, across, seed + 1) * 6.f, 5.f) - 2.5f);
    if (cr < 0.35f) c = Hex(0x3E3028);
    return c;
}

// A box-section beam from a to b (ground points with heights), w wide and h thick:
// its top, the long side towards the viewer and the near end.
void Beam(Img& im, const Iso& iso, V3 a, V3 b, float w, float h, uint32_t seed, bool charred, Col wood) {
    float du = b.u - a.u, dv = b.v - a.v;
    float len = std::sqrt(du * du + dv * dv);
    if (len < 1e-3f) return;
    V3 n{-dv / len * w, du / len * w, 0};  // across the beam
    if (n.u + n.v < 0) n = n * -1.f;
    V3 axis = b + a * -1.f;
    auto tex = [&](float s, float t, float light) {
        Col c = charred ? Char(s * len * 36.f, t * 6.f, seed) : Planks(t * 10.f, s * len * 36.f, seed, wood, 40.f);
        return Shade(c, light);
    };
    V3 lo = a + n * -0.5f;
    // Side facing the viewer.
    Quad(im, iso, lo + n, axis, {0, 0, h},
         [&](float s, float t) { return tex(s, t, Light({n.u, n.v, 0}) * 0.95f); }, kInk);
    // Top.
    Quad(im, iso, lo + V3{0, 0, h}, axis, n,
         [&](float s, float t) { return tex(s, t, Light({0, 0, 1})); }, kInk);
    // The near end (whichever end lies further down the screen).
    bool bNear = (b.u + b.v) >= (a.u + a.v);
    V3 e = bNear ? b + n * -0.5f : lo;
    Quad(im, iso, e, n, {0, 0, h},
         [&](float s, float t) {
             Col c = charred ? Mix(Hex(0x2A1E18), Hex(0x7A3A1A), Smooth(0.6f, 0.1f, std::hypot(s - 0.5f, t - 0.5f)))
                             : Shade(wood, 1.1f - std::hypot(s - 0.5f, t - 0.5f) * 0.4f);
             if (charred && std::hypot(s - 0.5f, t - 0.5f) < 0.22f) c = Hex(0xD06A28);  // the ember heart
             return c;
         },
         kInk);
}

// ---------------------------------------------------------------- the ford and the camp

// A bridge deck n cells long and two cells wide, lying flat: the road over the river
// at the ford. Every cell of the deck is walkable.
ObjDef WideBridge(bool alongV, int n) {
    const int U = alongV ? 2 : n, V = alongV ? n : 2;
    ObjDef o = Make(alongV ? "bridge_v6" : "bridge_u6", U, V, 8, 4);
    for (int k = 0; k < n; ++k)
        for (int w = 0; w < 2; ++w) {
            Cell c = alongV ? Cell{w, k} : Cell{k, w};
            o.ground.push_back(c);
            o.walk.push_back(c);
        }
    Iso iso = IsoAt(o.ax, o.ay);
    auto P = [&](float a, float b, float z) { return alongV ? V3{b, a, z} : V3{a, b, z}; };
    Col wood = Hex(0x7E6040);
    V3 along = P(float(n), 0, 0);
    // Side beam below the near edge, then the deck of planks laid across the span.
    Quad(o.im, iso, P(0, 1.9f, -5), along, {0, 0, 5},
         [&](float s, float) { return Shade(Hex(0x4A3826), 0.9f + VNoise(s * 40, 0, 2) * 0.2f); }, kInk);
    Quad(o.im, iso, P(0, 0.1f, 0), along, P(0, 1.8f, 0),
         [&](float s, float t) {
             float x = s * n * 35.8f;
             Col c = Planks(x, t * 60, 13, wood, 6.f);
             if (Rand01(int(x / 6.f), 0, 14) > 0.85f) c = Shade(c, 0.8f);  // an older plank
             if (std::fabs(t - 0.5f) < 0.01f) c = Shade(c, 0.85f);     // the joint down the middle
             return Shade(c, Light({0, 0, 1}) * (1.02f - t * 0.06f));
         }, kInk);
    // Rails drawn flat along both edges, with post heads.
    for (float b : {0.12f, 1.88f}) {
        Quad(o.im, iso, P(0, b - 0.04f, 0), along, P(0, 0.08f, 0),
             [&](float, float t) { return Shade(Hex(0x5A422C), 1.15f - t * 0.3f); }, kInk);
        for (int k = 0; k <= n; ++k) {
            V3 p = P(std::min(float(k), n - 0.12f), b - 0.06f, 0);
            Quad(o.im, iso, p, {0.12f, 0, 0}, {0, 0.12f, 0},
                 [&](float s, float t) { return Shade(Hex(0x4A3624), 1.2f - (s + t) * 0.25f); }, kInk);
        }
    }
    return o;
}

ObjDef Tent(uint32_t seed) {
    const int U = 2, V = 2;
    ObjDef o = Make("tent", U, V, 64);
    BlockAll(o, U, V);
    o.ground = {{1, 1}, {0, 1}, {1, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    const float u0 = 0.12f, u1 = 1.88f, v0 = 0.18f, v1 = 1.82f, vr = 1.f, zr = 54.f, ze = 5.f;
    Col canvas = Hex(0x8C8472);
    auto cloth = [&](float along, float down, float light) {
        Col c = Shade(canvas, 0.92f + VNoise(along / 14.f, down / 6.f, seed) * 0.16f);
        // Patches sewn on over the years.
        int pa = int(std::floor(along / 22.f)), pd = int(std::floor(down / 16.f));
        if (Rand01(pa, pd, seed + 3) > 0.78f) c = Mix(c, Rand01(pd, pa, seed) > 0.5f ? Hex(0x6E6A5E) : Hex(0x9A8A68), 0.7f);
        if (std::fmod(along + 200.f, 22.f) < 0.8f || std::fmod(down + 200.f, 16.f) < 0.6f) c = Shade(c, 0.85f);
        c = Mix(c, Hex(0x4A4236), Smooth(0.75f, 1.f, down / 60.f) * 0.5f);  // mud along the hem
        return Shade(c, light);
    };
    // Back slope, then the skirt and the slope towards the viewer, then the gable end.
    Quad(o.im, iso, {u0, vr, zr}, {u1 - u0, 0, 0}, {0, v0 - vr, ze - zr},
         [&](float s, float t) { return cloth(s * 70, t * 60, 0.8f); }, kInk);
    Quad(o.im, iso, {u0, v1, 0}, {u1 - u0, 0, 0}, {0, 0, ze},
         [&](float s, float) { return cloth(s * 70, 58, Light({0, 1, 0}) * 0.8f); }, kInk);
    Quad(o.im, iso, {u0, vr, zr}, {u1 - u0, 0, 0}, {0, v1 - vr, ze - zr},
         [&](float s, float t) {
             Col c = cloth(s * 70, t * 60, Light({0, 0.9f, 0.6f}));
             if (t < 0.04f) c = Shade(c, 0.8f);  // the ridge seam
             return c;
         },
         kInk);
    Face(o.im, iso, {{u1, v0, 0}, {u1, v1, 0}, {u1, v1, ze}, {u1, vr, zr}, {u1, v0, ze}}, {u1, v1, 0}, {0, v0 - v1, 0},
         {0, 0, zr},
         [&](float s, float t) {
             Col c = cloth(s * 55 + 90, (1 - t) * 60, Light({1, 0, 0}));
             // The door: an opening with its flaps tied back.
             float dx = std::fabs(s - 0.5f);
             if (dx < 0.3f * (1 - t / 0.8f) && t < 0.8f) c = Mix(Hex(0x1C1814), Hex(0x2E2820), t);
             else if (dx < 0.36f * (1 - t / 0.85f) && t < 0.85f) c = Shade(c, 0.7f);
             return c;
         },
         kInk);
    // Ridge pole ends and guy ropes with their pegs.
    for (float u : {u0 - 0.08f, u1 + 0.08f}) {
        float x = iso.X({u, vr, zr + 2}), y = iso.Y({u, vr, zr + 2});
        Paint(o.im, x - 3, y - 3, x + 3, y + 3, [&](float px, float py) { return SdCircle(px, py, x, y, 1.8f); },
              [&](float, float, float d) { return d > -0.6f ? kInk : Hex(0x6A5038); });
    }
    for (float u : {0.45f, 1.55f}) {
        V3 top{u, v1 - 0.1f, 10}, peg{u, v1 + 0.12f, 0};
        float x0 = iso.X(top), y0 = iso.Y(top), x1 = iso.X(peg), y1 = iso.Y(peg);
        Paint(o.im, std::min(x0, x1) - 2, std::min(y0, y1) - 2, std::max(x0, x1) + 2, std::max(y0, y1) + 3,
              [&](float px, float py) { return SdSegment(px, py, x0, y0, x1, y1, 0.5f); },
              [&](float, float, float) { return Hex(0x5A4E3A); });
    }
    return o;
}

ObjDef Palisade(bool alongV, uint32_t seed) {
    ObjDef o = Make(alongV ? "palisade_v" : "palisade_u", 1, 1, 56);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    auto P = [&](float a, float b, float z) { return alongV ? V3{b, a, z} : V3{a, b, z}; };
    Rng r(seed);
    for (int k = 0; k < 5; ++k) {
        float a = 0.1f + k * 0.2f, h = r.R(36, 46);
        V3 base = P(a, 0.5f, 0);
        float x = iso.X(base), y = iso.Y(base);
        Cylinder(o.im, iso, base.u, base.v, 0, 4.2f, h,
                 [&](float ang, float z, float light) {
                     Col c = Shade(Hex(0x6E5236), light * (0.9f + VNoise(ang * 3.f, z / 7.f, seed + k) * 0.2f));
                     if (std::fabs(z - 12) < 1.5f || std::fabs(z - 30) < 1.5f) c = Hex(0x4A3C2A);  // lashings
                     return c;
                 },
                 Hex(0x9A7A52));
        Poly(o.im, {x - 4.2f, y - h, x + 4.2f, y - h, x, y - h - 10},
             [&](float px, float) { return Shade(Hex(0xA88A60), px < x ? 1.15f : 0.8f); }, kInk);
    }
    return o;
}

ObjDef Banner(uint32_t seed) {
    ObjDef o = Make("banner", 1, 1, 112);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Shadow(o.im, cx + 5, cy + 2, 12, 5);
    // Stones heaped round the foot of the pole.
    for (int k = 0; k < 5; ++k) {
        float a = k * 1.26f;
        Boulder(o.im, cx + std::cos(a) * 8, cy + std::sin(a) * 4 + 2, 4, 3, seed + k, Hex(0x6E6A62));
    }
    Poly(o.im, {cx - 2, cy + 1, cx + 2, cy + 1, cx + 2, cy - 104, cx - 2, cy - 104},
         [&](float x, float) { return Shade(Hex(0x5E4630), x < cx ? 1.15f : 0.75f); }, kInk);
    // Cross bar along u, and the cloth hanging from it in the plane v = 0.5.
    V3 l{0.2f, 0.5f, 98}, rr{0.8f, 0.5f, 98};
    Quad(o.im, iso, l, rr + l * -1.f, {0, 0, 3}, [&](float, float) { return Hex(0x4E3A28); }, kInk);
    Face(o.im, iso,
         {{0.24f, 0.5f, 96}, {0.76f, 0.5f, 96}, {0.76f, 0.5f, 46}, {0.5f, 0.5f, 56}, {0.24f, 0.5f, 44}},
         {0.24f, 0.5f, 44}, {0.52f, 0, 0}, {0, 0, 52},
         [&](float s, float t) {
             float wave = std::sin(s * 9.f + t * 2.f) * 0.06f;
             Col c = Shade(Hex(0x7C7E82), Light({0, 1, 0}) * (1.f + wave) * (0.92f + VNoise(s * 8, t * 6, seed) * 0.16f));
             // The hooded cloak of the Greycloaks, dark on the grey.
             float hx = (s - 0.5f) * 2.f, hy = (t - 0.62f) * 2.f;
             bool hood = std::hypot(hx * 1.2f, hy * 1.1f) < 0.33f;
             bool cloak = hy < 0.05f && hy > -0.85f && std::fabs(hx) < 0.22f + (0.05f - hy) * 0.45f;
             if (hood || cloak) c = Hex(0x2A2C30);
             if (std::hypot(hx * 1.2f, (hy + 0.02f) * 1.1f) < 0.16f) c = Hex(0x5A5C60);  // the face in shadow
             if (t > 0.94f) c = Hex(0x3A3C40);  // hem
             return c;
         },
         kInk);
    return o;
}

ObjDef WeaponRack(uint32_t seed) {
    ObjDef o = Make("weaponrack", 1, 1, 70);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Col wood = Hex(0x6A4E34);
    // Two trestles along u and a bar across them.
    for (float u : {0.18f, 0.82f}) {
        float x = iso.X({u, 0.5f, 0}), y = iso.Y({u, 0.5f, 0});
        for (int s = -1; s <= 1; s += 2)
            Paint(o.im, x - 12, y - 40, x + 12, y + 2,
                  [&](float px, float py) { return SdSegment(px, py, x + s * 7, y, x, y - 36, 1.6f); },
                  [&](float, float, float d) { return d > -0.6f ? kInk : Shade(wood, s < 0 ? 1.1f : 0.8f); });
    }
    Quad(o.im, iso, {0.1f, 0.5f, 34}, {0.8f, 0, 0}, {0, 0, 3},
         [&](float s, float) { return Shade(wood, 1.f + (VNoise(s * 20, 0, seed) - 0.5f) * 0.3f); }, kInk);
    // Spears leaning on the bar, then a round shield at the foot.
    for (int k = 0; k < 5; ++k) {
        float u = 0.2f + k * 0.15f;
        float bx = iso.X({u, 0.78f, 0}), by = iso.Y({u, 0.78f, 0});
        float tx = iso.X({u + 0.03f, 0.42f, 62}), ty = iso.Y({u + 0.03f, 0.42f, 62});
        Paint(o.im, std::min(bx, tx) - 3, ty - 12, std::max(bx, tx) + 3, by + 2,
              [&](float px, float py) { return SdSegment(px, py, bx, by, tx, ty, 0.9f); },
              [&](float, float, float d) { return d > -0.3f ? kInk : Hex(0x7A5C3E); });
        float dx = tx - bx, dy = ty - by, l = std::hypot(dx, dy);
        float hx = tx + dx / l * 8, hy = ty + dy / l * 8;
        Poly(o.im, {tx - 2.2f, ty + 1, tx + 2.2f, ty + 1, hx, hy}, [&](float, float) { return Hex(0xB8BCC0); }, kInk, 0.6f);
    }
    float sx = iso.X({0.55f, 0.9f, 14}), sy = iso.Y({0.55f, 0.9f, 14});
    Paint(o.im, sx - 13, sy - 16, sx + 13, sy + 16, [&](float x, float y) { return SdEllipse(x, y, sx, sy, 10, 13); },
          [&](float x, float y, float d) {
              if (d > -1.f) return kInk;
              float rr = std::hypot((x - sx) / 10, (y - sy) / 13);
              if (rr < 0.25f) return Hex(0x9A9A98);  // boss
              Col c = Planks(x * 2, y, seed + 4, Hex(0x5A5C62), 4.f);
              if (rr > 0.82f) c = Hex(0x8A8C90);  // iron rim
              return Shade(c, 1.1f - (x - sx) / 30.f);
          });
    return o;
}

// ---------------------------------------------------------------- the keep

ObjDef Timbers(bool alongV, uint32_t seed) {
    const int U = alongV ? 1 : 2, V = alongV ? 2 : 1;
    ObjDef o = Make(alongV ? "timbers_v" : "timbers", U, V, 40);
    BlockAll(o, U, V);
    o.ground = o.block;
    Iso iso = IsoAt(o.ax, o.ay);
    auto P = [&](float a, float b, float z) { return alongV ? V3{b, a, z} : V3{a, b, z}; };
    // A heap of ash under the beams.
    float cx = iso.X(P(1.f, 0.5f, 0)), cy = iso.Y(P(1.f, 0.5f, 0));
    Paint(o.im, cx - 50, cy - 14, cx + 50, cy + 14, [&](float x, float y) { return SdEllipse(x, y, cx, cy, 44, 13); },
          [&](float x, float y, float) { return Mix(Hex(0x4A4440), Hex(0x2A2624), VNoise(x / 5, y / 3, seed)); });
    Beam(o.im, iso, P(0.1f, 0.25f, 0), P(1.9f, 0.4f, 0), 0.2f, 7, seed, true, {});
    Beam(o.im, iso, P(0.25f, 0.8f, 0), P(1.7f, 0.55f, 14), 0.18f, 6, seed + 1, true, {});
    Beam(o.im, iso, P(0.4f, 0.3f, 8), P(1.3f, 0.85f, 0), 0.16f, 6, seed + 2, true, {});
    Beam(o.im, iso, P(1.2f, 0.15f, 0), P(1.85f, 0.8f, 20), 0.15f, 5, seed + 3, true, {});
    return o;
}

ObjDef Rubble(uint32_t seed) {
    ObjDef o = Make("rubble", 1, 1, 34);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    StoneShadow(o.im, cx + 4, cy + 3, 28, 10);
    Rng r(seed);
    Beam(o.im, iso, {0.1f, 0.2f, 0}, {0.8f, 0.45f, 10}, 0.14f, 5, seed + 9, true, {});
    for (int k = 0; k < 9; ++k) {
        float u = r.R(0.15f, 0.85f), v = r.R(0.15f, 0.85f);
        float x = iso.X({u, v, 0}), y = iso.Y({u, v, 0});
        float s = r.R(4, 9) * (k < 3 ? 1.4f : 1.f);
        Col c = Mix(Hex(0x6A645A), Hex(0x2E2A28), r.F() * 0.7f);
        Boulder(o.im, x, y - (k < 3 ? 2 : 0), s, s * 0.75f, seed + k, c, false);
    }
    return o;
}

// A stretch of the keep's curtain wall along u (or v), one cell long: tall, sooty
// stone with merlons, or broken down to a jagged stump.
ObjDef KeepWall(bool alongV, bool broken, uint32_t seed) {
    const float H = broken ? 64.f : 104.f;
    ObjDef o = Make(broken ? (alongV ? "kwall_v_broken" : "kwall_u_broken") : (alongV ? "kwall_v" : "kwall_u"), 1, 1,
                    int(H) + 4);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    const float b0 = 0.2f, b1 = 0.8f;
    Col st = Hex(0x726A60);
    auto P = [&](float a, float b, float z) { return alongV ? V3{b, a, z} : V3{a, b, z}; };
    auto Nrm = [&](float na, float nb) { return alongV ? V3{nb, na, 0} : V3{na, nb, 0}; };
    auto top = [&](float a) {
        if (!broken) return H;
        return H - 8 - 26.f * VNoise(a * 5.f, 0.5f, seed) - 16.f * std::fabs(std::sin(a * 3.1f + float(seed % 7)));
    };
    auto stone = [&](float x, float z, float ztop, float light, uint32_t s) {
        Col c = StoneCourses(x, z, s, st);
        c = Soot(c, x, z, ztop, seed + 5);
        float scorch = VNoise(x / 9.f, z / 12.f, seed + 8);
        if (scorch > 0.72f) c = Mix(c, Hex(0x151210), (scorch - 0.72f) * 2.5f);
        return Shade(c, light);
    };
    // The front face (towards +b), its outline following the top.
    const int steps = 24;
    std::vector<V3> front;
    for (int i = 0; i <= steps; ++i) {
        float a = float(i) / steps;
        front.push_back(P(a, b1, broken ? top(a) : H - 12));
    }
    front.push_back(P(1, b1, 0));
    front.push_back(P(0, b1, 0));
    float lf = Light(Nrm(0, 1)), le = Light(Nrm(1, 0));
    Face(o.im, iso, front, P(0, b1, 0), P(1, 0, 0), {0, 0, 1},
         [&](float s, float z) { return stone(s * 35.8f, z, broken ? top(s) : H, lf, seed); }, kInk);
    // The end face at a = 1 (covered by the next stretch in a line of walls).
    float zt = broken ? top(1.f) : H - 12;
    Face(o.im, iso, {P(1, b1, 0), P(1, b0, 0), P(1, b0, zt), P(1, b1, zt)}, P(1, b1, 0), P(0, b0 - b1, 0), {0, 0, 1},
         [&](float s, float z) { return stone(s * 21.f + 40, z, zt, le, seed + 1); }, kInk);
    if (broken) {
        // The broken top: rough stone seen from above, dark inside.
        std::vector<V3> cap;
        for (int i = 0; i <= steps; ++i) cap.push_back(P(float(i) / steps, b1, top(float(i) / steps)));
        for (int i = steps; i >= 0; --i) cap.push_back(P(float(i) / steps, b0, top(float(i) / steps) - 3));
        Face(o.im, iso, cap, P(0, b0, 0), P(1, 0, 0), P(0, b1 - b0, 0),
             [&](float s, float t) { return Shade(Mix(Hex(0x4A4440), Hex(0x2A2624), VNoise(s * 12, t * 4, seed + 2)), 0.9f); },
             kInk);
        // Fallen stones at the foot.
        Rng r(seed);
        for (int k = 0; k < 4; ++k) {
            float a = r.R(0.1f, 0.9f);
            V3 p = P(a, 0.93f, 0);
            Boulder(o.im, iso.X(p), iso.Y(p), r.R(4, 7), r.R(3, 4.5f), seed + 20 + k, Hex(0x5E584E), false);
        }
        return o;
    }
    // Wall walk, then two merlons.
    Quad(o.im, iso, P(0, b0, H - 12), P(1, 0, 0), P(0, b1 - b0, 0),
         [&](float s, float t) { return Shade(Hex(0x3A3430), 0.9f + VNoise(s * 10, t * 4, seed + 3) * 0.2f); }, kInk);
    for (float a0 : {0.04f, 0.54f}) {
        const float a1 = a0 + 0.38f, z0 = H - 12;
        Quad(o.im, iso, P(a0, b1, z0), P(a1 - a0, 0, 0), {0, 0, 12},
             [&](float s, float t) { return stone((a0 + s * (a1 - a0)) * 35.8f, z0 + t * 12, H, lf, seed); }, kInk);
        Quad(o.im, iso, P(a1, b1, z0), P(0, b0 - b1, 0), {0, 0, 12},
             [&](float s, float t) { return stone(s * 21.f, z0 + t * 12, H, le, seed + 1); }, kInk);
        Quad(o.im, iso, P(a0, b0, H), P(a1 - a0, 0, 0), P(0, b1 - b0, 0),
             [&](float, float) { return Shade(Hex(0x3E3834), Light({0, 0, 1})); }, kInk);
    }
    return o;
}

ObjDef Tower(uint32_t seed) {
    ObjDef o = Make("tower", 2, 2, 150);
    BlockAll(o, 2, 2);
    o.ground = {{1, 1}, {0, 1}, {1, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    const float H = 132, R = 50;
    Col st = Hex(0x5E574E);
    float cx = iso.X({1, 1, 0});
    Cylinder(o.im, iso, 1, 1, 0, R, H,
             [&](float ang, float z, float light) {
                 float x = ang * R + 100;
                 Col c = Soot(StoneCourses(x, z, seed, st), x, z, H, seed + 1);
                 c = Mix(c, Hex(0x1A1716), Smooth(0.5f, 0.85f, VNoise(x / 6.f, z / 18.f, seed + 4)) * 0.6f);
                 // Arrow slits.
                 for (float sa : {-0.55f, 0.35f})
                     if (std::fabs(ang - sa) < 0.05f && std::fabs(z - 84) < 11) c = Hex(0x0E0C0A);
                 if (std::fabs(ang + 0.1f) < 0.07f && std::fabs(z - 40) < 10) c = Hex(0x0E0C0A);
                 return Shade(c, light);
             },
             Hex(0x1E1A18));
    // The burned-out inside, seen over the rim, and the merlons along the front rim.
    float ty = iso.Y({1, 1, H});
    Paint(o.im, cx - R, ty - R * 0.5f, cx + R, ty + R * 0.5f,
          [&](float x, float y) { return SdEllipse(x, y, cx, ty + 1, R - 6, R * 0.5f - 4); },
          [&](float x, float y, float) { return Mix(Hex(0x2A2420), Hex(0x0E0C0A), Clamp01((y - ty) / 20.f + 0.5f + (x - cx) / 200.f)); });
    for (int k = 0; k < 9; ++k) {
        float a = -1.35f + k * 0.3375f;  // front half of the rim
        if (k == 6) continue;            // a merlon fallen away
        float mx = cx + std::sin(a) * (R - 3), my = ty + std::cos(a) * (R * 0.5f - 2);
        float w = 5.5f * std::cos(a) + 1.5f;
        Poly(o.im, {mx - w, my + 2, mx + w, my + 2, mx + w, my - 11, mx - w, my - 11},
             [&](float x, float y) {
                 Col c = Soot(StoneCourses(x * 1.5f, my - y + H, seed + 2, st), x, H + 8, H, seed + 3);
                 return Shade(c, 1.05f - std::sin(a) * 0.35f);
             },
             kInk);
    }
    return o;
}

ObjDef Pillar(bool broken, uint32_t seed) {
    const float H = broken ? 52.f : 108.f;
    ObjDef o = Make(broken ? "pillar_broken" : "pillar", 1, 1, int(H) + 14);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Col st = Hex(0x665F56);
    // Square plinth.
    const float m = 0.2f, ph = 8;
    Quad(o.im, iso, {m, 1 - m, 0}, {1 - 2 * m, 0, 0}, {0, 0, ph},
         [&](float s, float t) { return Shade(StoneCourses(s * 22, t * ph, seed, st), Light({0, 1, 0})); }, kInk);
    Quad(o.im, iso, {1 - m, 1 - m, 0}, {0, -(1 - 2 * m), 0}, {0, 0, ph},
         [&](float s, float t) { return Shade(StoneCourses(s * 22, t * ph, seed + 1, st), Light({1, 0, 0})); }, kInk);
    Quad(o.im, iso, {m, m, ph}, {1 - 2 * m, 0, 0}, {0, 1 - 2 * m, 0},
         [&](float, float) { return Shade(st, Light({0, 0, 1})); }, kInk);
    Cylinder(o.im, iso, 0.5f, 0.5f, ph, 12, H - ph,
             [&](float ang, float z, float light) {
                 float flute = std::fabs(std::sin(ang * 7.f));
                 Col c = Shade(st, 0.85f + flute * 0.2f);
                 c = Soot(c, ang * 12, z + ph, H, seed + 2);
                 c = Mix(c, Hex(0x1E1A18), Smooth(0.55f, 0.9f, VNoise(ang * 4.f, z / 14.f, seed + 3)) * 0.6f);
                 return Shade(c, light);
             },
             broken ? Hex(0x4A4440) : st);
    if (!broken) {
        // Capital: a square slab on top.
        const float c0 = 0.16f, ch = 10;
        Quad(o.im, iso, {c0, 1 - c0, H}, {1 - 2 * c0, 0, 0}, {0, 0, ch},
             [&](float s, float t) { return Soot(Shade(st, Light({0, 1, 0})), s * 30, H + t * ch, H + ch, seed + 4); }, kInk);
        Quad(o.im, iso, {1 - c0, 1 - c0, H}, {0, -(1 - 2 * c0), 0}, {0, 0, ch},
             [&](float s, float t) { return Soot(Shade(st, Light({1, 0, 0})), s * 30, H + t * ch, H + ch, seed + 5); }, kInk);
        Quad(o.im, iso, {c0, c0, H + ch}, {1 - 2 * c0, 0, 0}, {0, 1 - 2 * c0, 0},
             [&](float, float) { return Hex(0x3A3430); }, kInk);
    } else {
        // A jagged break, and a fallen drum beside the foot.
        float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, H});
        Poly(o.im, {cx - 12, cy, cx - 6, cy - 9, cx - 1, cy - 3, cx + 5, cy - 12, cx + 12, cy - 2, cx + 12, cy + 3, cx - 12, cy + 3},
             [&](float x, float) { return Shade(Hex(0x5A544C), 1.1f - (x - cx) / 40.f); }, kInk);
        Beam(o.im, iso, {0.75f, 0.05f, 0}, {0.95f, 0.85f, 0}, 0.22f, 10, seed + 6, false, Hex(0x6E675E));
    }
    return o;
}

ObjDef Throne(uint32_t seed) {
    ObjDef o = Make("throne", 1, 1, 84);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Col st = Hex(0x6E665C);
    // A two-step dais.
    for (int k = 0; k < 2; ++k) {
        float m = 0.04f + k * 0.1f, z0 = k * 6.f, h = 6.f;
        Quad(o.im, iso, {m, 1 - m, z0}, {1 - 2 * m, 0, 0}, {0, 0, h},
             [&](float s, float t) { return Shade(StoneCourses(s * 30, t * h + z0, seed + k, st), Light({0, 1, 0})); }, kInk);
        Quad(o.im, iso, {1 - m, 1 - m, z0}, {0, -(1 - 2 * m), 0}, {0, 0, h},
             [&](float s, float t) { return Shade(StoneCourses(s * 30, t * h + z0, seed + 5 + k, st), Light({1, 0, 0})); }, kInk);
        Quad(o.im, iso, {m, m, z0 + h}, {1 - 2 * m, 0, 0}, {0, 1 - 2 * m, 0},
             [&](float s, float t) { return Shade(Hex(0x4A2A24), Light({0, 0, 1}) * (1.0f - (s + t) * 0.08f)); }, kInk);
    }
    // The seat faces +u: its high back stands at the back (small u).
    const float z = 12;
    Col dark = Hex(0x3A3430);
    Quad(o.im, iso, {0.28f, 0.72f, z}, {0.14f, 0, 0}, {0, 0, 64},
         [&](float s, float t) { return Soot(Shade(dark, Light({0, 1, 0})), s * 10, z + t * 64, z + 64, seed + 8); }, kInk);
    Face(o.im, iso, {{0.42f, 0.72f, z}, {0.42f, 0.28f, z}, {0.42f, 0.28f, z + 56}, {0.42f, 0.5f, z + 70}, {0.42f, 0.72f, z + 56}},
         {0.42f, 0.72f, z}, {0, -0.44f, 0}, {0, 0, 70},
         [&](float s, float t) {
             Col c = Shade(dark, Light({1, 0, 0}) * (0.9f + VNoise(s * 6, t * 10, seed) * 0.2f));
             if (std::hypot(s - 0.5f, (t - 0.72f) * 1.3f) < 0.14f) c = Hex(0x8A3A1E);  // a dull ember in the crest
             return Soot(c, s * 20, z + t * 70, z + 70, seed + 9);
         },
         kInk);
    // Seat block and its arms.
    Quad(o.im, iso, {0.42f, 0.72f, z}, {0.34f, 0, 0}, {0, 0, 16},
         [&](float s, float t) { return Shade(dark, Light({0, 1, 0})); }, kInk);
    Quad(o.im, iso, {0.76f, 0.72f, z}, {0, -0.44f, 0}, {0, 0, 16},
         [&](float, float) { return Shade(dark, Light({1, 0, 0})); }, kInk);
    Quad(o.im, iso, {0.42f, 0.28f, z + 16}, {0.34f, 0, 0}, {0, 0.44f, 0},
         [&](float, float) { return Hex(0x5A2420); }, kInk);
    for (float v : {0.28f, 0.66f}) {
        Quad(o.im, iso, {0.42f, v + 0.06f, z + 16}, {0.34f, 0, 0}, {0, 0, 12},
             [&](float, float) { return Shade(dark, Light({0, 1, 0})); }, kInk);
        Quad(o.im, iso, {0.42f, v, z + 28}, {0.34f, 0, 0}, {0, 0.06f, 0},
             [&](float, float) { return Shade(dark, 1.2f); }, kInk);
    }
    return o;
}

ObjDef Brazier(uint32_t seed) {
    ObjDef o = Make("brazier", 1, 1, 70);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    StoneShadow(o.im, cx + 4, cy + 2, 14, 5);
    const float bz = 34;
    float by = cy - bz;
    // Three legs, then the bowl, the coals and the flames.
    for (float a : {-2.3f, -0.8f, 1.57f}) {
        float fx = cx + std::cos(a) * 13, fy = cy + std::sin(a) * 6;
        Paint(o.im, std::min(fx, cx) - 3, by - 2, std::max(fx, cx) + 3, fy + 2,
              [&](float x, float y) { return SdSegment(x, y, fx, fy, cx + (fx - cx) * 0.3f, by + 4, 1.4f); },
              [&](float, float, float d) { return d > -0.5f ? kInk : Hex(0x3A3634); });
    }
    Paint(o.im, cx - 18, by - 4, cx + 18, by + 14,
          [&](float x, float y) { return std::max(SdEllipse(x, y, cx, by, 15, 6), -(y - by) - 0.f) ; },
          [&](float, float, float) { return kInk; });
    Paint(o.im, cx - 18, by - 8, cx + 18, by + 14,
          [&](float x, float y) {
              float t = (y - by) / 10.f;
              if (y < by) return SdEllipse(x, y, cx, by, 15, 6);
              return std::fabs(x - cx) - 15.f * (1 - t * t * 0.5f) + (t > 1 ? 99.f : 0.f);
          },
          [&](float x, float y, float d) {
              if (d > -1.f) return kInk;
              if (y < by) return Mix(Hex(0xFFB050), Hex(0x9A2A10), Clamp01(std::hypot(x - cx, (y - by) * 2.f) / 15.f));
              return Shade(Hex(0x4A4442), 1.15f - (x - cx) / 25.f);
          });
    for (int k = 0; k < 4; ++k) {
        float fx = cx + (k - 1.5f) * 5.f, h = 22.f - std::fabs(k - 1.5f) * 6.f;
        Paint(o.im, fx - 6, by - h - 4, fx + 6, by + 1,
              [&](float x, float y) {
                  float t = Clamp01((by - y) / h);
                  return std::fabs(x - fx - std::sin(t * 3 + k + seed) * 1.5f) - 4.f * (1 - t) - 0.3f + (y > by ? 9.f : 0.f);
              },
              [&](float, float y, float d) {
                  float t = Clamp01((by - y) / h);
                  return d > -0.8f ? Hex(0x8A2A10) : Mix(Hex(0xFFE8A0), Hex(0xE0602A), t);
              });
    }
    return o;
}

// A runner of red cloth laid along u down the great hall, burned through in places.
ObjDef Carpet(uint32_t seed) {
    ObjDef o = Make("carpet_u", 1, 1, 4, 2);
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Quad(o.im, iso, {0, 0.12f, 0}, {1, 0, 0}, {0, 0.76f, 0},
         [&](float s, float t) {
             Col c = Mix(Hex(0x4A1614), Hex(0x62201A), VNoise(s * 9, t * 5, seed));
             if (t < 0.09f || t > 0.91f) c = Hex(0x7A5E2A);  // the border
             if (std::fabs(t - 0.5f) < 0.03f) c = Hex(0x6A5026);
             float burn = VNoise(s * 3.f, t * 2.5f, seed + 1);
             c = Mix(c, Hex(0x1A1412), Smooth(0.66f, 0.78f, burn) * 0.85f);
             return c;
         },
         kInk, 0.f);
    // A hole or two burned through shows the stone beneath.
    for (int y = 0; y < o.im.h; ++y)
        for (int x = 0; x < o.im.w; ++x)
            if (o.im.A(x, y) > 0 && VNoise(x / 7.f, y / 3.5f, seed + 2) > 0.86f) o.im.Set(x, y, {}, 0.f);
    return o;
}

// ---------------------------------------------------------------- the mine

// A timber frame across a tunnel four cells wide: posts on the cells either side,
// a cap beam over the tunnel.
ObjDef Frame(bool alongV, uint32_t seed) {
    const int n = 6;
    ObjDef o = Make(alongV ? "frame_v" : "frame_u", alongV ? 1 : n, alongV ? n : 1, 84);
    o.block = {alongV ? Cell{0, 0} : Cell{0, 0}, alongV ? Cell{0, n - 1} : Cell{n - 1, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    auto P = [&](float a, float b, float z) { return alongV ? V3{b, a, z} : V3{a, b, z}; };
    Col wood = Hex(0x6A4C30);
    const float H = 72, w = 0.16f;
    auto post = [&](float a) {
        V3 b = P(a - w / 2, 0.5f - w / 2, 0);
        V3 da = P(w, 0, 0), db = P(0, w, 0);
        Quad(o.im, iso, b + db, da, {0, 0, H},
             [&](float s, float t) { return Shade(Planks(s * 6, t * H, seed, wood, 9.f), Light(alongV ? V3{1, 0, 0} : V3{0, 1, 0})); }, kInk);
        Quad(o.im, iso, b + da + db, db * -1.f, {0, 0, H},
             [&](float s, float t) { return Shade(Planks(s * 6, t * H, seed + 1, wood, 9.f), Light(alongV ? V3{0, 1, 0} : V3{1, 0, 0})); }, kInk);
    };
    post(0.5f);
    Beam(o.im, iso, P(0.3f, 0.5f, H), P(n - 0.3f, 0.5f, H), 0.2f, 9, seed + 2, false, wood);
    post(n - 0.5f);
    return o;
}

ObjDef Cart(uint32_t seed) {
    ObjDef o = Make("cart", 1, 1, 50);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Col wood = Hex(0x6E5034), iron = Hex(0x4A4846);
    const float u0 = 0.12f, u1 = 0.88f, v0 = 0.26f, v1 = 0.74f, z0 = 8, z1 = 28;
    auto wheel = [&](float u, float v) {
        float x = iso.X({u, v, 0}), y = iso.Y({u, v, 7});
        Paint(o.im, x - 9, y - 9, x + 9, y + 9, [&](float px, float py) { return SdEllipse(px, py, x, y, 4.5f, 7.f); },
              [&](float px, float py, float d) {
                  if (d > -1.f) return kInk;
                  return std::hypot((px - x) / 4.5f, (py - y) / 7.f) < 0.35f ? Hex(0x8A8884) : Shade(iron, 1.1f - (px - x) / 12.f);
              });
    };
    wheel(0.3f, v0 + 0.02f);
    wheel(0.72f, v0 + 0.02f);
    // The tub: sides flare outwards a little.
    Quad(o.im, iso, {u0, v1, z0}, {u1 - u0, 0, 0}, {0, 0.04f, z1 - z0},
         [&](float s, float t) {
             Col c = Planks(t * 20, s * 40, seed, wood, 6.f);
             if (s < 0.06f || s > 0.94f || t > 0.85f) c = iron;
             return Shade(c, Light({0, 1, 0}));
         }, kInk);
    Quad(o.im, iso, {u1, v1, z0}, {0, v0 - v1, 0}, {0.04f, 0, z1 - z0},
         [&](float s, float t) {
             Col c = Planks(t * 20, s * 30, seed + 1, wood, 6.f);
             if (s < 0.08f || s > 0.92f || t > 0.85f) c = iron;
             return Shade(c, Light({1, 0, 0}));
         }, kInk);
    // Ore heaped in the tub.
    Rng r(seed);
    for (int k = 0; k < 10; ++k) {
        float u = r.R(u0 + 0.12f, u1 - 0.08f), v = r.R(v0 + 0.06f, v1 - 0.04f);
        float x = iso.X({u, v, z1}), y = iso.Y({u, v, z1 + 2});
        float s = r.R(4.5f, 7.5f);
        Boulder(o.im, x, y, s, s * 0.7f, seed + k, k % 3 ? Hex(0x5A4E44) : Hex(0x8A5A34), false);
    }
    wheel(0.3f, v1 + 0.04f);
    wheel(0.72f, v1 + 0.04f);
    return o;
}

ObjDef Rails(bool alongV, uint32_t seed) {
    ObjDef o = Make(alongV ? "rails_v" : "rails_u", 1, 1, 4, 2);
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    auto P = [&](float a, float b) { return alongV ? V3{b, a, 0} : V3{a, b, 0}; };
    for (int k = 0; k < 4; ++k) {
        float a = 0.06f + k * 0.25f;
        Quad(o.im, iso, P(a, 0.18f), P(0.13f, 0), P(0, 0.64f),
             [&](float s, float t) { return Shade(Planks(t * 20, s * 6, seed + k, Hex(0x5A4430), 30.f), 1.f - t * 0.15f); }, kInk);
    }
    for (float b : {0.3f, 0.66f})
        Quad(o.im, iso, P(0, b), P(1, 0), P(0, 0.05f),
             [&](float, float t) { return t < 0.5f ? Hex(0x9A9A98) : Hex(0x4A4846); }, kInk, 0.f);
    return o;
}

ObjDef Ore(uint32_t seed) {
    ObjDef o = Make("ore", 1, 1, 52);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    StoneShadow(o.im, cx + 4, cy + 3, 26, 9);
    Boulder(o.im, cx - 4, cy, 22, 20, seed, Hex(0x3E3834), false);
    Boulder(o.im, cx + 14, cy + 4, 12, 9, seed + 1, Hex(0x46403A), false);
    // Thin seams of copper ore through the dark rock, glinting here and there.
    for (int y = 0; y < o.im.h; ++y)
        for (int x = 0; x < o.im.w; ++x) {
            if (o.im.A(x, y) < 1.f) continue;
            Col c = o.im.Get(x, y);
            if (c.r + c.g + c.b < 0.25f) continue;  // keep the outline
            float v = VNoise(x / 9.f + y / 14.f, y / 4.f, seed + 7);
            float seam = 1.f - std::fabs(2 * v - 1);
            if (seam > 0.9f) {
                Col ore = Mix(Hex(0xC0702E), Hex(0xE8A048), VNoise(x / 2.f, y / 2.f, seed + 8));
                o.im.Set(x, y, Shade(ore, 0.75f + (seam - 0.9f) * 4.f));
            }
            if (seam > 0.8f && Rand01(x, y, seed + 9) > 0.9f) o.im.Set(x, y, Hex(0xFFE08A));
        }
    return o;
}

ObjDef Spire(uint32_t seed) {
    ObjDef o = Make("spire", 1, 1, 80);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    StoneShadow(o.im, cx + 4, cy + 2, 20, 7);
    auto cone = [&](float x, float y, float r, float h, uint32_t s) {
        Paint(o.im, x - r - 2, y - h - 2, x + r + 2, y + r * 0.5f + 2,
              [&](float px, float py) {
                  float t = Clamp01((y - py) / h);
                  float half = r * std::pow(1 - t, 0.8f) + 0.8f;
                  float d = std::fabs(px - x - std::sin(t * 4.f + s) * 1.5f) - half;
                  if (py > y) d = std::max(d, SdEllipse(px, py, x, y, r, r * 0.45f));
                  return std::max(d, y - h - py);
              },
              [&](float px, float py, float d) {
                  if (d > -1.f) return kInk;
                  float t = Clamp01((y - py) / h);
                  float side = (px - x) / (r * (1 - t) + 1);
                  Col c = Mix(Hex(0x3E3630), Hex(0x5A4E44), VNoise(px / 3.f, py / 2.f, s));
                  if (std::fmod(py + VNoise(px / 4.f, 0, s) * 5.f, 9.f) < 1.2f) c = Shade(c, 0.75f);  // rings of old drip
                  return Shade(c, 1.1f - side * 0.3f);
              });
    };
    cone(cx - 6, cy, 15, 70, seed);
    cone(cx + 12, cy + 5, 9, 36, seed + 1);
    return o;
}

ObjDef Lantern(uint32_t seed) {
    ObjDef o = Make("lantern", 1, 1, 76);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    StoneShadow(o.im, cx + 3, cy + 1, 8, 3);
    Poly(o.im, {cx - 2.5f, cy + 1, cx + 2.5f, cy + 1, cx + 2.5f, cy - 68, cx - 2.5f, cy - 68},
         [&](float x, float y) { return Shade(Planks(y, x, seed, Hex(0x5E4430), 40.f), x < cx ? 1.15f : 0.8f); }, kInk);
    // An arm, the hook and the lantern hanging from it.
    Poly(o.im, {cx, cy - 66, cx + 16, cy - 66, cx + 16, cy - 63, cx, cy - 63},
         [&](float, float) { return Hex(0x4E3A28); }, kInk);
    float lx = cx + 14, ly = cy - 44;
    Paint(o.im, lx - 1, ly - 20, lx + 1, ly - 12, [&](float x, float y) { return SdSegment(x, y, lx, ly - 19, lx, ly - 13, 0.4f); },
          [&](float, float, float) { return kInk; });
    Poly(o.im, {lx - 6, ly - 12, lx + 6, ly - 12, lx + 4, ly - 15, lx - 4, ly - 15}, [&](float, float) { return Hex(0x3A3836); }, kInk);
    Poly(o.im, {lx - 5, ly - 12, lx + 5, ly - 12, lx + 5, ly + 2, lx - 5, ly + 2},
         [&](float x, float y) {
             if (std::fabs(x - lx) < 0.8f) return Hex(0x3A3836);
             return Mix(Hex(0xFFE090), Hex(0xD07A2A), Clamp01(std::hypot(x - lx, y - ly + 5) / 7.f));
         }, kInk);
    Poly(o.im, {lx - 6, ly + 2, lx + 6, ly + 2, lx + 6, ly + 4, lx - 6, ly + 4}, [&](float, float) { return Hex(0x3A3836); }, kInk);
    return o;
}

ObjDef Bones(uint32_t seed) {
    ObjDef o = Make("bones", 1, 1, 4, 2);
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Rng r(seed);
    auto bone = [&](float x, float y, float ang, float len) {
        float dx = std::cos(ang) * len, dy = std::sin(ang) * len * 0.5f;
        Paint(o.im, x - len - 3, y - len - 3, x + len + 3, y + len + 3,
              [&](float px, float py) {
                  return std::min({SdSegment(px, py, x - dx, y - dy, x + dx, y + dy, 1.f), SdCircle(px, py, x - dx, y - dy, 1.7f),
                                   SdCircle(px, py, x + dx, y + dy, 1.7f)});
              },
              [&](float, float py, float d) { return d > -0.5f ? Hex(0x4A443A) : (py < y ? Hex(0xD8D0BA) : Hex(0xAEA690)); });
    };
    for (int k = 0; k < 5; ++k) {
        float u = r.R(0.25f, 0.75f), v = r.R(0.25f, 0.75f);
        bone(iso.X({u, v, 0}), iso.Y({u, v, 0}), r.R(0, 3.14f), r.R(3, 6));
    }
    // A skull.
    float x = iso.X({0.55f, 0.45f, 0}), y = iso.Y({0.55f, 0.45f, 0});
    Paint(o.im, x - 6, y - 7, x + 6, y + 4, [&](float px, float py) { return SdEllipse(px, py, x, y - 2, 4.5f, 4.f); },
          [&](float px, float py, float d) {
              if (d > -0.6f) return Hex(0x4A443A);
              if (std::hypot(px - x + 1.7f, py - y + 2) < 1.1f || std::hypot(px - x - 1.7f, py - y + 2) < 1.1f) return Hex(0x2A2620);
              return Shade(Hex(0xD8D0BA), 1.05f - (px - x) * 0.04f);
          });
    return o;
}

// ---------------------------------------------------------------- the shrine

// The chapel of the Order of the Ember: a stone house with a bell-cote on its right
// gable and a round window glowing like an ember.
ObjDef Chapel(uint32_t seed) {
    ObjDef o = House("chapel", true, seed);
    Iso iso = IsoAt(o.ax, o.ay);
    const float U = 3, V = 2, H = 74, R = 40;
    // Round window in the gable.
    V3 wc{U, V * 0.5f, H + R * 0.34f};
    float wx = iso.X(wc), wy = iso.Y(wc);
    Paint(o.im, wx - 10, wy - 12, wx + 10, wy + 12, [&](float x, float y) { return SdEllipse(x, y, wx, wy, 6.f, 9.f); },
          [&](float x, float y, float d) {
              if (d > -1.2f) return Hex(0x3A3430);
              float r = std::hypot((x - wx) / 6.f, (y - wy) / 9.f);
              Col c = Mix(Hex(0xFFD080), Hex(0xC0401A), r);
              if (std::fabs(x - wx) < 0.7f || std::fabs(y - wy) < 0.7f) c = Hex(0x3A3430);
              return c;
          });
    // Bell-cote astride the ridge at the right end.
    const float u0 = U - 0.42f, u1 = U - 0.06f, v0 = V / 2 - 0.16f, v1 = V / 2 + 0.16f, z0 = H + R - 10, h = 40;
    Col st = Hex(0x9A9388);
    Quad(o.im, iso, {u0, v1, z0}, {u1 - u0, 0, 0}, {0, 0, h},
         [&](float s, float t) {
             Col c = StoneCourses(s * 14, t * h, seed + 30, st);
             float ax = (s - 0.5f) * 2.f, az = (t - 0.5f) / 0.35f;
             if (t > 0.3f && t < 0.85f && std::hypot(ax * 1.4f, std::max(0.f, az)) < 0.75f) c = Hex(0x1A1614);
             return Shade(c, Light({0, 1, 0}));
         }, kInk);
    Quad(o.im, iso, {u1, v1, z0}, {0, v0 - v1, 0}, {0, 0, h},
         [&](float s, float t) { return Shade(StoneCourses(s * 12, t * h, seed + 31, st), Light({1, 0, 0})); }, kInk);
    // The bell inside the arch.
    V3 bc{(u0 + u1) / 2, v1, z0 + h * 0.55f};
    float bx = iso.X(bc), by = iso.Y(bc);
    Poly(o.im, {bx - 2.5f, by - 6, bx + 2.5f, by - 6, bx + 4.5f, by + 3, bx - 4.5f, by + 3},
         [&](float x, float) { return Shade(Hex(0xA8844A), 1.2f - (x - bx) / 8.f); }, kInk, 0.6f);
    // A small gabled cap.
    Quad(o.im, iso, {u0 - 0.05f, (v0 + v1) / 2, z0 + h + 12}, {u1 - u0 + 0.1f, 0, 0}, {0, v1 - (v0 + v1) / 2 + 0.06f, -12},
         [&](float s, float t) { return Shade(Slate(s * 20, t * 10, seed + 32, Hex(0x56606A)), Light({0, 1, 1.3f})); }, kInk);
    Face(o.im, iso, {{u1 + 0.05f, v1 + 0.06f, z0 + h}, {u1 + 0.05f, v0 - 0.06f, z0 + h}, {u1 + 0.05f, (v0 + v1) / 2, z0 + h + 12}},
         {u1 + 0.05f, v1 + 0.06f, z0 + h}, {0, v0 - v1, 0}, {0, 0, 12},
         [&](float, float) { return Shade(st, Light({1, 0, 0})); }, kInk);
    return o;
}

ObjDef Menhir(uint32_t seed) {
    ObjDef o = Make("menhir", 1, 1, 92);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Shadow(o.im, cx + 6, cy + 2, 18, 6);
    Rng r(seed);
    std::vector<float> xy = {cx - 13, cy + 3, cx - 15, cy - 40, cx - 10, cy - 74, cx - 2, cy - 84,
                             cx + 7, cy - 80, cx + 12, cy - 50, cx + 14, cy + 4};
    Poly(o.im, xy,
         [&](float x, float y) {
             Col c = Mix(Hex(0x7A786E), Hex(0x918E82), VNoise(x / 4.f, y / 6.f, seed));
             c = Shade(c, 1.15f - (x - cx + 14) * 0.017f + (Rand01(int(x), int(y), seed) - 0.5f) * 0.08f);
             if (VNoise(x / 5.f, y / 4.f, seed + 1) > 0.68f) c = Mix(c, Hex(0x6A7A4A), 0.55f);  // lichen
             // A carved spiral, the ember of the Order, with a trace of old paint.
             float dx = x - cx + 1, dy = (y - cy + 46) * 0.8f;
             float rr = std::hypot(dx, dy), a = std::atan2(dy, dx);
             float spiral = std::fmod(rr - a * 1.3f + 40.f, 4.1f);
             if (rr < 8.5f && spiral < 1.1f) c = Hex(0x8A3A1E);
             return c;
         },
         kInk);
    return o;
}

// Stone steps laid flat into the path, rising along u (or v).
ObjDef Steps(bool alongV, uint32_t seed) {
    ObjDef o = Make(alongV ? "steps_v" : "steps_u", 1, 1, 4, 2);
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    auto P = [&](float a, float b) { return alongV ? V3{b, a, 0} : V3{a, b, 0}; };
    for (int k = 0; k < 3; ++k) {
        float a0 = k / 3.f;
        Quad(o.im, iso, P(a0, 0.04f), P(1 / 3.f, 0), P(0, 0.92f),
             [&](float s, float t) {
                 Col c = Shade(Hex(0x8A857A), 0.95f + Rand01(k, int(t * 4), seed) * 0.12f + (VNoise(s * 5, t * 9, seed + k) - 0.5f) * 0.15f);
                 if (s > 0.78f) c = Shade(c, 0.62f);  // the riser's shadow
                 if (s < 0.12f) c = Shade(c, 1.15f);  // the worn nose of the step
                 return c;
             },
             kInk, 0.6f);
    }
    return o;
}

ObjDef Crag(uint32_t seed) {
    ObjDef o = Make("crag", 2, 2, 96);
    BlockAll(o, 2, 2);
    o.ground = {{1, 1}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({1, 1, 0}), cy = iso.Y({1, 1, 0});
    Shadow(o.im, cx + 8, cy + 6, 58, 18);
    struct B { float u, v, rx, ry, lift; };
    const B parts[] = {{0.6f, 0.5f, 40, 48, 16}, {1.3f, 0.45f, 34, 36, 8}, {0.45f, 1.2f, 30, 30, 4},
                       {1.1f, 1.0f, 40, 40, 10}, {1.55f, 1.25f, 22, 18, 0}, {0.9f, 1.6f, 20, 15, 0}, {1.6f, 0.9f, 18, 14, 0}};
    uint32_t k = 0;
    for (const B& b : parts) {
        float x = iso.X({b.u, b.v, 0}), y = iso.Y({b.u, b.v, 0});
        Boulder(o.im, x, y - b.lift, b.rx, b.ry, seed + k++, Hex(0x76726A));
    }
    return o;
}

// ---------------------------------------------------------------- the village

// A bed of crops. Nobody walks through a field: the bed blocks its cell, and it lies
// on the ground layer so that people passing in front are drawn over it (objects
// are drawn over everyone, so a walkable field would swallow whoever stood in it).
ObjDef Crop(const char* name, uint32_t seed, int kind) {
    ObjDef o = Make(name, 1, 1, 22, 2);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Rng r(seed);
    std::vector<std::array<float, 3>> plants;
    for (int row = 0; row < 3; ++row)
        for (int k = 0; k < 5; ++k) {
            float u = 0.14f + k * 0.18f + r.R(-0.03f, 0.03f), v = 0.2f + row * 0.3f + r.R(-0.04f, 0.04f);
            plants.push_back({iso.X({u, v, 0}), iso.Y({u, v, 0}), r.F()});
        }
    std::sort(plants.begin(), plants.end(), [](const auto& a, const auto& b) { return a[1] < b[1]; });
    for (const auto& p : plants) {
        float x = p[0], y = p[1];
        if (kind == 0) {  // wheat: a sheaf of stalks with ears
            for (int s = -2; s <= 2; ++s) {
                float tx = x + s * 1.6f + (p[2] - 0.5f) * 2, ty = y - 15 - std::abs(s) * 1.f;
                Paint(o.im, std::min(x, tx) - 2, ty - 5, std::max(x, tx) + 2, y + 1,
                      [&](float px, float py) { return SdSegment(px, py, x + s * 0.5f, y, tx, ty, 0.45f); },
                      [&](float, float, float) { return Hex(0x9A8A3E); });
                Paint(o.im, tx - 2, ty - 5, tx + 2, ty + 1, [&](float px, float py) { return SdEllipse(px, py, tx, ty - 2, 1.1f, 2.6f); },
                      [&](float px, float, float) { return px < tx ? Hex(0xE0C870) : Hex(0xB89A48); });
            }
        } else if (kind == 1) {  // cabbages: round heads of leaves
            Paint(o.im, x - 7, y - 9, x + 7, y + 3, [&](float px, float py) { return SdEllipse(px, py, x, y - 3, 5.5f, 4.5f); },
                  [&](float px, float py, float d) {
                      if (d > -0.8f) return Hex(0x2A3A1E);
                      float l = ((x - px) + (y - 3 - py) * 1.5f) / 8.f;
                      Col c = Mix(Hex(0x5A8A3A), Hex(0x9AC070), Clamp01(0.4f + l));
                      if (std::fabs(std::fmod(std::atan2(py - y + 3, px - x) * 3.f + 10.f, 2.f) - 1.f) < 0.12f) c = Shade(c, 0.8f);
                      return c;
                  });
        } else {  // herbs: leafy tufts with small flowers
            for (int s = 0; s < 5; ++s) {
                float ang = -1.57f + (s - 2) * 0.45f, len = 7 + p[2] * 4;
                float tx = x + std::cos(ang) * len * 0.6f, ty = y + std::sin(ang) * len;
                Paint(o.im, std::min(x, tx) - 3, ty - 3, std::max(x, tx) + 3, y + 1,
                      [&](float px, float py) { return SdSegment(px, py, x, y, tx, ty, 1.1f); },
                      [&](float, float py, float) { return Mix(Hex(0x3E6A2E), Hex(0x7AA054), Clamp01((y - py) / len)); });
                if (s % 2 == 0)
                    Paint(o.im, tx - 2, ty - 2, tx + 2, ty + 2, [&](float px, float py) { return SdCircle(px, py, tx, ty, 1.2f); },
                          [&](float, float, float) { return p[2] > 0.5f ? Hex(0xB89AD0) : Hex(0xF0F0E0); });
            }
        }
    }
    return o;
}

ObjDef Anvil(uint32_t seed) {
    ObjDef o = Make("anvil", 1, 1, 48);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Shadow(o.im, cx + 4, cy + 2, 18, 6);
    Cylinder(o.im, iso, 0.5f, 0.5f, 0, 12, 18,
             [&](float ang, float z, float light) { return Shade(Planks(ang * 12 + 20, z, seed, Hex(0x5E4632), 3.f), light); },
             Hex(0x8A6A48));
    float ty = cy - 18;
    // The anvil: foot, waist, face and horn.
    Poly(o.im, {cx - 9, ty, cx + 9, ty, cx + 6, ty - 6, cx - 6, ty - 6}, [&](float x, float) { return Shade(Hex(0x3A3A3C), 1.1f - (x - cx) / 30.f); }, kInk);
    Poly(o.im, {cx - 4, ty - 6, cx + 4, ty - 6, cx + 5, ty - 11, cx - 5, ty - 11}, [&](float, float) { return Hex(0x2E2E30); }, kInk);
    Poly(o.im, {cx - 12, ty - 11, cx + 10, ty - 11, cx + 12, ty - 17, cx - 8, ty - 17, cx - 22, ty - 14},
         [&](float x, float y) { return y < ty - 15.5f ? Hex(0x8A8C90) : Shade(Hex(0x46464A), 1.1f - (x - cx) / 40.f); }, kInk);
    // A hammer lying on the face.
    Paint(o.im, cx - 2, ty - 26, cx + 14, ty - 14, [&](float x, float y) { return SdSegment(x, y, cx + 1, ty - 18, cx + 12, ty - 22, 1.f); },
          [&](float, float, float d) { return d > -0.4f ? kInk : Hex(0x7A5A3A); });
    Poly(o.im, {cx - 1, ty - 23, cx + 4, ty - 24, cx + 5, ty - 17, cx, ty - 16}, [&](float, float) { return Hex(0x5A5A5E); }, kInk, 0.6f);
    return o;
}

ObjDef Forge(uint32_t seed) {
    ObjDef o = Make("forge", 1, 1, 100);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    Col st = Hex(0x8A8278);
    const float m = 0.08f, hh = 26;
    // Chimney at the back, then the hearth with its glowing coals.
    const float c0 = 0.22f, c1 = 0.62f, cv0 = 0.08f, cv1 = 0.4f, ch = 96;
    Quad(o.im, iso, {c0, cv1, 0}, {c1 - c0, 0, 0}, {0, 0, ch},
         [&](float s, float t) { return Shade(Soot(StoneCourses(s * 16, t * ch, seed, st), s * 16, t * ch, ch, seed + 1), Light({0, 1, 0})); }, kInk);
    Quad(o.im, iso, {c1, cv1, 0}, {0, cv0 - cv1, 0}, {0, 0, ch},
         [&](float s, float t) { return Shade(Soot(StoneCourses(s * 12, t * ch, seed + 2, st), s * 12, t * ch, ch, seed + 3), Light({1, 0, 0})); }, kInk);
    Quad(o.im, iso, {c0, cv0, ch}, {c1 - c0, 0, 0}, {0, cv1 - cv0, 0}, [&](float, float) { return Hex(0x1A1614); }, kInk);
    Quad(o.im, iso, {m, 1 - m, 0}, {1 - 2 * m, 0, 0}, {0, 0, hh},
         [&](float s, float t) { return Shade(StoneCourses(s * 30, t * hh, seed + 4, st), Light({0, 1, 0})); }, kInk);
    Quad(o.im, iso, {1 - m, 1 - m, 0}, {0, -(1 - 2 * m - 0.32f), 0}, {0, 0, hh},
         [&](float s, float t) { return Shade(StoneCourses(s * 20, t * hh, seed + 5, st), Light({1, 0, 0})); }, kInk);
    Quad(o.im, iso, {m, cv1, hh}, {1 - 2 * m, 0, 0}, {0, 1 - m - cv1, 0},
         [&](float s, float t) {
             float r = std::hypot(s - 0.5f, t - 0.5f);
             Col c = Mix(Hex(0xFFC060), Hex(0x7A2A14), Clamp01(r * 2.2f));
             if (Rand01(int(s * 30), int(t * 15), seed + 6) > 0.7f) c = Shade(c, 0.6f);  // coals
             if (s < 0.08f || s > 0.92f || t > 0.88f) c = Shade(st, 0.9f);
             return c;
         }, kInk);
    return o;
}

ObjDef ArmorStand(uint32_t seed) {
    ObjDef o = Make("armorstand", 1, 1, 74);
    o.block = {{0, 0}};
    o.ground = {{0, 0}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Shadow(o.im, cx + 4, cy + 2, 14, 5);
    Poly(o.im, {cx - 12, cy + 2, cx + 12, cy + 2, cx + 12, cy - 2, cx - 12, cy - 2}, [&](float, float) { return Hex(0x5A4430); }, kInk);
    Poly(o.im, {cx - 2, cy, cx + 2, cy, cx + 2, cy - 56, cx - 2, cy - 56}, [&](float x, float) { return x < cx ? Hex(0x7A5A3A) : Hex(0x4E3A28); }, kInk);
    // A mail shirt on the cross-arm.
    float sy = cy - 50;
    Poly(o.im, {cx - 16, sy, cx + 16, sy, cx + 14, sy + 12, cx + 11, sy + 32, cx - 11, sy + 32, cx - 14, sy + 12},
         [&](float x, float y) {
             bool ring = (int(x) + int(y) * 2) % 3 == 0;
             Col c = Shade(Hex(0x8A8E94), 1.15f - (x - cx + 16) / 40.f);
             if (ring) c = Shade(c, 0.8f);
             if (y > sy + 29) c = Hex(0x5A4A3A);  // leather hem
             return c;
         }, kInk);
    // The helm on the top of the post.
    float hy = cy - 60;
    Paint(o.im, cx - 9, hy - 10, cx + 9, hy + 4, [&](float x, float y) { return std::max(SdEllipse(x, y, cx, hy, 7.5f, 8.f), y - hy - 3); },
          [&](float x, float y, float d) {
              if (d > -0.8f) return kInk;
              if (std::fabs(y - hy + 1) < 1.f && std::fabs(x - cx) < 5) return Hex(0x1A1A1C);  // eye slit
              return Shade(Hex(0x9A9EA4), 1.2f - (x - cx + 7) / 18.f);
          });
    return o;
}

}  // namespace

void PlaceObjects(std::vector<ObjDef>& objs) {
    objs.push_back(WideBridge(false, 6));
    objs.push_back(WideBridge(true, 6));
    objs.push_back(Tent(201));
    objs.push_back(Palisade(false, 202));
    objs.push_back(Palisade(true, 203));
    objs.push_back(Banner(204));
    objs.push_back(WeaponRack(205));
    objs.push_back(Timbers(false, 206));
    objs.push_back(Timbers(true, 207));
    objs.push_back(Rubble(208));
    objs.push_back(KeepWall(false, false, 209));
    objs.push_back(KeepWall(true, false, 210));
    objs.push_back(KeepWall(false, true, 211));
    objs.push_back(KeepWall(true, true, 212));
    objs.push_back(Tower(213));
    objs.push_back(Pillar(false, 214));
    objs.push_back(Pillar(true, 215));
    objs.push_back(Throne(216));
    objs.push_back(Brazier(217));
    objs.push_back(Frame(false, 218));
    objs.push_back(Frame(true, 219));
    objs.push_back(Cart(220));
    objs.push_back(Rails(false, 221));
    objs.push_back(Rails(true, 222));
    objs.push_back(Ore(223));
    objs.push_back(Spire(224));
    objs.push_back(Lantern(225));
    objs.push_back(Bones(226));
    objs.push_back(Chapel(227));
    objs.push_back(Menhir(228));
    objs.push_back(Steps(false, 229));
    objs.push_back(Steps(true, 230));
    objs.push_back(Crag(231));
    objs.push_back(Crop("wheat", 232, 0));
    objs.push_back(Crop("cabbages", 233, 1));
    objs.push_back(Crop("herbs", 234, 2));
    objs.push_back(Anvil(235));
    objs.push_back(Forge(236));
    objs.push_back(ArmorStand(237));
    objs.push_back(Carpet(238));
}

}  // namespace obj
}  // namespace art
