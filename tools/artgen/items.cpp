// Item pictures, 32 x 32 on the magenta key: potions, weapons, armour, baldrics,
// books, bags and the quest goods. Shapes carry a dark outline and are lit from the
// upper left.
#include <string>

#include "iso.h"
#include "noise.h"
#include "output.h"

namespace art {
namespace {

const Col kLine = Hex(0x18120E);

// Points given along an axis: (a, s) = distance along dir from origin, and across it.
std::vector<float> Along(float ox, float oy, float dx, float dy, const std::vector<float>& as) {
    float len = std::hypot(dx, dy);
    dx /= len; dy /= len;
    std::vector<float> xy;
    for (size_t i = 0; i < as.size(); i += 2) {
        xy.push_back(ox + dx * as[i] - dy * as[i + 1]);
        xy.push_back(oy + dy * as[i] + dx * as[i + 1]);
    }
    return xy;
}

// Shading of a flat piece by its position: brighter to the upper left.
Col Lit(Col c, float x, float y, float k = 0.018f) { return Shade(c, 1.15f - (x + y - 32) * k); }

void Flask(Img& im, float cx, float cy, float r, float neckH, Col liquid, bool tall) {
    float bodyTop = cy - r;
    // Neck and cork.
    Poly(im, {cx - 3, bodyTop + 2, cx + 3, bodyTop + 2, cx + 3, bodyTop - neckH, cx - 3, bodyTop - neckH},
         [&](float x, float) { return Shade(Hex(0xB8C8C8), x < cx ? 1.1f : 0.8f); }, kLine);
    Poly(im, {cx - 3.5f, bodyTop - neckH, cx + 3.5f, bodyTop - neckH, cx + 3, bodyTop - neckH - 4, cx - 3, bodyTop - neckH - 4},
         [&](float x, float) { return Shade(Hex(0x8A6A48), x < cx ? 1.15f : 0.8f); }, kLine);
    Paint(im, cx - r - 2, cy - r - 2, cx + r + 2, cy + r + 2,
          [&](float x, float y) { return tall ? SdBox(x, y, cx, cy, r * 0.75f, r, 3.5f) : SdCircle(x, y, cx, cy, r); },
          [&](float x, float y, float d) {
              if (d > -1.f) return kLine;
              float nx = (x - cx) / r, ny = (y - cy) / r;
              Col c = y > cy - r * 0.35f ? liquid : Shade(Hex(0x9AB0B4), 0.8f);  // liquid below the surface
              if (std::fabs(y - (cy - r * 0.35f)) < 0.7f) c = Shade(liquid, 1.4f);
              c = Shade(c, 1.05f - (nx + ny) * 0.3f);
              if (std::hypot(x - (cx - r * 0.4f), y - (cy - r * 0.2f)) < r * 0.2f) c = Mix(c, Hex(0xFFFFFF), 0.7f);
              return c;
          });
}

void Sword(Img& im, Col blade, Col hilt, bool rusty, bool ember) {
    // From the pommel at the lower left to the tip at the upper right.
    float ox = 5, oy = 27, dx = 1, dy = -1;
    auto P = [&](std::vector<float> as) { return Along(ox, oy, dx, dy, as); };
    // Blade.
    Poly(im, P({10, -2.8f, 29, -2.5f, 34, 0, 29, 2.5f, 10, 2.8f}),
         [&](float x, float y) {
             float across = ((x - ox) * 0.7071f + (y - oy) * 0.7071f);  // sign tells the side
             Col c = across < 0 ? Shade(blade, 1.2f) : Shade(blade, 0.8f);
             if (rusty && VNoise(x / 2.f, y / 2.f, 5) > 0.55f) c = Mix(c, Hex(0x8A4A22), 0.7f);
             if (ember) c = Mix(c, Hex(0xF08A30), Clamp01(VNoise(x / 3.f, y / 3.f, 6) * 1.2f - 0.3f));
             return c;
         }, kLine);
    // Fuller line.
    Paint(im, 0, 0, 32, 32, [&](float x, float y) {
        std::vector<float> a = P({12, 0, 28, 0});
        return SdSegment(x, y, a[0], a[1], a[2], a[3], 0.35f);
    }, [&](float, float, float) { return ember ? Hex(0xFFD080) : Shade(blade, 0.6f); });
    // Guard, grip and pommel.
    Poly(im, P({8, -6, 10, -6, 10, 6, 8, 6}), [&](float x, float y) { return Lit(hilt, x, y); }, kLine);
    Poly(im, P({2, -1.4f, 8, -1.4f, 8, 1.4f, 2, 1.4f}), [&](float x, float y) { return Lit(Hex(0x5A3A24), x, y); }, kLine);
    std::vector<float> pm = P({1, 0});
    Paint(im, pm[0] - 3, pm[1] - 3, pm[0] + 3, pm[1] + 3, [&](float x, float y) { return SdCircle(x, y, pm[0], pm[1], 2.2f); },
          [&](float x, float y, float d) { return d > -0.8f ? kLine : Lit(hilt, x, y, 0.05f); });
}

void Spear(Img& im) {
    float ox = 3, oy = 29;
    auto P = [&](std::vector<float> as) { return Along(ox, oy, 1, -1, as); };
    Poly(im, P({0, -1.1f, 30, -1.1f, 30, 1.1f, 0, 1.1f}), [&](float x, float y) { return Lit(Hex(0x7A5A3A), x, y); }, kLine);
    Poly(im, P({28, -2.8f, 33, -2.2f, 39, 0, 33, 2.2f, 28, 2.8f}), [&](float x, float y) {
        float a = (x - ox) * 0.7071f + (y - oy) * 0.7071f;
        return Shade(Hex(0xA8B0B4), a < 0 ? 1.2f : 0.8f);
    }, kLine);
    Poly(im, P({26, -1.8f, 28, -1.8f, 28, 1.8f, 26, 1.8f}), [&](float x, float y) { return Lit(Hex(0x4A4A4C), x, y); }, kLine);
    // A watch pennant.
    Poly(im, P({22, 1.2f, 26, 1.2f, 24, 7}), [&](float x, float y) { return Lit(Hex(0x3A5A8A), x, y); }, kLine);
}

std::vector<float> TunicShape(bool plate) {
    if (plate) return {4, 9, 8, 5, 12, 5, 16, 8, 20, 5, 24, 5, 28, 9, 27, 14, 23, 14, 23, 26, 16, 29, 9, 26, 9, 14, 5, 14};
    return {8, 5, 12, 4, 16, 6, 20, 4, 24, 5, 29, 12, 26, 15, 23, 12, 24, 28, 8, 28, 9, 12, 6, 15, 3, 12};
}

void Armour(Img& im, int kind) {
    Col base = kind == 0 ? Hex(0xB0A078) : kind == 1 ? Hex(0x7A5232) : kind == 2 ? Hex(0x8A9096) : Hex(0xA8B0B8);
    Poly(im, TunicShape(kind == 3),
         [&](float x, float y) {
             Col c = Lit(base, x, y, 0.022f);
             if (kind == 0) {  // quilting
                 float q = std::fmod(x + y, 6.f), r = std::fmod(x - y + 64, 6.f);
                 if (q < 0.8f || r < 0.8f) c = Shade(c, 0.75f);
             } else if (kind == 1) {
                 if (std::fabs(y - 18) < 1.2f) c = Hex(0x3A2414);  // belt
                 if (std::fabs(y - 18) < 1.2f && std::fabs(x - 16) < 1.5f) c = Hex(0xC8A040);
                 c = Shade(c, 0.95f + VNoise(x / 2.f, y / 2.f, 7) * 0.1f);
             } else if (kind == 2) {  // rings
                 float rx = std::fmod(x + (int(y / 2) % 2) * 1.f, 2.f), ry = std::fmod(y, 2.f);
                 if (rx < 0.6f || ry < 0.5f) c = Shade(c, 0.6f);
             } else {
                 float rib = std::fabs(x - 16);
                 c = Shade(c, 1.1f - rib * 0.03f);
                 if (rib < 0.6f) c = Shade(c, 1.25f);
                 if (std::fabs(y - 16) < 0.6f) c = Shade(c, 0.6f);
             }
             return c;
         }, kLine);
}

void Ring(Img& im, Col metal, Col gem, float gemR) {
    Paint(im, 4, 8, 28, 30, [&](float x, float y) { return std::fabs(SdEllipse(x, y, 16, 19, 9.5f, 7.5f)) - 2.f; },
          [&](float x, float y, float d) {
              if (d > -0.7f) return kLine;
              float a = std::atan2(y - 19, x - 16);
              return Shade(metal, 1.0f + std::sin(a + 0.8f) * -0.35f);
          });
    if (gemR > 0)
        Paint(im, 10, 4, 22, 16, [&](float x, float y) { return SdCircle(x, y, 16, 10.5f, gemR); },
              [&](float x, float y, float d) {
                  if (d > -0.8f) return kLine;
                  Col c = Shade(gem, 1.1f - (x - 16 + y - 10.5f) / 8.f);
                  if (std::hypot(x - 14.8f, y - 9.3f) < 1.1f) c = Hex(0xFFF0E0);
                  return c;
              });
}

void Book(Img& im, Col cover, int emblem) {
    // A closed book seen from the front, slightly turned: spine at left, pages at right.
    Poly(im, {7, 4, 25, 3, 27, 27, 9, 29}, [&](float x, float y) {
        Col c = Lit(cover, x, y, 0.02f);
        c = Shade(c, 0.95f + VNoise(x / 2.f, y / 2.f, 9) * 0.1f);
        if (x < 10.5f) c = Shade(c, 0.75f);
        float ix = x - 9, iy = y - 4;
        if ((std::fabs(ix - 2) < 0.6f || std::fabs(ix - 15.5f) < 0.6f) && iy > 1 && iy < 23) c = Hex(0xC8A040);
        return c;
    }, kLine);
    Poly(im, {25.5f, 4.5f, 27.5f, 4.2f, 29, 26.5f, 27.2f, 27}, [&](float, float y) {
        return std::fmod(y, 2.f) < 1 ? Hex(0xE8DCC0) : Hex(0xC8BA98);
    }, kLine);
    Col g = Hex(0xE0B050);
    float cx = 18, cy = 16;
    auto mark = [&](auto sd) {
        Paint(im, cx - 8, cy - 9, cx + 8, cy + 9, sd, [&](float x, float y, float) { return Lit(g, x, y, 0.03f); });
    };
    switch (emblem) {
        case 0: mark([&](float x, float y) { return std::fabs(SdCircle(x, y, cx - 2, cy, 6)) - 1.f + (x < cx - 1 ? 3.f : 0.f); }); break;
        case 1: mark([&](float x, float y) { return std::min(SdSegment(x, y, cx - 5, cy + 5, cx + 4, cy - 4, 0.9f), SdPoly(x, y, {cx + 5.5f, cy - 5.5f, cx + 0.5f, cy - 4.5f, cx + 4.5f, cy - 0.5f})); }); break;
        case 2: mark([&](float x, float y) { return SdPoly(x, y, {cx - 5, cy - 6, cx + 5, cy - 6, cx + 5, cy, cx, cy + 7, cx - 5, cy}); }); break;
        case 3: mark([&](float x, float y) { return std::fabs(y - cy - 3.f * std::sin((x - cx) * 0.9f)) - 1.f + (std::fabs(x - cx) > 6 ? 9.f : 0.f); }); break;
        default: mark([&](float x, float y) { return std::fabs(SdCircle(x, y, cx, cy, 5.5f)) - 1.2f; }); break;
    }
}

void Bag(Img& im, int kind) {
    Col leather = kind == 0 ? Hex(0x8A6A44) : kind == 1 ? Hex(0x6E4A2C) : Hex(0x5A4A34);
    if (kind == 0) {
        Paint(im, 4, 6, 28, 30, [](float x, float y) { return std::min(SdCircle(x, y, 16, 20, 9.5f), SdBox(x, y, 16, 10, 3.5f, 3.5f)); },
              [&](float x, float y, float d) {
                  if (d > -1) return kLine;
                  Col c = Shade(leather, 1.15f - ((x - 16) + (y - 20)) / 22.f);
                  if (std::fabs(y - 12) < 0.9f) c = Hex(0x3A2A1A);  // drawstring
                  return c;
              });
    } else if (kind == 1) {
        Paint(im, 2, 2, 30, 18, [](float x, float y) { return std::fabs(SdCircle(x, y, 16, 16, 12)) - 1.2f + (y > 16 ? 20.f : 0.f); },
              [](float, float, float d) { return d > -0.6f ? kLine : Hex(0x4A3420); });
        Poly(im, {5, 13, 27, 13, 27, 28, 5, 28}, [&](float x, float y) { return Lit(leather, x, y); }, kLine);
        Poly(im, {5, 13, 27, 13, 26, 21, 6, 21}, [&](float x, float y) { return Lit(Shade(leather, 1.15f), x, y); }, kLine);
        Paint(im, 14, 18, 18, 23, [](float x, float y) { return SdBox(x, y, 16, 20.5f, 1.4f, 1.8f); },
              [](float, float, float) { return Hex(0xC8A040); });
    } else {
        Poly(im, {7, 7, 25, 7, 27, 29, 5, 29}, [&](float x, float y) { return Lit(leather, x, y); }, kLine);
        Poly(im, {6, 6, 26, 6, 25, 15, 7, 15}, [&](float x, float y) { return Lit(Hex(0x4E6040), x, y); }, kLine);
        Poly(im, {9, 19, 23, 19, 23, 26, 9, 26}, [&](float x, float y) { return Lit(Shade(leather, 1.1f), x, y); }, kLine);
        for (float sx : {11.f, 21.f})
            Poly(im, {sx - 1, 14, sx + 1, 14, sx + 1, 21, sx - 1, 21}, [](float, float) { return Hex(0x3A2A1A); }, kLine, 0.f);
        Paint(im, 10, 1, 22, 8, [](float x, float y) { return std::fabs(SdCircle(x, y, 16, 7, 4.5f)) - 1.f + (y > 7 ? 9.f : 0.f); },
              [](float, float, float) { return Hex(0x3A2A1A); });
    }
}

void Herb(Img& im) {
    Paint(im, 0, 0, 32, 32, [](float x, float y) { return SdSegment(x, y, 16, 29, 15, 10, 0.8f); },
          [](float, float, float) { return Hex(0x4A6A2A); });
    const float leaves[][3] = {{10, 22, -0.8f}, {22, 20, 0.8f}, {9, 14, -0.6f}, {21, 12, 0.7f}, {15, 7, 0.f}};
    for (auto& l : leaves) {
        float cx = l[0], cy = l[1], a = l[2];
        Paint(im, cx - 7, cy - 7, cx + 7, cy + 7,
              [&](float x, float y) {
                  float rx = (x - cx) * std::cos(a) + (y - cy) * std::sin(a), ry = -(x - cx) * std::sin(a) + (y - cy) * std::cos(a);
                  return SdEllipse(rx, ry, 0, 0, 2.8f, 5.5f);
              },
              [&](float x, float y, float d) {
                  if (d > -0.8f) return Hex(0x1E2A12);
                  Col c = Lit(Hex(0x6A9A3A), x, y, 0.03f);
                  if (std::fabs((x - cx) * std::cos(a) + (y - cy) * std::sin(a)) < 0.5f) c = Shade(c, 1.3f);
                  return c;
              });
    }
    Paint(im, 12, 1, 20, 8, [](float x, float y) { return SdCircle(x, y, 16, 4.5f, 2.4f); },
          [](float x, float y, float d) { return d > -0.7f ? kLine : Lit(Hex(0xEDE6D6), x, y); });
}

void Charm(Img& im) {
    Paint(im, 0, 0, 32, 20, [](float x, float y) { return std::fabs(SdEllipse(x, y, 16, 4, 11, 9)) - 0.6f + (y < 4 ? 9.f : 0.f); },
          [](float, float, float) { return Hex(0x5A4030); });
    Poly(im, {13, 13, 19, 13, 17, 28, 16, 30}, [](float x, float y) {
        return Shade(Hex(0xE8DEC8), 1.1f - (x - 13) * 0.05f - (y - 13) * 0.01f);
    }, kLine);
    Paint(im, 11, 9, 21, 15, [](float x, float y) { return SdBox(x, y, 16, 12.5f, 3.5f, 1.8f, 1); },
          [](float x, float y, float d) { return d > -0.7f ? kLine : Lit(Hex(0x6A4A30), x, y); });
}

void Amulet(Img& im) {
    Paint(im, 0, 0, 32, 20, [](float x, float y) { return std::fabs(SdEllipse(x, y, 16, 5, 10, 9)) - 0.6f + (y < 5 ? 9.f : 0.f); },
          [](float, float, float) { return Hex(0xB8943A); });
    Paint(im, 8, 12, 24, 30, [](float x, float y) { return SdPoly(x, y, {16, 13, 23, 20, 16, 29, 9, 20}); },
          [](float x, float y, float d) {
              if (d > -1) return kLine;
              if (d > -2.6f) return Lit(Hex(0xC8A040), x, y, 0.04f);
              Col c = Mix(Hex(0xFFD080), Hex(0xC04010), Clamp01(std::hypot(x - 15, y - 19) / 6.f));
              return c;
          });
}

void Lantern(Img& im) {
    Paint(im, 10, 0, 22, 8, [](float x, float y) { return std::fabs(SdCircle(x, y, 16, 6, 4)) - 0.8f + (y > 6 ? 9.f : 0.f); },
          [](float, float, float) { return Hex(0x2A2A2C); });
    Poly(im, {10, 8, 22, 8, 20, 11, 12, 11}, [](float x, float y) { return Lit(Hex(0x4A4A4E), x, y); }, kLine);
    Poly(im, {11, 11, 21, 11, 22, 25, 10, 25}, [](float x, float y) {
        Col c = Mix(Hex(0xFFE0A0), Hex(0xC87A30), Clamp01(std::hypot(x - 16, y - 18) / 6.f));
        if (std::fabs(x - 16) < 0.7f) c = Hex(0x2A2A2C);
        return c;
    }, kLine);
    Poly(im, {9, 25, 23, 25, 24, 29, 8, 29}, [](float x, float y) { return Lit(Hex(0x4A4A4E), x, y); }, kLine);
}

void Key(Img& im) {
    Paint(im, 2, 2, 16, 16, [](float x, float y) { return std::fabs(SdCircle(x, y, 9, 9, 5)) - 1.6f; },
          [](float x, float y, float d) { return d > -0.6f ? kLine : Shade(Hex(0x7A7A80), 1.15f - (x + y - 18) * 0.05f); });
    Poly(im, Along(12, 12, 1, 1, {0, -1.4f, 18, -1.4f, 18, 1.4f, 0, 1.4f}), [](float x, float y) { return Lit(Hex(0x7A7A80), x, y); }, kLine);
    Poly(im, Along(12, 12, 1, 1, {12, 1, 15, 1, 15, 5, 12, 5}), [](float x, float y) { return Lit(Hex(0x6A6A70), x, y); }, kLine);
    Poly(im, Along(12, 12, 1, 1, {16, 1, 18, 1, 18, 4, 16, 4}), [](float x, float y) { return Lit(Hex(0x6A6A70), x, y); }, kLine);
}

void Token(Img& im) {
    Paint(im, 2, 2, 30, 30, [](float x, float y) { return SdCircle(x, y, 16, 16, 12); },
          [](float x, float y, float d) {
              if (d > -1) return kLine;
              Col c = Shade(Hex(0x8A8480), 1.1f - (x + y - 32) / 40.f);
              if (d > -2.5f) c = Shade(c, (x + y < 32) ? 1.2f : 0.75f);
              float ember = std::hypot(x - 16, y - 16);
              if (ember < 4.5f) c = Mix(Hex(0xFFC070), Hex(0xB03010), ember / 4.5f);
              else if (std::fabs(ember - 7.5f) < 0.6f) c = Shade(c, 0.7f);
              return c;
          });
}

}  // namespace

void GenItems(Output& out) {
    auto add = [&](const char* name, const std::function<void(Img&)>& paint) {
        Img im(32, 32);
        paint(im);
        out.AddPicture("items", std::string("items/") + name, im);
    };
    add("herb.bmp", Herb);
    add("hpot_s.bmp", [](Img& im) { Flask(im, 16, 20, 8, 5, Hex(0xB8302A), false); });
    add("hpot_l.bmp", [](Img& im) { Flask(im, 16, 19, 10, 5, Hex(0xC8362E), true); });
    add("mpot.bmp", [](Img& im) { Flask(im, 16, 20, 8.5f, 5, Hex(0x3A5ACA), false); });
    add("sw_rusty.bmp", [](Img& im) { Sword(im, Hex(0x8A8078), Hex(0x6A5030), true, false); });
    add("sw_iron.bmp", [](Img& im) { Sword(im, Hex(0xA8B0B8), Hex(0x7A6A50), false, false); });
    add("spear.bmp", Spear);
    add("sw_ember.bmp", [](Img& im) { Sword(im, Hex(0x6A5A58), Hex(0xB8943A), false, true); });
    add("ar_padded.bmp", [](Img& im) { Armour(im, 0); });
    add("ar_leather.bmp", [](Img& im) { Armour(im, 1); });
    add("ar_chain.bmp", [](Img& im) { Armour(im, 2); });
    add("ar_plate.bmp", [](Img& im) { Armour(im, 3); });
    add("ring_cu.bmp", [](Img& im) { Ring(im, Hex(0xC07A48), Hex(0x3A8A7A), 2.6f); });
    add("charm_wolf.bmp", Charm);
    add("amulet.bmp", Amulet);
    add("bk_cleave.bmp", [](Img& im) { Book(im, Hex(0x7A2A22), 0); });
    add("bk_lunge.bmp", [](Img& im) { Book(im, Hex(0x2E5A3A), 1); });
    add("bk_ward.bmp", [](Img& im) { Book(im, Hex(0x8A4A1A), 2); });
    add("bk_lash.bmp", [](Img& im) { Book(im, Hex(0x5A1E2A), 3); });
    add("bk_bash.bmp", [](Img& im) { Book(im, Hex(0x3A4A5E), 4); });
    add("bag_pouch.bmp", [](Img& im) { Bag(im, 0); });
    add("bag_satchel.bmp", [](Img& im) { Bag(im, 1); });
    add("bag_pack.bmp", [](Img& im) { Bag(im, 2); });
    add("q_lantern.bmp", Lantern);
    add("q_key.bmp", Key);
    add("q_token.bmp", Token);
}

}  // namespace art
