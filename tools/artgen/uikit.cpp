#include "uikit.h"

namespace art {

void WoodFrame(Img& im, int x, int y, int w, int h, int border, uint32_t seed) {
    Col wood = Hex(0x4A3524);
    for (int yy = y; yy < y + h; ++yy)
        for (int xx = x; xx < x + w; ++xx) {
            int dl = xx - x, dt = yy - y, dr = x + w - 1 - xx, db = y + h - 1 - yy;
            int d = std::min(std::min(dl, dr), std::min(dt, db));
            if (d >= border) continue;
            bool vertical = std::min(dl, dr) < std::min(dt, db);
            float g = vertical ? VNoise(xx * 0.9f, yy / 14.f, seed) : VNoise(xx / 14.f, yy * 0.9f, seed + 1);
            float ring = vertical ? VNoise(xx * 2.5f, yy / 30.f, seed + 2) : VNoise(xx / 30.f, yy * 2.5f, seed + 3);
            Col c = Shade(wood, 0.8f + g * 0.35f + (ring > 0.7f ? 0.12f : 0.f));
            // Rounded profile: light on the outer upper-left, shade towards the inside.
            float prof = float(d) / std::max(1, border - 1);
            bool litSide = (dl == d || dt == d);
            c = Shade(c, litSide ? 1.25f - prof * 0.35f : 0.95f - prof * 0.2f);
            if (d == 0) c = Hex(0x140E0A);
            if (d == border - 1) c = Shade(c, 0.55f);
            im.Set(xx, yy, c);
        }
    // Iron corner plates with rivets.
    int s = border + 6;
    for (int cy = 0; cy < 2; ++cy)
        for (int cx = 0; cx < 2; ++cx) {
            float px = cx ? x + w - s : x, py = cy ? y + h - s : y;
            Paint(im, px, py, px + s, py + s,
                  [&](float fx, float fy) { return SdBox(fx, fy, px + s / 2.f, py + s / 2.f, s / 2.f - 1, s / 2.f - 1, 2.f); },
                  [&](float fx, float fy, float d) {
                      if (d > -1.f) return Hex(0x121212);
                      float l = ((px + s - fx) + (py + s - fy)) / (2.f * s);
                      return Shade(Hex(0x4E5054), 0.75f + l * 0.5f + (Rand01(int(fx), int(fy), 9) - 0.5f) * 0.1f);
                  });
            Rivet(im, px + s / 2.f, py + s / 2.f, 2.4f);
        }
}

void Inset(Img& im, int x, int y, int w, int h, Col base, uint32_t seed, float grain) {
    for (int yy = y; yy < y + h; ++yy)
        for (int xx = x; xx < x + w; ++xx) {
            float n = Fbm(xx / 40.f, yy / 40.f, seed, 3);
            Col c = Shade(base, 0.9f + n * 0.2f + (Rand01(xx, yy, seed) - 0.5f) * grain);
            float dl = float(xx - x), dt = float(yy - y), dr = float(x + w - 1 - xx), db = float(y + h - 1 - yy);
            float sh = std::max(Smooth(5.f, 0.f, dl), Smooth(5.f, 0.f, dt));
            c = Shade(c, 1.f - sh * 0.45f);
            if (std::min(dr, db) < 1.f) c = Shade(c, 1.3f);
            im.Set(xx, yy, c);
        }
}

void Parchment(Img& im, int x, int y, int w, int h, uint32_t seed) {
    for (int yy = y; yy < y + h; ++yy)
        for (int xx = x; xx < x + w; ++xx) {
            float n = Fbm(xx / 60.f, yy / 60.f, seed, 4);
            Col c = Mix(Hex(0xB8A47E), Hex(0xD9C9A2), n);
            float fib = VNoise(xx / 1.5f, yy / 9.f, seed + 1);
            c = Shade(c, 0.96f + fib * 0.06f);
            float ex = std::min(xx - x, x + w - 1 - xx) / 24.f, ey = std::min(yy - y, y + h - 1 - yy) / 24.f;
            float rim = 1.f - Clamp01(std::min(ex, ey));
            c = Mix(c, Hex(0x6A5236), rim * rim * 0.7f);
            im.Set(xx, yy, c);
        }
}

void Slot(Img& im, int x, int y, int size) {
    Paint(im, x - 3, y - 3, x + size + 3, y + size + 3,
          [&](float fx, float fy) { return SdBox(fx, fy, x + size / 2.f, y + size / 2.f, size / 2.f + 2.5f, size / 2.f + 2.5f, 2.f); },
          [&](float fx, float fy, float d) {
              if (d > -1.f) return Hex(0x120E0A);
              bool lower = (fx - x) + (fy - y) > size;
              return Shade(Hex(0x7A6040), lower ? 1.2f : 0.7f);
          });
    for (int yy = y; yy < y + size; ++yy)
        for (int xx = x; xx < x + size; ++xx) {
            float t = Smooth(4.f, 0.f, float(std::min(xx - x, yy - y)));
            Col c = Shade(Hex(0x2A231E), 0.95f + (Rand01(xx, yy, 3) - 0.5f) * 0.1f - t * 0.35f);
            im.Set(xx, yy, c);
        }
}

void BarFrame(Img& im, int x, int y, int w, int h) {
    Paint(im, x - 3, y - 3, x + w + 3, y + h + 3,
          [&](float fx, float fy) { return SdBox(fx, fy, x + w / 2.f, y + h / 2.f, w / 2.f + 2.5f, h / 2.f + 2.5f, 2.5f); },
          [&](float, float fy, float d) {
              if (d > -1.f) return Hex(0x140F0A);
              return Shade(Hex(0x9A7A48), fy < y + h / 2.f ? 1.2f : 0.7f);
          });
    for (int yy = y; yy < y + h; ++yy)
        for (int xx = x; xx < x + w; ++xx)
            im.Set(xx, yy, Shade(Hex(0x1C1714), 0.8f + 0.4f * float(yy - y) / std::max(1, h)));
}

void Rivet(Img& im, float x, float y, float r) {
    Paint(im, x - r - 1, y - r - 1, x + r + 1, y + r + 1,
          [&](float fx, float fy) { return SdCircle(fx, fy, x, y, r); },
          [&](float fx, float fy, float d) {
              if (d > -0.7f) return Hex(0x0E0E0E);
              float l = -((fx - x) + (fy - y)) / (2 * r);
              return Shade(Hex(0x8A8C90), 0.8f + l * 0.6f);
          });
}

void Plaque(Img& im, int x, int y, int w, int h, bool hot, uint32_t seed) {
    Col stone = hot ? Hex(0x8A7A66) : Hex(0x6A645C);
    Paint(im, x, y, x + w, y + h,
          [&](float fx, float fy) {
              return SdBox(fx, fy, x + w / 2.f, y + h / 2.f, w / 2.f - 0.5f, h / 2.f - 0.5f, 6.f);
          },
          [&](float fx, float fy, float d) {
              if (d > -1.2f) return hot ? Hex(0xE08A3A) : Hex(0x16120E);
              if (d > -2.4f && hot) return Hex(0x7A3A18);
              float n = Fbm(fx / 14.f, fy / 10.f, seed, 3);
              Col c = Shade(stone, 0.85f + n * 0.3f + (Rand01(int(fx), int(fy), seed) - 0.5f) * 0.08f);
              // Bevelled edge: upper-left lit, lower-right dark.
              float e = -d;
              if (e < 5.f) {
                  float dx = fx - (x + w / 2.f), dy = fy - (y + h / 2.f);
                  bool ul = dy / h * 2 < -0.5f || (dx < 0 && std::fabs(dx) > w / 2.f - 6);
                  c = Shade(c, ul ? 1.25f - e * 0.03f : 0.7f + e * 0.04f);
              }
              // Inner glow from below when hovered, as if lit by embers.
              if (hot) c = Mix(c, Hex(0xC8743A), Smooth(h * 0.3f, float(h), fy - y) * 0.25f);
              return c;
          });
}

void RoundButton(Img& im, float cx, float cy, float r, bool hot) {
    Paint(im, cx - r - 1, cy - r - 1, cx + r + 1, cy + r + 1,
          [&](float x, float y) { return SdCircle(x, y, cx, cy, r); },
          [&](float x, float y, float d) {
              if (d > -1.f) return Hex(0x0E0C0A);
              float l = -((x - cx) + (y - cy)) / (2 * r);
              if (d > -2.6f) return Shade(Hex(0x9A7A48), 0.85f + l * 0.6f);
              Col face = hot ? Hex(0x5A3A26) : Hex(0x3A3430);
              return Shade(face, 0.9f - l * 0.3f);
          });
}

}  // namespace art
