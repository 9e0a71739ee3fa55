// Map objects on the 2048 x 1600 object sheet: trees, bushes, rocks, houses, fences,
// walls, a well, barrels and crates, a signpost, a cave mouth, bridges, a market stall
// and ruins of the burned keep; plus the object manifest and a Tiled image collection.
//
// Each object is painted in its own picture around a base cell whose 64 x 32 box sits
// at the anchor; blocked cells and ground pieces are offsets from that cell.
#include <cstdio>
#include <string>
#include <algorithm>
#include <array>

#include "objkit.h"

namespace art {
namespace obj {

const Col kInk = Hex(0x1C1612);

// Brightness of a face with the given outward normal (u, v, z); light from the upper left.
float Light(V3 n) {
    const float lu = -0.45f, lv = 0.35f, lz = 0.82f;
    float len = std::sqrt(n.u * n.u + n.v * n.v + n.z * n.z);
    float d = (n.u * lu + n.v * lv + n.z * lz) / (len > 0 ? len : 1);
    return 0.62f + 0.5f * std::max(0.f, d);
}

// Base cell box at (ax, ay): the ground point (0,0,0) is the top corner of that cell.
Iso IsoAt(int ax, int ay) { return Iso{float(ax + 32), float(ay)}; }

void Shadow(Img& im, float cx, float cy, float rx, float ry) {
    Paint(im, cx - rx - 1, cy - ry - 1, cx + rx + 1, cy + ry + 1,
          [&](float x, float y) { return SdEllipse(x, y, cx, cy, rx, ry); },
          [&](float, float, float) { return Hex(0x27301E); });
}

// ---------------------------------------------------------------- foliage

// Leaf clumps: each clump is lit from the upper left by its own roundness and darker
// the lower it hangs in the crown; edges are ragged with leaf-sized noise.
void Foliage(Img& im, std::vector<Blob> blobs, Col base, uint32_t seed, float crownCy,
             float crownR) {
    std::sort(blobs.begin(), blobs.end(), [](const Blob& a, const Blob& b) {
        return a.y + a.x * 0.3f < b.y + b.x * 0.3f;
    });
    for (size_t i = 0; i < blobs.size(); ++i) {
        const Blob& b = blobs[i];
        uint32_t s = seed + uint32_t(i) * 31;
        Paint(im, b.x - b.r - 4, b.y - b.r - 4, b.x + b.r + 4, b.y + b.r + 4,
              [&](float x, float y) {
                  float n = VNoise(x / 2.6f, y / 2.6f, s) - 0.5f;
                  return SdCircle(x, y, b.x, b.y, b.r) + n * 5.f;
              },
              [&](float x, float y, float d) {
                  if (d > -1.f) return Shade(base, 0.38f);
                  float nx = (x - b.x) / b.r, ny = (y - b.y) / b.r;
                  float l = -(nx * 0.7f + ny * 0.7f);
                  float depth = Clamp01((y - (crownCy - crownR)) / (2 * crownR));
                  float leaf = Rand01(int(x), int(y), s) - 0.5f;
                  float k = 0.95f + l * 0.28f - depth * 0.32f + leaf * 0.14f;
                  if (VNoise(x / 1.7f, y / 1.7f, s + 7) > 0.72f && l > 0) k += 0.22f;
                  return Shade(base, k);
              });
    }
}

void Trunk(Img& im, float bx, float by, float topX, float topY, float rb, float rt, Col bark,
           uint32_t seed) {
    std::vector<float> xy = {bx - rb, by, topX - rt, topY, topX + rt, topY, bx + rb, by};
    Poly(im, xy,
         [&](float x, float y) {
             float t = Clamp01((by - y) / std::max(1.f, by - topY));
             float cx = bx + (topX - bx) * t, r = rb + (rt - rb) * t;
             float s = (x - cx) / std::max(1.f, r);  // -1 left .. 1 right
             float stripe = VNoise(x / 1.5f, y / 7.f, seed);
             return Shade(bark, 1.15f - s * 0.35f + (stripe - 0.5f) * 0.35f);
         },
         kInk);
    // Roots flaring into the ground.
    for (int k = -1; k <= 1; k += 2)
        Paint(im, bx - rb * 2.5f, by - 6, bx + rb * 2.5f, by + 3,
              [&](float x, float y) {
                  return SdSegment(x, y, bx + k * rb * 0.5f, by - 4, bx + k * rb * 1.9f, by + 1, 2.f);
              },
              [&](float, float, float d) { return d > -0.8f ? kInk : Shade(bark, k < 0 ? 1.1f : 0.75f); });
}

ObjDef Oak(uint32_t seed, const char* name) {
    ObjDef o{name, Img(150, 184), 43, 152, {{0, 0}}, {{0, 0}}, {}};
    float bx = 75, by = 168;
    Shadow(o.im, bx + 6, by + 2, 24, 9);
    Trunk(o.im, bx, by, bx + 2, 96, 7.5f, 4.5f, Hex(0x5A4433), seed);
    // A couple of limbs into the crown.
    Paint(o.im, 40, 70, 110, 130, [&](float x, float y) {
        return std::min(SdSegment(x, y, bx + 1, 112, bx - 22, 86, 3.f),
                        SdSegment(x, y, bx + 2, 106, bx + 24, 82, 2.6f));
    }, [&](float x, float, float d) { return d > -0.9f ? kInk : Shade(Hex(0x5A4433), x < bx ? 1.1f : 0.8f); });
    Rng r(seed);
    std::vector<Blob> blobs;
    float cy = 66, cr = 52;
    for (int i = 0; i < 26; ++i) {
        float a = r.R(0, 6.283f), d = std::sqrt(r.F()) * 0.8f;
        blobs.push_back({bx + std::cos(a) * d * 50, cy + std::sin(a) * d * 38, r.R(13, 20)});
    }
    Foliage(o.im, blobs, Hex(0x56742F), seed, cy, cr);
    return o;
}

ObjDef Pine(uint32_t seed) {
    ObjDef o{"pine", Img(104, 190), 20, 158, {{0, 0}}, {{0, 0}}, {}};
    float bx = 52, by = 174;
    Shadow(o.im, bx + 5, by + 1, 18, 7);
    Trunk(o.im, bx, by, bx, 120, 5.f, 3.f, Hex(0x4E3A2C), seed);
    Rng r(seed);
    const int tiers = 6;
    for (int i = 0; i < tiers; ++i) {
        float t = float(i) / (tiers - 1);
        float top = 8 + t * 98, bottom = top + 34 + t * 12, half = 12 + t * 34;
        uint32_t s = seed + i * 13;
        std::vector<float> xy = {bx, top, bx + half, bottom, bx - half, bottom};
        float x0 = bx - half - 4, x1 = bx + half + 4;
        Paint(o.im, x0, top - 2, x1, bottom + 6,
              [&](float x, float y) {
                  float d = SdPoly(x, y, xy);
                  // Sawtooth of needle tufts along the lower edge.
                  float saw = std::fabs(std::fmod(x - x0 + 100.f, 7.f) - 3.5f) - 1.75f;
                  float n = (VNoise(x / 2.f, y / 2.f, s) - 0.5f) * 3.f;
                  if (y > bottom - 6) d += saw * 0.9f;
                  return d + n;
              },
              [&](float x, float y, float d) {
                  if (d > -1.f) return Hex(0x121C14);
                  float side = (x - bx) / half;
                  float k = 1.05f - side * 0.3f - Clamp01((y - top) / (bottom - top)) * 0.2f;
                  k += (Rand01(int(x), int(y), s) - 0.5f) * 0.16f;
                  if (VNoise(x / 1.6f, y / 1.3f, s + 5) > 0.7f && side < 0.2f) k += 0.18f;
                  return Shade(Hex(0x2F5038), k - t * 0.08f);
              });
        (void)r;
    }
    return o;
}

void Branch(Img& im, Rng& r, float x, float y, float ang, float len, float rad, int depth) {
    float ex = x + std::cos(ang) * len, ey = y + std::sin(ang) * len;
    Paint(im, std::min(x, ex) - rad - 2, std::min(y, ey) - rad - 2, std::max(x, ex) + rad + 2,
          std::max(y, ey) + rad + 2,
          [&](float px, float py) { return SdSegment(px, py, x, y, ex, ey, rad); },
          [&](float px, float py, float d) {
              if (d > -0.8f) return Hex(0x0E0B0A);
              float side = std::cos(ang) * (py - y) - std::sin(ang) * (px - x);
              Col c = Hex(0x3A302B);
              return Shade(c, 1.f - side / std::max(1.f, rad) * 0.3f);
          });
    if (depth == 0 || rad < 0.9f) return;
    int n = 2;
    for (int i = 0; i < n; ++i) {
        float na = ang + (i == 0 ? -1 : 1) * r.R(0.3f, 0.7f);
        Branch(im, r, ex, ey, na, len * r.R(0.6f, 0.78f), rad * 0.66f, depth - 1);
    }
}

ObjDef DeadTree(uint32_t seed) {
    ObjDef o{"deadtree", Img(140, 170), 38, 138, {{0, 0}}, {{0, 0}}, {}};
    float bx = 70, by = 154;
    Shadow(o.im, bx + 5, by + 1, 18, 7);
    Rng r(seed);
    Trunk(o.im, bx, by, bx - 3, 96, 7.f, 4.f, Hex(0x3A302B), seed);
    Branch(o.im, r, bx - 3, 98, -1.57f - 0.5f, 26, 3.6f, 3);
    Branch(o.im, r, bx - 3, 98, -1.57f + 0.45f, 30, 3.6f, 3);
    Branch(o.im, r, bx - 1, 118, -0.35f, 22, 2.4f, 2);
    // Embers still glowing in the charred bark.
    for (int i = 0; i < 9; ++i) {
        float ex = bx + r.R(-5, 5), ey = r.R(112, 150);
        if (o.im.A(int(ex), int(ey)) <= 0) continue;
        Paint(o.im, ex - 2, ey - 2, ex + 2, ey + 2,
              [&](float x, float y) { return SdSegment(x, y, ex - 0.8f, ey, ex + 0.8f, ey + 1, 0.5f); },
              [&](float, float, float) { return i % 3 ? Hex(0x9A3E1C) : Hex(0xD27A34); });
    }
    return o;
}

ObjDef Bush(uint32_t seed, const char* name, Col base, bool berries) {
    ObjDef o{name, Img(84, 60), 10, 28, {{0, 0}}, {{0, 0}}, {}};
    float cx = 42, cy = 40;
    Shadow(o.im, cx + 4, cy + 5, 24, 8);
    Rng r(seed);
    std::vector<Blob> blobs;
    for (int i = 0; i < 9; ++i)
        blobs.push_back({cx + r.R(-20, 20), cy + r.R(-14, 4), r.R(8, 12)});
    Foliage(o.im, blobs, base, seed, cy - 6, 18);
    if (berries)
        for (int i = 0; i < 7; ++i) {
            float x = cx + r.R(-18, 16), y = cy + r.R(-14, 4);
            if (o.im.A(int(x), int(y)) <= 0) continue;
            Paint(o.im, x - 2, y - 2, x + 2, y + 2,
                  [&](float px, float py) { return SdCircle(px, py, x, y, 1.2f); },
                  [&](float px, float py, float) { return px + py < x + y - 0.5f ? Hex(0xC0503A) : Hex(0x7A2222); });
        }
    return o;
}

// Faceted boulder: a dome whose normal is snapped to a few facets.
void Boulder(Img& im, float cx, float cy, float rx, float ry, uint32_t seed, Col c, bool mossy) {
    Paint(im, cx - rx - 3, cy - ry * 1.4f - 3, cx + rx + 3, cy + ry * 0.6f + 3,
          [&](float x, float y) {
              float ang = std::atan2(y - cy, x - cx);
              float n = VNoise(ang * 2.f + 10, 0.5f, seed) - 0.5f;
              float flat = y > cy ? 1.7f : 1.f;  // flatter base
              return SdEllipse(x, y, cx, cy - ry * 0.3f, rx, ry * (y > cy ? 0.9f / flat * 1.7f : 1.3f)) + n * 5.f;
          },
          [&](float x, float y, float d) {
              if (d > -1.f) return kInk;
              float nx = (x - cx) / rx, ny = (y - (cy - ry * 0.3f)) / (ry * 1.3f);
              // Snap the normal to facets.
              float ang = std::atan2(ny, nx);
              float q = std::round(ang / 0.9f + VNoise(x / 8.f, y / 8.f, seed + 3) * 0.8f) * 0.9f;
              float rr = std::min(1.f, std::hypot(nx, ny));
              float fx = std::cos(q) * rr, fy = std::sin(q) * rr;
              float l = -(fx * 0.6f + fy * 0.8f);
              float k = 0.9f + l * 0.35f + (Rand01(int(x), int(y), seed) - 0.5f) * 0.1f;
              Col col = Shade(c, k);
              float moss = VNoise(x / 5.f, y / 4.f, seed + 9);
              if (mossy && ny < -0.3f && moss > 0.6f) col = Mix(col, Hex(0x56683A), 0.6f);
              return col;
          });
}

ObjDef Rocks(uint32_t seed, const char* name, bool big) {
    ObjDef o{name, Img(big ? 110 : 84, big ? 84 : 56), big ? 23 : 10, big ? 48 : 20,
             {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Shadow(o.im, cx + 5, cy + 4, big ? 36 : 24, big ? 11 : 8);
    if (big) {
        Boulder(o.im, cx - 6, cy, 30, 22, seed, Hex(0x7C786E));
        Boulder(o.im, cx + 22, cy + 6, 16, 11, seed + 1, Hex(0x807A70));
    } else {
        Boulder(o.im, cx - 8, cy, 16, 11, seed, Hex(0x7A766C));
        Boulder(o.im, cx + 12, cy + 3, 11, 8, seed + 1, Hex(0x85807A));
        Boulder(o.im, cx + 1, cy + 8, 7, 5, seed + 2, Hex(0x6E6A62));
    }
    return o;
}

// ---------------------------------------------------------------- textures

Col Plaster(float x, float z, uint32_t seed) {
    Col c = Mix(Hex(0xC4B391), Hex(0xD8CAA8), VNoise(x / 9.f, z / 9.f, seed));
    c = Mix(c, Hex(0x8C7B5C), Smooth(10.f, 0.f, z) * 0.5f);  // splash dirt at the foot
    float stain = VNoise(x / 5.f, z / 14.f, seed + 1);
    c = Shade(c, 0.94f + stain * 0.1f + (Rand01(int(x * 2), int(z * 2), seed) - 0.5f) * 0.05f);
    return c;
}

Col StoneCourses(float x, float z, uint32_t seed, Col base) {
    const float rowH = 7.f;
    int row = int(std::floor(z / rowH));
    float fz = z - row * rowH;
    float off = (row % 2) * 6.5f;
    float w = 13.f;
    int col = int(std::floor((x + off) / w));
    float fx = x + off - col * w;
    float jitter = Rand01(col, row, seed) * 4.f;
    fx = std::fmod(fx + jitter, w);
    if (fz < 1.1f || fx < 1.1f) return Shade(base, 0.45f);  // mortar
    float tone = Rand01(col, row, seed + 5);
    Col c = Shade(base, 0.82f + tone * 0.3f);
    if (fz > rowH - 2.f) c = Shade(c, 1.15f);  // top edge catches the light
    if (fx < 2.4f) c = Shade(c, 1.08f);
    if (fz < 2.2f) c = Shade(c, 0.85f);
    c = Shade(c, 0.95f + (Rand01(int(x * 3), int(z * 3), seed) - 0.5f) * 0.12f);
    return c;
}

Col Planks(float x, float z, uint32_t seed, Col base, float width) {
    int p = int(std::floor(x / width));
    float fx = x - p * width;
    if (fx < 0.9f) return Shade(base, 0.45f);
    float grain = VNoise(x * 1.5f, z / 6.f, seed + p);
    Col c = Shade(base, 0.85f + Rand01(p, 0, seed) * 0.25f + (grain - 0.5f) * 0.2f);
    if (fx < 1.9f) c = Shade(c, 1.12f);
    return c;
}

Col Thatch(float along, float down, uint32_t seed) {
    float strand = VNoise(along * 1.6f, down / 8.f, seed);
    float layer = std::fmod(down, 9.f) / 9.f;
    Col c = Mix(Hex(0x7E6A42), Hex(0xAE9765), strand);
    c = Shade(c, 0.8f + layer * 0.3f);
    return c;
}

Col Slate(float along, float down, uint32_t seed, Col base) {
    const float rowH = 5.f;
    int row = int(std::floor(down / rowH));
    float off = (row % 2) * 4.f;
    int col = int(std::floor((along + off) / 8.f));
    float fx = along + off - col * 8.f, fz = down - row * rowH;
    if (fz > rowH - 1.f || fx < 0.8f) return Shade(base, 0.5f);
    Col c = Shade(base, 0.85f + Rand01(col, row, seed) * 0.3f);
    if (fz < 1.5f) c = Shade(c, 1.12f);
    return c;
}

// ---------------------------------------------------------------- houses

struct HouseStyle {
    bool stone;
};

// A house of U x V cells with a gable roof whose ridge runs along u. The door and
// windows are on the front face (v = V, facing down-left).
ObjDef House(const char* name, bool stone, uint32_t seed, bool swap) {
    const float U = 3, V = 2, H = stone ? 74.f : 72.f, R = stone ? 40.f : 46.f, e = 0.22f;
    ObjDef o{name, Img(240, 230), 0, 0, {}, {}, {}};
    // Place the footprint so the roof fits: the base cell's top corner sits at
    // (x 32 * V + pad, y top room).
    o.ax = swap ? 240 - int(32 * V + 12 + 32 * e) - 32 : int(32 * V + 12 + 32 * e) - 32;
    o.ay = 230 - int(16 * (U + V)) - 10;
    Iso iso = IsoAt(o.ax, o.ay);
    iso.swap = swap;
    // Light by the face's real direction once the axes are exchanged.
    auto Light = [&](V3 n) { return obj::Light(swap ? V3{n.v, n.u, n.z} : n); };
    for (int i = 0; i < int(U); ++i)
        for (int j = 0; j < int(V); ++j) o.block.push_back({i, j});
    auto cell = [&](int i, int j) { return swap ? Cell{j, i} : Cell{i, j}; };
    o.ground.push_back(cell(1, int(V)));  // doorstep in front of the door
    // The front row of the footprint holds the foot of the front walls: on the ground
    // layer, so people walking past in front are drawn over it.
    for (int i = 0; i < int(U); ++i) o.ground.push_back(cell(i, int(V) - 1));
    for (int j = 0; j < int(V) - 1; ++j) o.ground.push_back(cell(int(U) - 1, j));
    o.walk.push_back(cell(1, int(V)));
    if (swap)
        for (Cell& c : o.block) std::swap(c.di, c.dj);
    Img& im = o.im;
    Col wallC = stone ? Hex(0x9A9388) : Hex(0xD0C29F);
    Col timber = Hex(0x3E2C1F);

    // Doorstep: a flat stone slab on the cell in front of the door.
    Quad(im, iso, {1.15f, V + 0.05f, 0}, {0.7f, 0, 0}, {0, 0.45f, 0},
         [&](float s, float t) { return Shade(Hex(0x8A857C), 1.05f - t * 0.15f + (Rand01(int(s * 30), int(t * 20), seed) - 0.5f) * 0.1f); },
         kInk);
    // Back roof slope.
    V3 ridgeA{-e, V / 2, H + R}, ridgeB{U + e, V / 2, H + R};
    float eaveDrop = R / (V / 2) * e;
    Col roofC = stone ? Hex(0x56606A) : Hex(0xA08A5A);
    auto roofShade = [&](float along, float down, float light) {
        Col c = stone ? Slate(along, down, seed, roofC) : Thatch(along, down, seed);
        return Shade(c, light);
    };
    float backL = Light({0, -1, 1});
    Quad(im, iso, ridgeA, {U + 2 * e, 0, 0}, {0, -(V / 2 + e), -(R + eaveDrop)},
         [&](float s, float t) { return roofShade(s * 110, t * 50, backL); }, kInk);
    // Walls.
    float lf = Light({0, 1, 0}), rf = Light({1, 0, 0});
    auto wall = [&](float x, float z, float light, bool front) {
        Col c = stone ? StoneCourses(x, z, seed + (front ? 0 : 9), wallC) : Plaster(x, z, seed);
        if (!stone) {
            // Timber frame: sill, posts, a middle rail and braces.
            float len = front ? U * 35.8f : V * 35.8f;
            bool beam = z < 4 || z > H - 5 || std::fabs(z - H * 0.52f) < 2.f;
            float px = std::fmod(x, len / (front ? 4.f : 3.f));
            bool post = px < 3.5f || x > len - 3.5f;
            float seg = len / (front ? 4.f : 3.f);
            float bx = std::fmod(x, seg) / seg;
            bool brace = z < H * 0.5f && std::fabs(bx - z / (H * 0.5f)) < 0.06f && int(x / seg) % 2 == 0;
            if (beam || post || brace) {
                c = Shade(timber, 0.9f + VNoise(x / 2.f, z / 9.f, seed) * 0.3f);
                if (post && px < 1.2f) c = Shade(c, 1.3f);
            }
        }
        return Shade(c, light);
    };
    float L = 35.8f;  // pixels per cell along a wall
    Quad(im, iso, {0, V, 0}, {U, 0, 0}, {0, 0, H},
         [&](float s, float t) { return wall(s * U * L, t * H, lf, true); }, kInk);
    Quad(im, iso, {U, V, 0}, {0, -V, 0}, {0, 0, H},
         [&](float s, float t) { return wall(s * V * L, t * H, rf, false); }, kInk);
    // Gable on the right end.
    Face(im, iso, {{U, V, H}, {U, 0, H}, {U, V / 2, H + R}}, {U, V, H}, {0, -V, 0}, {0, 0, R},
         [&](float s, float t) {
             Col c = stone ? StoneCourses(s * V * L, t * R + H, seed + 4, wallC)
                           : Planks(s * V * L, t * R, seed, Hex(0x6B5138), 4.f);
             return Shade(c, rf * 0.95f);
         },
         kInk);
    // Door on the front face, 22 px wide and 56 px tall, under a lintel.
    auto onFront = [&](float x, float z) { return V3{x / L, V, z}; };
    float doorX = 1.5f * L - 11.f;
    Quad(im, iso, onFront(doorX - 3, 0), {26.f / L, 0, 0}, {0, 0, 61},
         [&](float, float) { return Shade(stone ? Hex(0x6A645C) : timber, lf); }, kInk);
    Quad(im, iso, onFront(doorX, 0), {22.f / L, 0, 0}, {0, 0, 56},
         [&](float s, float t) {
             Col c = Planks(s * 22, t * 56, seed + 2, Hex(0x6E4B2E), 5.5f);
             if (std::fabs(t * 56 - 44) < 1.5f || std::fabs(t * 56 - 12) < 1.5f) c = Hex(0x2A2522);
             if (s > 0.78f && s < 0.88f && std::fabs(t * 56 - 28) < 1.6f) c = Hex(0xB09050);
             return Shade(c, lf);
         },
         kInk);
    // Windows with shutters and a warm light behind the panes.
    auto window = [&](V3 o3, V3 ds, float light) {
        Quad(im, iso, o3, ds, {0, 0, 18},
             [&](float s, float t) {
                 Col glass = Mix(Hex(0xE0A850), Hex(0x8A5A2A), t);
                 bool bar = std::fabs(s - 0.5f) < 0.07f || std::fabs(t - 0.5f) < 0.08f;
                 return bar ? Shade(timber, light) : glass;
             },
             kInk);
        Quad(im, iso, o3 + ds * -0.55f, ds * 0.5f, {0, 0, 18},
             [&](float s, float t) { return Shade(Planks(s * 8, t * 18, seed + 3, Hex(0x4A5A4A), 3.f), light); }, kInk);
    };
    window(onFront(0.45f * L, 32), {12.f / L, 0, 0}, lf);
    window(onFront(2.35f * L, 32), {12.f / L, 0, 0}, lf);
    window({U, V * 0.5f + 0.16f, 30}, {0, -12.f / L, 0}, rf);
    // Chimney on the back slope.
    if (stone) {
        V3 c0{U * 0.7f, V * 0.3f, H + R * 0.5f};
        Quad(im, iso, c0 + V3{0, 0.3f, 0}, {0.3f, 0, 0}, {0, 0, 34},
             [&](float s, float t) { return Shade(StoneCourses(s * 11, t * 34, seed + 7, Hex(0x8A8278)), lf); }, kInk);
        Quad(im, iso, c0 + V3{0.3f, 0.3f, 0}, {0, -0.3f, 0}, {0, 0, 34},
             [&](float s, float t) { return Shade(StoneCourses(s * 11, t * 34, seed + 8, Hex(0x8A8278)), rf); }, kInk);
        Quad(im, iso, c0 + V3{0, 0, 34}, {0.3f, 0, 0}, {0, 0.3f, 0},
             [&](float, float) { return Hex(0x1E1A18); }, kInk);
    }
    // Front roof slope, over everything.
    float frontL = Light({0, 1, 1.3f});
    Quad(im, iso, ridgeA, {U + 2 * e, 0, 0}, {0, V / 2 + e, -(R + eaveDrop)},
         [&](float s, float t) {
             Col c = roofShade(s * 110, t * 50, frontL);
             if (t < 0.06f) c = Shade(c, 1.2f);  // ridge
             if (t > 0.94f) c = Shade(c, 0.7f);  // eave edge
             return c;
         },
         kInk);
    (void)ridgeB;
    return o;
}

// ---------------------------------------------------------------- small builds

ObjDef Fence(bool alongV) {
    ObjDef o{alongV ? "fence_v" : "fence_u", Img(72, 64), 4, 28, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    auto P = [&](float a, float b, float z) { return alongV ? V3{b, a, z} : V3{a, b, z}; };
    Col wood = Hex(0x7A5C3E);
    float lpost = Light(alongV ? V3{1, 0, 0} : V3{0, 1, 0});
    auto post = [&](float a) {
        V3 b = P(a - 0.06f, 0.5f, 0);
        Quad(o.im, iso, b, alongV ? V3{0, 0.12f, 0} : V3{0.12f, 0, 0}, {0, 0, 30},
             [&](float s, float t) { return Shade(Planks(s * 5, t * 30, 3, wood, 9.f), lpost * (1.1f - s * 0.2f)); }, kInk);
    };
    post(0.08f);
    for (float z : {10.f, 21.f})
        Quad(o.im, iso, P(0.02f, 0.5f, z), alongV ? V3{0, 0.96f, 0} : V3{0.96f, 0, 0}, {0, 0, 4},
             [&](float s, float t) { return Shade(wood, lpost * (0.9f + t * 0.3f) + (VNoise(s * 20, 0, 4) - 0.5f) * 0.2f); }, kInk);
    post(0.92f);
    return o;
}

ObjDef StoneWall(bool alongV) {
    ObjDef o{alongV ? "wall_v" : "wall_u", Img(76, 84), 6, 46, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    const float H = 34, a0 = 0, a1 = 1, b0 = 0.32f, b1 = 0.68f;
    Col st = Hex(0x8E887C);
    if (!alongV) {
        Quad(o.im, iso, {a0, b1, 0}, {a1, 0, 0}, {0, 0, H},
             [&](float s, float t) { return Shade(StoneCourses(s * 35.8f, t * H, 21, st), Light({0, 1, 0})); }, kInk);
        Quad(o.im, iso, {a1, b1, 0}, {0, -(b1 - b0), 0}, {0, 0, H},
             [&](float s, float t) { return Shade(StoneCourses(s * 13, t * H, 22, st), Light({1, 0, 0})); }, kInk);
        Quad(o.im, iso, {a0, b0, H}, {a1, 0, 0}, {0, b1 - b0, 0},
             [&](float s, float t) { return Shade(Slate(s * 36, t * 12, 23, Hex(0x9A958A)), Light({0, 0, 1})); }, kInk);
    } else {
        Quad(o.im, iso, {b0, a1, 0}, {b1 - b0, 0, 0}, {0, 0, H},
             [&](float s, float t) { return Shade(StoneCourses(s * 13, t * H, 22, st), Light({0, 1, 0})); }, kInk);
        Quad(o.im, iso, {b1, a1, 0}, {0, -a1, 0}, {0, 0, H},
             [&](float s, float t) { return Shade(StoneCourses(s * 35.8f, t * H, 21, st), Light({1, 0, 0})); }, kInk);
        Quad(o.im, iso, {b0, a0, H}, {b1 - b0, 0, 0}, {0, a1, 0},
             [&](float s, float t) { return Shade(Slate(t * 36, s * 12, 23, Hex(0x9A958A)), Light({0, 0, 1})); }, kInk);
    }
    return o;
}

// An upright cylinder standing on (cu, cv): r in pixels across, h tall.
void Cylinder(Img& im, const Iso& iso, float cu, float cv, float z0, float r, float h,
              const std::function<Col(float ang, float z, float light)>& side, Col top) {
    float cx = iso.X({cu, cv, 0}), cy = iso.Y({cu, cv, z0});
    float ry = r * 0.5f;
    Paint(im, cx - r - 2, cy - h - ry - 2, cx + r + 2, cy + ry + 2,
          [&](float x, float y) {
              float dx = (x - cx) / r;
              if (std::fabs(dx) > 1) return std::fabs(x - cx) - r;
              float yb = cy + ry * std::sqrt(1 - dx * dx);
              float yt = cy - h - ry * std::sqrt(1 - dx * dx);
              return std::max(std::fabs(x - cx) - r, std::max(y - yb, yt - y));
          },
          [&](float x, float y, float d) {
              if (d > -1.f) return kInk;
              float dx = Clamp01((x - cx) / r * 0.5f + 0.5f) * 2 - 1;
              float ang = std::asin(std::max(-1.f, std::min(1.f, dx)));
              float yb = cy + ry * std::sqrt(std::max(0.f, 1 - dx * dx));
              float light = 1.05f - dx * 0.38f;
              return side(ang, yb - y, light);
          });
    Paint(im, cx - r - 1, cy - h - ry - 1, cx + r + 1, cy - h + ry + 1,
          [&](float x, float y) { return SdEllipse(x, y, cx, cy - h, r, ry); },
          [&](float, float, float d) { return d > -1.f ? kInk : top; });
}

ObjDef Well(uint32_t seed) {
    ObjDef o{"well", Img(96, 110), 16, 76, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cu = 0.5f, cv = 0.5f;
    float cx = iso.X({cu, cv, 0});
    Cylinder(o.im, iso, cu, cv, 0, 22, 20,
             [&](float ang, float z, float light) {
                 return Shade(StoneCourses(ang * 22 + 40, z, seed, Hex(0x8E887C)), light);
             },
             Hex(0x9A958A));
    // Dark water inside the rim.
    float ty = iso.Y({cu, cv, 20});
    Paint(o.im, cx - 18, ty - 9, cx + 18, ty + 9,
          [&](float x, float y) { return SdEllipse(x, y, cx, ty + 0.5f, 16.5f, 7.5f); },
          [&](float x, float y, float) { return Mix(Hex(0x0E1416), Hex(0x2A4048), Clamp01((y - ty) / 8.f + (x - cx) / 30.f)); });
    // Posts, cross beam and a small roof.
    for (int s = -1; s <= 1; s += 2) {
        float px = cx + s * 19;
        Poly(o.im, {px - 2.5f, ty + 2, px + 2.5f, ty + 2, px + 2.5f, ty - 46, px - 2.5f, ty - 46},
             [&](float x, float) { return Shade(Hex(0x6E5036), x < px ? 1.15f : 0.8f); }, kInk);
    }
    Poly(o.im, {cx - 22, ty - 40, cx + 22, ty - 40, cx + 22, ty - 36, cx - 22, ty - 36},
         [&](float, float y) { return Shade(Hex(0x5E4430), y < ty - 38 ? 1.1f : 0.85f); }, kInk);
    Paint(o.im, cx - 2, ty - 37, cx + 2, ty - 12, [&](float x, float y) { return SdSegment(x, y, cx, ty - 37, cx, ty - 14, 0.6f); },
          [&](float, float, float) { return Hex(0xA08A60); });
    Poly(o.im, {cx - 7, ty - 15, cx + 7, ty - 15, cx + 5, ty - 5, cx - 5, ty - 5},
         [&](float x, float) { return Shade(Planks(x - cx + 7, 0, seed, Hex(0x7A5A3A), 3.f), 1.f); }, kInk);
    Poly(o.im, {cx - 30, ty - 44, cx, ty - 62, cx + 30, ty - 44, cx + 27, ty - 41, cx, ty - 57, cx - 27, ty - 41},
         [&](float x, float y) { return Shade(Slate(x * 0.8f, y, seed, Hex(0x6A5A48)), x < cx ? 1.15f : 0.8f); }, kInk);
    return o;
}

void Barrel(Img& im, const Iso& iso, float u, float v, uint32_t seed) {
    Cylinder(im, iso, u, v, 0, 9, 22,
             [&](float ang, float z, float light) {
                 Col c = Planks(ang * 9 + 20, z, seed, Hex(0x7A5638), 3.5f);
                 if (std::fabs(z - 4) < 1.3f || std::fabs(z - 18) < 1.3f) c = Hex(0x4A4A4C);
                 float bulge = std::sin(z / 22.f * 3.1416f);
                 return Shade(c, light * (0.85f + bulge * 0.2f));
             },
             Hex(0x8A6848));
}

void Crate(Img& im, const Iso& iso, V3 o, float size, float h, uint32_t seed) {
    Col wood = Hex(0x9A7A50);
    Quad(im, iso, o + V3{0, size, 0}, {size, 0, 0}, {0, 0, h},
         [&](float s, float t) {
             Col c = Planks(t * h, s * 20, seed, wood, 5.f);
             if (s < 0.1f || s > 0.9f || t < 0.1f || t > 0.9f) c = Shade(wood, 0.75f);
             return Shade(c, Light({0, 1, 0}));
         }, kInk);
    Quad(im, iso, o + V3{size, size, 0}, {0, -size, 0}, {0, 0, h},
         [&](float s, float t) {
             Col c = Planks(t * h, s * 20, seed + 1, wood, 5.f);
             if (s < 0.1f || s > 0.9f || t < 0.1f || t > 0.9f) c = Shade(wood, 0.75f);
             return Shade(c, Light({1, 0, 0}));
         }, kInk);
    Quad(im, iso, o + V3{0, 0, h}, {size, 0, 0}, {0, size, 0},
         [&](float s, float t) { return Shade(Planks(s * 24, t * 10, seed + 2, wood, 6.f), Light({0, 0, 1})); }, kInk);
}

ObjDef Barrels(uint32_t seed) {
    ObjDef o{"barrels", Img(84, 70), 10, 36, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    Shadow(o.im, iso.X({0.5f, 0.5f, 0}) + 4, iso.Y({0.5f, 0.5f, 0}) + 2, 26, 9);
    Barrel(o.im, iso, 0.3f, 0.35f, seed);
    Barrel(o.im, iso, 0.72f, 0.3f, seed + 1);
    Barrel(o.im, iso, 0.45f, 0.75f, seed + 2);
    return o;
}

ObjDef Crates(uint32_t seed) {
    ObjDef o{"crates", Img(84, 80), 10, 44, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    Shadow(o.im, iso.X({0.5f, 0.5f, 0}) + 4, iso.Y({0.5f, 0.5f, 0}) + 2, 28, 9);
    Crate(o.im, iso, {0.1f, 0.1f, 0}, 0.5f, 18, seed);
    Crate(o.im, iso, {0.5f, 0.45f, 0}, 0.45f, 16, seed + 1);
    Crate(o.im, iso, {0.2f, 0.2f, 18}, 0.38f, 14, seed + 2);
    return o;
}

ObjDef Signpost(uint32_t seed) {
    ObjDef o{"signpost", Img(72, 96), 4, 62, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Shadow(o.im, cx + 4, cy + 1, 10, 4);
    Poly(o.im, {cx - 2.5f, cy + 1, cx + 2.5f, cy + 1, cx + 2.5f, cy - 60, cx - 2.5f, cy - 60},
         [&](float x, float y) { return Shade(Planks(y, x, seed, Hex(0x6A4E34), 40.f), x < cx ? 1.15f : 0.8f); }, kInk);
    auto board = [&](float y, bool right) {
        float s = right ? 1.f : -1.f;
        float x0 = cx + s * 2, x1 = cx + s * 28, xt = cx + s * 33;
        Poly(o.im, {x0, y - 5, x1, y - 5 + s * 2, xt, y + 1 + s, x1, y + 6 + s * 2, x0, y + 5},
             [&](float x, float yy) {
                 Col c = Planks(yy * 2, x, seed + int(y), Hex(0x8A6A48), 40.f);
                 if (std::fabs(yy - y) < 0.8f && std::fabs(x - (x0 + x1) / 2) < 9) c = Hex(0x2E2218);  // carved letters
                 return Shade(c, 1.1f - (yy - y + 5) * 0.02f);
             },
             kInk);
    };
    board(cy - 50, true);
    board(cy - 38, false);
    return o;
}

ObjDef Stall(uint32_t seed) {
    ObjDef o{"stall", Img(150, 120), 43, 50, {{0, 0}, {1, 0}}, {{0, 0}, {1, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    const float U = 2, V = 1;
    Col wood = Hex(0x7A5A3A);
    auto post = [&](float u, float v) {
        Quad(o.im, iso, {u - 0.04f, v, 0}, {0.08f, 0, 0}, {0, 0, 52},
             [&](float s, float) { return Shade(wood, 1.1f - s * 0.3f); }, kInk);
    };
    post(0.1f, 0.1f); post(U - 0.1f, 0.1f);
    // Counter with goods.
    Crate(o.im, iso, {0.1f, 0.35f, 0}, 0.01f, 0, seed);  // no-op keeps the seed sequence stable
    Quad(o.im, iso, {0.05f, V - 0.05f, 0}, {U - 0.1f, 0, 0}, {0, 0, 20},
         [&](float s, float t) { return Shade(Planks(s * 70, t * 20, seed, wood, 7.f), Light({0, 1, 0})); }, kInk);
    Quad(o.im, iso, {U - 0.05f, V - 0.05f, 0}, {0, -0.6f, 0}, {0, 0, 20},
         [&](float s, float t) { return Shade(Planks(s * 20, t * 20, seed + 1, wood, 7.f), Light({1, 0, 0})); }, kInk);
    Quad(o.im, iso, {0.05f, 0.35f, 20}, {U - 0.1f, 0, 0}, {0, 0.6f, 0},
         [&](float s, float t) {
             Col cloth = Hex(0x5A6E7A);
             return Shade(cloth, 1.f + (VNoise(s * 12, t * 4, seed) - 0.5f) * 0.2f);
         }, kInk);
    // Apples, cabbages and cloth rolls on the counter.
    Rng r(seed);
    for (int i = 0; i < 14; ++i) {
        float u = r.R(0.2f, U - 0.25f), v = r.R(0.45f, 0.85f);
        float x = iso.X({u, v, 0}), y = iso.Y({u, v, 23});
        Col c = i % 3 == 0 ? Hex(0x9A3A28) : (i % 3 == 1 ? Hex(0x7A9A48) : Hex(0xB08A40));
        Paint(o.im, x - 4, y - 4, x + 4, y + 4, [&](float px, float py) { return SdCircle(px, py, x, y, 2.6f); },
              [&](float px, float py, float d) { return d > -0.7f ? kInk : Shade(c, 1.1f - (px - x + py - y) * 0.1f); });
    }
    post(0.1f, V - 0.1f); post(U - 0.1f, V - 0.1f);
    // Striped awning, sloping towards the front.
    Quad(o.im, iso, {-0.05f, 0.0f, 58}, {U + 0.1f, 0, 0}, {0, V + 0.2f, -14},
         [&](float s, float t) {
             bool stripe = int(s * 9) % 2 == 0;
             Col c = stripe ? Hex(0x8E3A2A) : Hex(0xD6C8A8);
             c = Shade(c, Light({0, 0.4f, 1}) * (1.f - t * 0.15f) + (VNoise(s * 30, t * 6, seed) - 0.5f) * 0.1f);
             if (t > 0.9f) c = Shade(c, 0.8f);
             return c;
         }, kInk);
    // Scalloped valance along the front edge.
    for (int k = 0; k < 9; ++k) {
        float u = -0.05f + (k + 0.5f) * (U + 0.1f) / 9;
        float x = iso.X({u, V + 0.15f, 44}), y = iso.Y({u, V + 0.15f, 44});
        Col c = k % 2 == 0 ? Hex(0x7E3224) : Hex(0xC2B494);
        Paint(o.im, x - 6, y - 2, x + 6, y + 6, [&](float px, float py) { return SdEllipse(px, py, x, y, 4.2f, 3.5f); },
              [&](float, float, float d) { return d > -0.8f ? kInk : c; });
    }
    return o;
}

// Bridge deck of n cells along u (or v), all of it lying flat on the ground.
ObjDef Bridge(bool alongV, int n) {
    ObjDef o{alongV ? "bridge_v" : "bridge_u", Img(32 * (n + 1) + 8, 16 * (n + 1) + 20), 0, 0, {}, {}, {}};
    o.ax = alongV ? 32 * n - 32 + 4 : 4;
    o.ay = 6;
    Iso iso = IsoAt(o.ax, o.ay);
    for (int k = 0; k < n; ++k) {
        Cell c = alongV ? Cell{0, k} : Cell{k, 0};
        o.ground.push_back(c);
        o.walk.push_back(c);
    }
    auto P = [&](float a, float b, float z) { return alongV ? V3{b, a, z} : V3{a, b, z}; };
    Col wood = Hex(0x7E6040);
    // Side beam visible below the near edge.
    V3 along = alongV ? V3{0, float(n), 0} : V3{float(n), 0, 0};
    Quad(o.im, iso, P(0, 0.88f, -5), along, {0, 0, 5},
         [&](float s, float) { return Shade(Hex(0x4A3826), 0.9f + VNoise(s * 40, 0, 2) * 0.2f); }, kInk);
    // Deck: planks across the span.
    Quad(o.im, iso, P(0, 0.12f, 0), along, alongV ? V3{0.76f, 0, 0} : V3{0, 0.76f, 0},
         [&](float s, float t) {
             float x = s * n * 35.8f;
             Col c = Planks(x, t * 30, 11, wood, 6.f);
             if (Rand01(int(x / 6.f), 0, 12) > 0.85f) c = Shade(c, 0.8f);  // an older plank
             return Shade(c, Light({0, 0, 1}) * (1.02f - t * 0.06f));
         }, kInk);
    // Rails drawn flat along both edges, with post heads.
    for (float b : {0.14f, 0.86f}) {
        Quad(o.im, iso, P(0, b - 0.04f, 0), along, alongV ? V3{0.08f, 0, 0} : V3{0, 0.08f, 0},
             [&](float, float t) { return Shade(Hex(0x5A422C), 1.15f - t * 0.3f); }, kInk);
        for (int k = 0; k <= n; ++k) {
            V3 p = P(std::min(float(k), n - 0.12f), b - 0.06f, 0);
            Quad(o.im, iso, p, {0.12f, 0, 0}, {0, 0.12f, 0},
                 [&](float s, float t) { return Shade(Hex(0x4A3624), 1.2f - (s + t) * 0.25f); }, kInk);
        }
    }
    return o;
}

ObjDef CaveMouth(uint32_t seed) {
    ObjDef o{"cave", Img(230, 170), 0, 0, {}, {}, {}};
    o.ax = 80; o.ay = 100;
    Iso iso = IsoAt(o.ax, o.ay);
    // The rock mass covers three cells along u; the middle front cell is the way in.
    o.block = {{0, 0}, {1, 0}, {2, 0}, {0, -1}, {1, -1}, {2, -1}};
    o.ground = {{1, 1}};
    o.walk = {{1, 1}};
    // Dark threshold of packed earth leading in.
    Quad(o.im, iso, {0.9f, 1.0f, 0}, {1.2f, 0, 0}, {0, 0.8f, 0},
         [&](float s, float t) {
             float k = 0.55f + t * 0.45f + (Rand01(int(s * 40), int(t * 30), seed) - 0.5f) * 0.1f;
             return Shade(Hex(0x4A4038), k);
         }, Hex(0x2A221C), 0.f);
    Rng r(seed);
    // Back boulders, then the arch, then the front boulders framing it.
    struct B { float u, v, rx, ry; };
    std::vector<B> back = {{0.2f, -0.6f, 34, 30}, {1.2f, -0.9f, 44, 40}, {2.3f, -0.5f, 36, 30},
                           {0.6f, -0.2f, 30, 26}, {1.9f, -0.1f, 32, 28}};
    for (size_t i = 0; i < back.size(); ++i) {
        float x = iso.X({back[i].u + 0.5f, back[i].v + 0.5f, 0}), y = iso.Y({back[i].u + 0.5f, back[i].v + 0.5f, 0});
        Boulder(o.im, x, y - 6, back[i].rx, back[i].ry, seed + uint32_t(i), Hex(0x6E6860));
    }
    // The opening: a dark arch on the front face.
    float mx = iso.X({1.5f, 1.0f, 0}), my = iso.Y({1.5f, 1.0f, 0});
    Paint(o.im, mx - 30, my - 62, mx + 30, my + 4,
          [&](float x, float y) {
              float d = SdEllipse(x, y, mx, my - 22, 22, 36);
              return std::max(d, y - my - 1) + (VNoise(x / 3.f, y / 3.f, seed + 40) - 0.5f) * 4.f;
          },
          [&](float x, float y, float d) {
              if (d > -1.5f) return Hex(0x16110E);
              float depth = Clamp01((my - y) / 50.f);
              return Mix(Hex(0x241C18), Hex(0x080606), Clamp01(depth + std::fabs(x - mx) / 40.f));
          });
    std::vector<B> front = {{0.25f, 0.45f, 28, 24}, {2.55f, 0.4f, 28, 22}, {0.0f, 0.75f, 18, 13}, {2.85f, 0.7f, 16, 12}};
    for (size_t i = 0; i < front.size(); ++i) {
        float x = iso.X({front[i].u + 0.5f, front[i].v + 0.5f, 0}), y = iso.Y({front[i].u + 0.5f, front[i].v + 0.5f, 0});
        Boulder(o.im, x, y - 4, front[i].rx, front[i].ry, seed + 20 + uint32_t(i), Hex(0x746E64));
    }
    // Lintel stone over the mouth.
    Boulder(o.im, mx, my - 58, 30, 12, seed + 30, Hex(0x7A746A));
    // Old timber props of the mine.
    for (int s = -1; s <= 1; s += 2) {
        float px = mx + s * 20;
        Poly(o.im, {px - 3, my + 1, px + 3, my + 1, px + 2.5f, my - 44, px - 2.5f, my - 44},
             [&](float x, float) { return Shade(Hex(0x5A4430), x < px ? 1.1f : 0.75f); }, kInk);
    }
    Poly(o.im, {mx - 26, my - 48, mx + 26, my - 48, mx + 26, my - 42, mx - 26, my - 42},
         [&](float, float y) { return Shade(Hex(0x5A4430), y < my - 45 ? 1.1f : 0.8f); }, kInk);
    (void)r;
    return o;
}

// A broken wall of the burned keep: tall stone, jagged top, soot streaks.
ObjDef Ruin(uint32_t seed) {
    ObjDef o{"ruin", Img(150, 170), 43, 110, {{0, 0}, {1, 0}}, {{0, 0}, {1, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    const float U = 2, b0 = 0.3f, b1 = 0.7f;
    auto top = [&](float s) { return 70 + 40 * VNoise(s * 6, 0.5f, seed) - 30 * std::fabs(s - 0.35f); };
    Col st = Hex(0x7E786E);
    auto soot = [&](Col c, float x, float z, float ztop) {
        float k = Smooth(ztop - 30, ztop, z) * 0.6f + VNoise(x / 3.f, z / 20.f, seed + 3) * 0.3f;
        return Mix(c, Hex(0x221E1C), Clamp01(k));
    };
    int steps = 40;
    std::vector<V3> front, side;
    for (int i = 0; i <= steps; ++i) front.push_back({U * i / steps, b1, top(float(i) / steps)});
    front.push_back({U, b1, 0}); front.push_back({0, b1, 0});
    Face(o.im, iso, front, {0, b1, 0}, {U, 0, 0}, {0, 0, 1},
         [&](float s, float z) {
             return Shade(soot(StoneCourses(s * U * 35.8f, z, seed, st), s * 70, z, top(s)), Light({0, 1, 0}));
         }, kInk);
    float zt = top(1.f);
    Face(o.im, iso, {{U, b1, 0}, {U, b0, 0}, {U, b0, zt - 4}, {U, b1, zt}}, {U, b1, 0}, {0, -(b1 - b0), 0}, {0, 0, 1},
         [&](float s, float z) { return Shade(soot(StoneCourses(s * 14, z, seed + 1, st), s * 14, z, zt), Light({1, 0, 0})); }, kInk);
    // Fallen stones at the foot.
    Rng r(seed);
    for (int i = 0; i < 5; ++i) {
        float u = r.R(0.1f, 1.9f);
        float x = iso.X({u, 0.95f, 0}), y = iso.Y({u, 0.95f, 0});
        Boulder(o.im, x, y, r.R(5, 9), r.R(3.5f, 6), seed + 10 + i, Hex(0x6E685E));
    }
    return o;
}

ObjDef Stump(uint32_t seed) {
    ObjDef o{"stump", Img(72, 56), 4, 22, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Shadow(o.im, cx + 4, cy + 2, 15, 6);
    Cylinder(o.im, iso, 0.5f, 0.5f, 0, 11, 12,
             [&](float ang, float z, float light) { return Shade(Planks(ang * 11 + 20, z, seed, Hex(0x5E4632), 2.5f), light); },
             Hex(0xA88A60));
    float ty = cy - 12;
    for (float rr : {3.f, 6.f, 9.f})
        Paint(o.im, cx - 11, ty - 6, cx + 11, ty + 6,
              [&](float x, float y) { return std::fabs(SdEllipse(x, y, cx, ty, rr, rr * 0.5f)) - 0.35f; },
              [&](float, float, float) { return Hex(0x7E6040); });
    return o;
}

ObjDef Grave(uint32_t seed) {
    ObjDef o{"grave", Img(72, 80), 4, 44, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    // Low mound, then a leaning headstone.
    Paint(o.im, cx - 26, cy - 8, cx + 26, cy + 12, [&](float x, float y) { return SdEllipse(x, y, cx + 2, cy + 2, 22, 8); },
          [&](float x, float y, float d) { return d > -1 ? kInk : Shade(Hex(0x5A4A36), 1.1f - (y - cy) * 0.04f - (x - cx) * 0.005f); });
    Poly(o.im, {cx - 9, cy - 2, cx + 8, cy, cx + 10, cy - 30, cx + 3, cy - 38, cx - 5, cy - 37, cx - 10, cy - 30},
         [&](float x, float y) {
             Col c = Shade(Hex(0x8A867C), 1.12f - (x - cx + 9) * 0.022f + (Rand01(int(x), int(y), seed) - 0.5f) * 0.1f);
             if (std::fabs(x - cx) < 1.2f && y > cy - 30 && y < cy - 14) c = Hex(0x3A3632);
             if (std::fabs(y - (cy - 25)) < 1.2f && std::fabs(x - cx) < 5) c = Hex(0x3A3632);
             return c;
         }, kInk);
    return o;
}

// The hilltop shrine: a stepped stone base, a carved stele and an ember bowl.
ObjDef Shrine(uint32_t seed) {
    ObjDef o{"shrine", Img(96, 120), 16, 82, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    Col st = Hex(0x8A857A);
    // Two steps.
    for (int k = 0; k < 2; ++k) {
        float m = 0.08f + k * 0.14f, z0 = k * 6.f, h = 6.f;
        Quad(o.im, iso, {m, 1 - m, z0}, {1 - 2 * m, 0, 0}, {0, 0, h},
             [&](float s, float t) { return Shade(StoneCourses(s * 30, t * h + z0, seed + k, st), Light({0, 1, 0})); }, kInk);
        Quad(o.im, iso, {1 - m, 1 - m, z0}, {0, -(1 - 2 * m), 0}, {0, 0, h},
             [&](float s, float t) { return Shade(StoneCourses(s * 30, t * h + z0, seed + 5 + k, st), Light({1, 0, 0})); }, kInk);
        Quad(o.im, iso, {m, m, z0 + h}, {1 - 2 * m, 0, 0}, {0, 1 - 2 * m, 0},
             [&](float s, float t) { return Shade(st, Light({0, 0, 1}) * (1.05f - (s + t) * 0.08f)); }, kInk);
    }
    // Stele.
    const float a = 0.38f, b = 0.62f, z = 12, H = 48;
    Quad(o.im, iso, {a, b - 0.08f, z}, {b - a, 0, 0}, {0, 0, H},
         [&](float s, float t) {
             Col c = Shade(Hex(0x9A958A), Light({0, 1, 0}) * (0.95f + VNoise(s * 8, t * 12, seed) * 0.1f));
             float dx = std::fabs(s - 0.5f), dy = t - 0.62f;
             if (std::fabs(std::hypot(dx * 2.2f, dy * 1.6f) - 0.17f) < 0.035f) c = Hex(0x4A3A2A);  // carved ring
             return c;
         }, kInk);
    Quad(o.im, iso, {b, b - 0.08f, z}, {0, -(b - a - 0.16f), 0}, {0, 0, H},
         [&](float s, float t) { return Shade(Hex(0x9A958A), Light({1, 0, 0}) * (0.95f + VNoise(s * 8, t * 12, seed + 1) * 0.1f)); }, kInk);
    Quad(o.im, iso, {a, a + 0.08f, z + H}, {b - a, 0, 0}, {0, b - a - 0.16f, 0},
         [&](float, float) { return Shade(Hex(0x9A958A), Light({0, 0, 1})); }, kInk);
    // Ember bowl in front of the stele.
    float bx = iso.X({0.42f, 0.82f, 12}), by = iso.Y({0.42f, 0.82f, 12});
    Paint(o.im, bx - 9, by - 6, bx + 9, by + 4, [&](float x, float y) { return SdEllipse(x, y, bx, by - 1, 7.5f, 3.5f); },
          [&](float x, float, float d) { return d > -1 ? kInk : Shade(Hex(0x5A4A3A), 1.1f - (x - bx) / 14.f); });
    Paint(o.im, bx - 6, by - 6, bx + 6, by, [&](float x, float y) { return SdEllipse(x, y, bx, by - 2.5f, 5.5f, 2.f); },
          [&](float x, float y, float) { return Mix(Hex(0xFFD080), Hex(0xC8401A), Clamp01(std::hypot(x - bx, (y - by + 2.5f) * 2) / 6.f)); });
    return o;
}

// Reeds for river banks and the ford.
ObjDef Reeds(uint32_t seed) {
    ObjDef o{"reeds", Img(72, 72), 4, 38, {}, {{0, 0}}, {{0, 0}}};
    Iso iso = IsoAt(o.ax, o.ay);
    Rng r(seed);
    std::vector<std::array<float, 5>> blades;
    for (int i = 0; i < 22; ++i) {
        float u = r.R(0.2f, 0.8f), v = r.R(0.2f, 0.8f);
        float x = iso.X({u, v, 0}), y = iso.Y({u, v, 0});
        blades.push_back({x, y, r.R(16, 30), r.R(-5, 5), r.F()});
    }
    std::sort(blades.begin(), blades.end(), [](const auto& p, const auto& q) { return p[1] < q[1]; });
    for (const auto& bl : blades) {
        float x = bl[0], y = bl[1], len = bl[2], lean = bl[3];
        Col c = Mix(Hex(0x5A6A34), Hex(0x9A9A58), bl[4]);
        Paint(o.im, x - 8, y - len - 2, x + 8, y + 2,
              [&](float px, float py) { return SdSegment(px, py, x, y, x + lean, y - len, 0.7f); },
              [&](float, float py, float d) { return d > -0.3f ? Shade(c, 0.55f) : Shade(c, 0.8f + 0.4f * (y - py) / len); });
        if (bl[4] > 0.75f)  // a seed head
            Paint(o.im, x + lean - 3, y - len - 4, x + lean + 3, y - len + 6,
                  [&](float px, float py) { return SdSegment(px, py, x + lean * 0.95f, y - len * 0.95f, x + lean * 0.85f, y - len * 0.8f, 1.5f); },
                  [&](float, float, float d) { return d > -0.5f ? kInk : Hex(0x6A4A2A); });
    }
    return o;
}

// A camp fire: a ring of stones, crossed logs and low flames.
ObjDef Campfire(uint32_t seed) {
    ObjDef o{"campfire", Img(72, 64), 4, 30, {{0, 0}}, {{0, 0}}, {}};
    Iso iso = IsoAt(o.ax, o.ay);
    float cx = iso.X({0.5f, 0.5f, 0}), cy = iso.Y({0.5f, 0.5f, 0});
    Paint(o.im, cx - 20, cy - 10, cx + 20, cy + 10, [&](float x, float y) { return SdEllipse(x, y, cx, cy, 17, 8); },
          [&](float x, float y, float) { return Mix(Hex(0x3A2A20), Hex(0x1A1410), Clamp01(std::hypot(x - cx, (y - cy) * 2) / 17.f)); });
    for (int k = 0; k < 9; ++k) {
        float a = k * 6.2831853f / 9;
        Boulder(o.im, cx + std::cos(a) * 16, cy + std::sin(a) * 7.5f + 2, 3.6f, 2.6f, seed + k, Hex(0x7A746A));
    }
    for (int s = -1; s <= 1; s += 2)
        Paint(o.im, cx - 12, cy - 8, cx + 12, cy + 6,
              [&](float x, float y) { return SdSegment(x, y, cx - 9 * s, cy + 2, cx + 9 * s, cy - 3, 2.f); },
              [&](float x, float, float d) { return d > -0.8f ? kInk : Shade(Hex(0x5A4030), 1.1f - (x - cx) * 0.02f); });
    // Flames: layered tongues.
    for (int k = 0; k < 3; ++k) {
        float fx = cx + (k - 1) * 4.f, h = 14.f - std::abs(k - 1) * 4.f;
        Paint(o.im, fx - 5, cy - h - 4, fx + 5, cy + 1,
              [&](float x, float y) {
                  float t = Clamp01((cy - y) / h);
                  return std::fabs(x - fx - std::sin(t * 3 + k) * 1.2f) - 3.6f * (1 - t) - 0.3f + (y > cy ? 9.f : 0.f);
              },
              [&](float x, float y, float d) {
                  float t = Clamp01((cy - y) / h);
                  (void)x;
                  return d > -0.8f ? Hex(0x8A2A10) : Mix(Hex(0xFFE8A0), Hex(0xE0602A), t);
              });
    }
    return o;
}

std::string CellList(const std::vector<Cell>& cells) {
    std::string s;
    for (size_t i = 0; i < cells.size(); ++i)
        s += (i ? ";" : "") + std::to_string(cells[i].di) + "," + std::to_string(cells[i].dj);
    return s;
}

Img FromPicture(const Output& out, const std::string& path) {
    for (const Picture& p : out.pictures)
        if (p.path == path) {
            Img im(p.w, p.h);
            for (int y = 0; y < p.h; ++y)
                for (int x = 0; x < p.w; ++x) {
                    const uint8_t* c = &p.rgb[(size_t(y) * p.w + x) * 3];
                    if (!(c[0] == 255 && c[1] == 0 && c[2] == 255)) im.Set(x, y, {c[0] / 255.f, c[1] / 255.f, c[2] / 255.f});
                }
            return im;
        }
    return Img(64, 32);
}

// A corner of the village put together the way the engine does it: tiles on the
// ground layer, objects on the object layer (back to front), ground pieces moved to
// the ground layer, and a 48-pixel figure for scale. For review only.
void VillageReview(Output& out, const Img& sheet, const std::vector<ObjDef>& objs,
                   const std::vector<int>& px, const std::vector<int>& py) {
    const int n = 14, ox = 32 * n - 32 + 32;
    auto dirt = [](int i, int j) { return std::abs(j - 7) <= 0 || (i >= 9 && i <= 9 && j > 7); };
    Img ground(64 * n + 64, 32 * n + 64), layer(ground.w, ground.h);
    ground.Fill(Hex(0x000000));
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            int mask = (dirt(i, j) ? 8 : 0) | (dirt(i + 1, j) ? 4 : 0) | (dirt(i + 1, j + 1) ? 2 : 0) | (dirt(i, j + 1) ? 1 : 0);
            char name[64];
            uint32_t h = Hash3(i, j, 9);
            if (mask == 0) std::snprintf(name, sizeof name, "tiles/1/grass%02u.bmp", h % 12 + 1);
            else if (mask == 15) std::snprintf(name, sizeof name, "tiles/2/dirt%02u.bmp", h % 10 + 1);
            else std::snprintf(name, sizeof name, "tiles/7/gd%02u.bmp", (mask - 1) + 14 * (h % 2) + 1);
            ground.Draw(FromPicture(out, name), 32 * (i - j) + ox - 32, 16 * (i + j) + 32);
        }
    struct Place { const char* name; int i, j; };
    const Place places[] = {{"oak", 1, 1},       {"pine", 0, 5},   {"cottage", 3, 3},   {"stonehouse", 9, 2},
                            {"well", 7, 9},      {"barrels", 6, 4}, {"crates", 6, 5},   {"signpost", 8, 6},
                            {"stall", 4, 9},     {"fence_u", 1, 11}, {"fence_u", 2, 11}, {"fence_v", 3, 11},
                            {"bush", 12, 8},     {"rocks", 13, 11}, {"deadtree", 12, 12}, {"oak2", 0, 9},
                            {"wall_u", 12, 5},   {"wall_u", 13, 5}, {"bush_berry", 10, 6}, {"cottage_r", 10, 9}, {"campfire", 2, 8}, {"shrine", 12, 2}};
    std::vector<Place> order(std::begin(places), std::end(places));
    std::stable_sort(order.begin(), order.end(), [](const Place& a, const Place& b) { return a.i + a.j < b.i + b.j; });
    for (const Place& p : order)
        for (size_t k = 0; k < objs.size(); ++k) {
            if (objs[k].name != p.name) continue;
            const ObjDef& o = objs[k];
            int wx = 32 * (p.i - p.j) + ox - 32 - o.ax, wy = 16 * (p.i + p.j) + 32 - o.ay;
            layer.Draw(sheet.Crop(px[k], py[k], o.im.w, o.im.h), wx, wy);
            for (const Cell& g : o.ground) {
                int gx = o.ax + 32 * (g.di - g.dj), gy = o.ay + 16 * (g.di + g.dj);
                ground.Draw(sheet.Crop(px[k] + gx, py[k] + gy, 64, 32), wx + gx, wy + gy);
                for (int y = 0; y < 32; ++y)
                    for (int x = 0; x < 64; ++x)
                        if (layer.In(wx + gx + x, wy + gy + y)) layer.Set(wx + gx + x, wy + gy + y, {}, 0.f);
            }
        }
    ground.Draw(layer, 0, 0);
    // A figure of the hero's height (48 px) in front of the cottage door.
    {
        int i = 4, j = 5;
        float fx = 32 * (i - j) + ox, fy = 16 * (i + j) + 32 + 16;
        Paint(ground, fx - 8, fy - 50, fx + 8, fy + 2,
              [&](float x, float y) { return std::min(SdSegment(x, y, fx, fy - 6, fx, fy - 34, 6.f), SdCircle(x, y, fx, fy - 43, 5.f)); },
              [&](float x, float, float d) { return d > -1 ? kInk : Shade(Hex(0x6A5A8A), 1.1f - (x - fx) / 12.f); });
    }
    out.AddReview("scene", "village", ground);
}

}  // namespace obj

void GenObjects(Output& out, const std::string& tilesetDir) {
    using namespace obj;
    std::vector<ObjDef> objs;
    objs.push_back(Oak(101, "oak"));
    objs.push_back(Oak(102, "oak2"));
    objs.push_back(Pine(103));
    objs.push_back(Pine(104));
    objs.back().name = "pine2";
    objs.push_back(DeadTree(105));
    objs.push_back(Bush(106, "bush", Hex(0x4E6A2E), false));
    objs.push_back(Bush(107, "bush_berry", Hex(0x44602E), true));
    objs.push_back(Rocks(108, "rocks", false));
    objs.push_back(Rocks(109, "boulder", true));
    objs.push_back(House("cottage", false, 110));
    objs.push_back(House("stonehouse", true, 111));
    objs.push_back(House("cottage_r", false, 121, true));
    objs.push_back(House("stonehouse_r", true, 122, true));
    objs.push_back(Fence(false));
    objs.push_back(Fence(true));
    objs.push_back(StoneWall(false));
    objs.push_back(StoneWall(true));
    objs.push_back(Well(112));
    objs.push_back(Barrels(113));
    objs.push_back(Crates(114));
    objs.push_back(Signpost(115));
    objs.push_back(Stall(116));
    objs.push_back(Bridge(false, 4));
    objs.push_back(Bridge(true, 4));
    objs.push_back(CaveMouth(117));
    objs.push_back(Ruin(118));
    objs.push_back(Stump(119));
    objs.push_back(Grave(120));
    objs.push_back(Shrine(123));
    objs.push_back(Reeds(124));
    objs.push_back(Campfire(125));
    const size_t firstSet = objs.size();
    PlaceObjects(objs);

    // Shelf packing, tallest first, so the sheet stays compact. The objects of the
    // places come after the first set, on shelves of their own, so the first set
    // keeps its places on the sheet.
    std::vector<size_t> order(objs.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = i;
    auto taller = [&](size_t a, size_t b) { return objs[a].im.h > objs[b].im.h; };
    std::stable_sort(order.begin(), order.begin() + long(firstSet), taller);
    std::stable_sort(order.begin() + long(firstSet), order.end(), taller);
    Img sheet(2048, 1600);
    std::string man =
        "# objects manifest: name rect=x,y,w,h (on obj.bmp) anchor=ax,ay (base cell box inside the rect)\n"
        "# block=di,dj;... (blocked cells from the base cell) ground=px,py;... (64x32 ground pieces on obj.bmp)\n"
        "# walk=di,dj;... (cells on the object that stay walkable). Draw at world (cellx - ax, celly - ay).\n";
    int maxW = 0, maxH = 0;
    for (const ObjDef& o : objs) maxW = std::max(maxW, o.im.w), maxH = std::max(maxH, o.im.h);
    std::string tsx =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<tileset version=\"1.10\" tiledversion=\"1.10.0\" name=\"objects\" tilewidth=\"" + std::to_string(maxW) +
        "\" tileheight=\"" + std::to_string(maxH) + "\" tilecount=\"" + std::to_string(objs.size()) + "\" columns=\"0\">\n"
        " <grid orientation=\"isometric\" width=\"64\" height=\"32\"/>\n";
    int x = 0, y = 0, shelfH = 0;
    std::vector<int> px(objs.size()), py(objs.size());
    for (size_t i : order) {
        const Img& im = objs[i].im;
        if (x + im.w > 2048 || (firstSet < order.size() && i == order[firstSet] && x > 0)) { x = 0; y += shelfH + 4; shelfH = 0; }
        px[i] = x; py[i] = y;
        x += im.w + 4;
        shelfH = std::max(shelfH, im.h);
    }
    for (size_t i = 0; i < objs.size(); ++i) {
        const ObjDef& o = objs[i];
        sheet.Draw(o.im, px[i], py[i]);
        std::vector<Cell> pieces;
        std::string ground;
        for (size_t g = 0; g < o.ground.size(); ++g) {
            int gx = px[i] + o.ax + 32 * (o.ground[g].di - o.ground[g].dj);
            int gy = py[i] + o.ay + 16 * (o.ground[g].di + o.ground[g].dj);
            ground += (g ? ";" : "") + std::to_string(gx) + "," + std::to_string(gy);
        }
        man += "name=" + o.name + " rect=" + std::to_string(px[i]) + "," + std::to_string(py[i]) +
               "," + std::to_string(o.im.w) + "," + std::to_string(o.im.h) +
               " anchor=" + std::to_string(o.ax) + "," + std::to_string(o.ay) +
               " block=" + CellList(o.block) + " ground=" + ground + " walk=" + CellList(o.walk) + "\n";
        out.AddReview("objects", o.name, o.im);
        if (!tilesetDir.empty()) {
            std::vector<uint8_t> rgb = ToRgb8(o.im);
            WritePng(tilesetDir + "/objects/" + o.name + ".png", o.im.w, o.im.h, rgb, true);
            tsx += " <tile id=\"" + std::to_string(i) + "\">\n  <properties>\n"
                   "   <property name=\"name\" value=\"" + o.name + "\"/>\n"
                   "   <property name=\"anchor\" value=\"" + std::to_string(o.ax) + "," + std::to_string(o.ay) + "\"/>\n"
                   "   <property name=\"block\" value=\"" + CellList(o.block) + "\"/>\n"
                   "   <property name=\"ground\" value=\"" + CellList(o.ground) + "\"/>\n"
                   "  </properties>\n  <image source=\"objects/" + o.name + ".png\" width=\"" +
                   std::to_string(o.im.w) + "\" height=\"" + std::to_string(o.im.h) + "\"/>\n </tile>\n";
        }
    }
    out.AddPicture("tiles", "tiles/obj.bmp", sheet);
    VillageReview(out, sheet, objs, px, py);
    out.AddText("manifest/objects.txt", man);
    if (!tilesetDir.empty()) {
        tsx += "</tileset>\n";
        WriteFile(tilesetDir + "/objects.tsx", std::vector<uint8_t>(tsx.begin(), tsx.end()));
    }
}

}  // namespace art
