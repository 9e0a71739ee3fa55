// Skill icons (32 x 32, framed) and the eight strike frames of every skill (64 x 64 on
// the magenta key). A strike is painted as a function of its time t from 0 to 1:
// it grows, peaks around the middle and breaks up into sparks or ash.
#include <string>

#include "iso.h"
#include "noise.h"
#include "output.h"

namespace art {
namespace {

struct SkillDef {
    const char* name;  // file stem of the strike frames
    const char* icon;
    Col hot, cool;     // core and rim colours of the effect
};

const SkillDef kSkills[] = {
    {"strike", "ic_strike.bmp", Hex(0xF4F2EA), Hex(0x8A9AB0)},
    {"cleave", "ic_cleave.bmp", Hex(0xF8E8D0), Hex(0xB05030)},
    {"lunge", "ic_lunge.bmp", Hex(0xEEF4FA), Hex(0x6A8AB0)},
    {"ward", "ic_ward.bmp", Hex(0xFFE0A0), Hex(0xD0602A)},
    {"lash", "ic_lash.bmp", Hex(0xFFD890), Hex(0xC8401E)},
    {"bash", "ic_bash.bmp", Hex(0xF0ECE0), Hex(0x9A8A70)},
    {"bite", "ic_bite.bmp", Hex(0xF0E8E0), Hex(0x9A2A22)},
    {"claw", "ic_claw.bmp", Hex(0xE8E4D8), Hex(0x6A6A5A)},
    {"sweep", "ic_sweep.bmp", Hex(0xE0D8D0), Hex(0x6A625A)},
};

// A band along an arc of radius R (squashed vertically by sy) between angles a0 and a1
// (radians), thickest in the middle; core colour inside, rim colour towards the edge.
void ArcBand(Img& im, float cx, float cy, float R, float sy, float a0, float a1, float w, Col hot, Col cool) {
    if (a1 < a0) std::swap(a0, a1);
    Paint(im, cx - R - w - 2, cy - (R + w) * sy - 2, cx + R + w + 2, cy + (R + w) * sy + 2,
          [&](float x, float y) {
              float dx = x - cx, dy = (y - cy) / sy;
              float a = std::atan2(dy, dx);
              while (a < a0) a += 6.2831853f;
              if (a > a1) {
                  // Outside the angle range: distance to the nearer end.
                  float e0 = std::fabs(a - 6.2831853f - a0), e1 = a - a1;
                  return std::min(e0, e1) * R + 0.1f;
              }
              float u = (a - a0) / std::max(1e-3f, a1 - a0);
              float width = w * std::sin(u * 3.1416f) + 0.3f;
              return std::fabs(std::hypot(dx, dy) - R) - width;
          },
          [&](float x, float y, float d) {
              float k = Clamp01(-d / std::max(1.f, w * 0.6f));
              (void)x; (void)y;
              return Mix(cool, hot, k);
          });
}

void Sparks(Img& im, float cx, float cy, float spread, int n, float t, Col c, uint32_t seed) {
    Rng r(seed);
    for (int i = 0; i < n; ++i) {
        float a = r.R(0, 6.2831853f), v = r.R(0.4f, 1.f) * spread;
        float x = cx + std::cos(a) * v * t, y = cy + std::sin(a) * v * t * 0.7f - t * t * 6;
        float size = r.R(0.6f, 1.4f) * (1.2f - t);
        if (size <= 0.2f) continue;
        Paint(im, x - 3, y - 3, x + 3, y + 3, [&](float px, float py) { return SdCircle(px, py, x, y, size); },
              [&](float, float, float) { return c; });
    }
}

void Strike(Img& im, int skill, float t, const SkillDef& s) {
    const float cx = 32, cy = 32;
    float grow = Smooth(0.f, 0.55f, t), fade = 1.f - Smooth(0.5f, 1.f, t);
    switch (skill) {
        case 0:  // strike: one bright crescent
            if (fade > 0.05f) ArcBand(im, cx, cy, 20, 0.8f, -2.4f, -2.4f + 2.6f * grow, 4.5f * fade, s.hot, s.cool);
            if (t > 0.4f) Sparks(im, cx + 14, cy - 6, 18, 8, (t - 0.4f) / 0.6f, s.hot, 11);
            break;
        case 1:  // cleave: two wide crescents
            if (fade > 0.05f) {
                ArcBand(im, cx, cy, 24, 0.7f, -2.8f, -2.8f + 3.2f * grow, 5.5f * fade, s.hot, s.cool);
                ArcBand(im, cx, cy + 3, 16, 0.7f, -2.6f, -2.6f + 2.8f * Smooth(0.15f, 0.7f, t), 3.5f * fade, s.hot, s.cool);
            }
            if (t > 0.45f) Sparks(im, cx, cy, 26, 12, (t - 0.45f) / 0.55f, s.cool, 12);
            break;
        case 2: {  // lunge: a straight thrust with a flash at its point
            float len = 44 * grow;
            float x0 = 6, y0 = 44, x1 = x0 + len * 0.9f, y1 = y0 - len * 0.45f;
            if (fade > 0.05f)
                Paint(im, 0, 0, 64, 64, [&](float x, float y) { return SdSegment(x, y, x0, y0, x1, y1, 2.4f * fade); },
                      [&](float x, float, float d) { return Mix(s.cool, s.hot, Clamp01(-d) * Clamp01((x - x0) / 40.f + 0.3f)); });
            float f = std::sin(Clamp01((t - 0.3f) / 0.5f) * 3.1416f);
            if (f > 0.05f)
                Paint(im, x1 - 10, y1 - 10, x1 + 10, y1 + 10, [&](float x, float y) {
                    float a = std::atan2(y - y1, x - x1);
                    return std::hypot(x - x1, y - y1) - (3 + 5 * f) * (0.5f + 0.5f * std::fabs(std::cos(a * 2)));
                }, [&](float, float, float d) { return Mix(s.cool, s.hot, Clamp01(-d / 2)); });
            break;
        }
        case 3: {  // ember ward: a ring of flame rising around the centre
            float r = 12 + 14 * grow;
            if (fade > 0.05f)
                Paint(im, 0, 0, 64, 64, [&](float x, float y) {
                    float d = std::fabs(SdEllipse(x, y, cx, cy + 6, r, r * 0.5f));
                    float flick = VNoise(x / 3.f, y / 3.f + t * 10, 31) * 3;
                    return d - (0.8f + 1.6f * fade) - flick * 0.6f * fade + 0.5f;
                }, [&](float, float y, float d) { return Mix(s.cool, s.hot, Clamp01(-d / 2.f + (cy + 6 - y) / 20.f)); });
            Sparks(im, cx, cy + 2, 24, 14, t, s.hot, 13);
            break;
        }
        case 4: {  // flame lash: a sinuous whip of fire
            if (fade > 0.05f)
                Paint(im, 0, 0, 64, 64, [&](float x, float y) {
                    float u = (x - 4) / 56.f;
                    if (u < 0 || u > grow) return 9.f + std::fabs(u) * 10;
                    float yy = 40 - u * 18 + std::sin(u * 9 - t * 6) * 7 * u;
                    return std::fabs(y - yy) - (1 + 2.6f * (1 - u)) * fade;
                }, [&](float, float, float d) { return Mix(s.cool, s.hot, Clamp01(-d / 1.5f)); });
            if (t > 0.35f) Sparks(im, 4 + 56 * grow, 22, 14, 10, (t - 0.35f) / 0.65f, s.hot, 14);
            break;
        }
        case 5: {  // shield bash: a burst of force and a shock ring
            float f = std::sin(Clamp01(t / 0.6f) * 3.1416f);
            if (f > 0.05f)
                Paint(im, 0, 0, 64, 64, [&](float x, float y) {
                    float a = std::atan2(y - cy, x - cx);
                    float spikes = 0.45f + 0.55f * std::pow(std::fabs(std::cos(a * 4)), 3.f);
                    return std::hypot(x - cx, (y - cy) * 1.2f) - (4 + 14 * f) * spikes;
                }, [&](float, float, float d) { return Mix(s.cool, s.hot, Clamp01(-d / 4)); });
            if (t > 0.3f && fade > 0.05f) {
                float rr = 8 + 22 * Smooth(0.3f, 1.f, t);
                ArcBand(im, cx, cy, rr, 0.55f, -3.14f, 3.14f, 1.6f * fade, s.hot, s.cool);
            }
            break;
        }
        case 6: {  // bite: two curved jaws of fangs snapping shut
            float close = Smooth(0.f, 0.5f, t), open = 15 * (1 - close) + 3;
            if (fade > 0.05f)
                for (int j = -1; j <= 1; j += 2) {
                    float jy = cy + j * open;
                    float ccy = jy - j * 12.f;  // the jaw bulges away from the bite
                    float a0 = j < 0 ? -2.6f : 0.55f, a1 = j < 0 ? -0.55f : 2.6f;
                    for (int k = 0; k < 5; ++k) {
                        float a = a0 + (a1 - a0) * (k + 0.5f) / 5;
                        float bx = cx + std::cos(a) * 18, by = ccy + std::sin(a) * 18 * 0.7f;
                        float len = (k == 0 || k == 4 ? 9.f : 6.f) * fade;
                        float tipY = by - j * len;
                        Poly(im, {bx - 2.6f, by, bx + 2.6f, by, bx, tipY},
                             [&](float, float y) { return Mix(s.hot, s.cool, Clamp01(std::fabs(y - by) / (len + 0.1f) * 0.6f)); },
                             Shade(s.cool, 0.5f), 0.8f);
                    }
                    ArcBand(im, cx, ccy, 18, 0.7f, a0 - 0.15f, a1 + 0.15f, 2.6f * fade + 0.5f, Shade(s.cool, 1.1f), Shade(s.cool, 0.6f));
                }
            if (t > 0.45f) Sparks(im, cx, cy, 20, 10, (t - 0.45f) / 0.55f, s.cool, 15);
            break;
        }
        case 7: {  // bone claw: three scratches, one after the other
            for (int k = 0; k < 3; ++k) {
                float tk = Smooth(k * 0.12f, k * 0.12f + 0.35f, t);
                float fk = 1.f - Smooth(0.55f + k * 0.1f, 1.f, t);
                if (tk <= 0 || fk <= 0.05f) continue;
                float x0 = 16 + k * 10, y0 = 12, x1 = x0 + 12 * tk, y1 = y0 + 40 * tk;
                Paint(im, 0, 0, 64, 64, [&](float x, float y) {
                    float u = Clamp01((y - y0) / 40.f);
                    return SdSegment(x, y, x0, y0, x1, y1, 0.5f + 2.2f * std::sin(u * 3.1416f) * fk);
                }, [&](float, float, float d) { return Mix(s.cool, s.hot, Clamp01(-d)); });
            }
            break;
        }
        default: {  // ash sweep: a full circle of grey ash with embers in it
            if (fade > 0.05f) ArcBand(im, cx, cy + 4, 22, 0.5f, -3.1f, -3.1f + 6.2f * grow, 4.5f * fade, s.hot, s.cool);
            Sparks(im, cx, cy + 4, 28, 16, t, Hex(0xE07A30), 16);
            Sparks(im, cx, cy + 4, 30, 12, t, s.cool, 17);
            break;
        }
    }
}

// Icon: a dark framed tile with the skill's motif painted large and bright.
Img Icon(int skill, const SkillDef& s) {
    Img im(32, 32);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) {
            float d = std::hypot(x - 15.5f, y - 15.5f) / 22.f;
            im.Set(x, y, Mix(Shade(s.cool, 0.45f), Hex(0x141210), Clamp01(d)));
        }
    Img fx(64, 64);
    Strike(fx, skill, skill == 6 ? 0.2f : (skill == 3 || skill == 8 ? 0.42f : 0.5f), s);
    // Downscale the strike at its peak into the icon (2 x 2 box filter).
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) {
            float a = 0;
            Col c{};
            for (int j = 0; j < 2; ++j)
                for (int i = 0; i < 2; ++i) {
                    float aa = fx.A(2 * x + i, 2 * y + j);
                    a += aa;
                    c = c + fx.Get(2 * x + i, 2 * y + j) * aa;
                }
            if (a > 0) im.Blend(x, y, c * (1.f / a), a / 4.f);
        }
    // Frame: bronze bevel, lit from the upper left.
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) {
            int d = std::min(std::min(x, y), std::min(31 - x, 31 - y));
            if (d == 0) im.Set(x, y, Hex(0x120E0A));
            else if (d == 1) im.Set(x, y, (x + y < 32) ? Hex(0xC8A468) : Hex(0x6A5030));
            else if (d == 2) im.Set(x, y, Hex(0x2A2018));
        }
    return im;
}

}  // namespace

void GenSkills(Output& out) {
    for (int k = 0; k < int(std::size(kSkills)); ++k) {
        const SkillDef& s = kSkills[k];
        out.AddPicture("skill", std::string("skill/") + s.icon, Icon(k, s));
        for (int f = 0; f < 8; ++f) {
            Img im(64, 64);
            Strike(im, k, (f + 0.5f) / 8.f, s);
            out.AddPicture("skill", std::string("skill/") + s.name + "_" + std::to_string(f) + ".bmp", im);
        }
    }
}

}  // namespace art
