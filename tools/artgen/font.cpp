// The game's own lettering: a stroke font drawn as round-nibbed pen strokes.
// Glyphs are small pen programs on a grid with the cap line at y 0, the x-height at
// y 4, the baseline at y 10 and descenders to y 13:
//   M x y        pen down at a point          L x y   line to
//   A cx cy rx ry a0 a1   elliptic arc from angle a0 to a1 (degrees, 0 right, 90 down),
//                joined to the pen position when the pen is down
//   U            pen up
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>

#include "text.h"

namespace art {
namespace {

struct Glyph {
    const char* ch;
    const char* prog;
};

const Glyph kGlyphs[] = {
    {"A", "M0 10 L3.5 0 L7 10 U M1.3 6.6 L5.7 6.6"},
    {"B", "M0 10 L0 0 L3.4 0 A3.4 2.5 2.5 2.5 -90 90 L0 5 U M0 5 L3.6 5 A3.6 7.5 2.6 2.5 -90 90 L0 10"},
    {"C", "U A3.7 5 3.7 5 -40 -320"},
    {"D", "M0 0 L0 10 L2.6 10 A2.6 5 4.2 5 90 -90 L0 0"},
    {"E", "M6 0 L0 0 L0 10 L6 10 U M0 5 L4.6 5"},
    {"F", "M6 0 L0 0 L0 10 U M0 5 L4.6 5"},
    {"G", "U A3.8 5 3.8 5 -40 -358 U M4.2 5.4 L7.5 5.4 L7.5 9"},
    {"H", "M0 0 L0 10 U M6.2 0 L6.2 10 U M0 5 L6.2 5"},
    {"I", "M0 0 L0 10"},
    {"J", "M4 0 L4 7.4 A2 7.4 2 2.6 0 160"},
    {"K", "M0 0 L0 10 U M6 0 L0 6.4 U M2.2 4.4 L6.2 10"},
    {"L", "M0 0 L0 10 L5.6 10"},
    {"M", "M0 10 L0 0 L4.1 7.4 L8.2 0 L8.2 10"},
    {"N", "M0 10 L0 0 L6.4 10 L6.4 0"},
    {"O", "U A3.9 5 3.9 5 0 360"},
    {"P", "M0 10 L0 0 L3.4 0 A3.4 2.8 2.8 2.8 -90 90 L0 5.6"},
    {"Q", "U A3.9 5 3.9 5 0 360 U M4.6 7.4 L7.8 10.6"},
    {"R", "M0 10 L0 0 L3.4 0 A3.4 2.8 2.8 2.8 -90 90 L0 5.6 U M3 5.6 L6.2 10"},
    {"S", "U A3 2.6 2.9 2.6 -30 -270 A3 7.5 3.1 2.5 -90 150"},
    {"T", "M0 0 L7 0 U M3.5 0 L3.5 10"},
    {"U", "M0 0 L0 7 A3.1 7 3.1 3 180 0 L6.2 0"},
    {"V", "M0 0 L3.5 10 L7 0"},
    {"W", "M0 0 L2.5 10 L5 2 L7.5 10 L10 0"},
    {"X", "M0 0 L6.4 10 U M6.4 0 L0 10"},
    {"Y", "M0 0 L3.5 5 L7 0 U M3.5 5 L3.5 10"},
    {"Z", "M0 0 L6.2 0 L0 10 L6.2 10"},
    {"a", "U A2.7 7 2.7 3 0 360 U M5.4 4 L5.4 10"},
    {"b", "M0 0 L0 10 U A2.8 7 2.8 3 0 360"},
    {"c", "U A2.8 7 2.8 3 -40 -320"},
    {"d", "U A2.7 7 2.7 3 0 360 U M5.4 0 L5.4 10"},
    {"e", "M0.1 7 L5.6 7 A2.85 7 2.85 3 0 -320"},
    {"f", "U A3.9 2 1.7 2 -20 -180 L2.2 10 U M0.4 4.5 L4 4.5"},
    {"g", "U A2.7 7 2.7 3 0 360 U M5.4 4 L5.4 11 A2.7 11 2.7 2 0 160"},
    {"h", "M0 0 L0 10 U M0 6.8 A2.6 6.8 2.6 2.8 -180 0 L5.2 10"},
    {"i", "M0 4 L0 10 U M0 1.5 L0 1.9"},
    {"j", "M1.6 4 L1.6 11 A0 11 1.6 2 0 130 U M1.6 1.5 L1.6 1.9"},
    {"k", "M0 0 L0 10 U M4.6 4 L0 7.6 U M1.6 6.4 L4.9 10"},
    {"l", "M0 0 L0 10"},
    {"m", "M0 4 L0 10 U M0 6.6 A2 6.6 2 2.6 -180 0 L4 10 U M4 6.6 A6 6.6 2 2.6 -180 0 L8 10"},
    {"n", "M0 4 L0 10 U M0 6.8 A2.6 6.8 2.6 2.8 -180 0 L5.2 10"},
    {"o", "U A2.9 7 2.9 3 0 360"},
    {"p", "M0 4 L0 13 U A2.8 7 2.8 3 0 360"},
    {"q", "U A2.7 7 2.7 3 0 360 U M5.4 4 L5.4 13"},
    {"r", "M0 4 L0 10 U M0 7 A2.6 7 2.6 3 -180 -70"},
    {"s", "U A2.4 5.5 2.2 1.5 -30 -270 A2.4 8.5 2.4 1.5 -90 150"},
    {"t", "M1.4 1.4 L1.4 8.6 A3 8.6 1.6 1.4 180 70 U M0 4 L3.8 4"},
    {"u", "M0 4 L0 7.2 A2.6 7.2 2.6 2.8 180 0 U M5.2 4 L5.2 10"},
    {"v", "M0 4 L2.6 10 L5.2 4"},
    {"w", "M0 4 L1.9 10 L3.8 5 L5.7 10 L7.6 4"},
    {"x", "M0 4 L5 10 U M5 4 L0 10"},
    {"y", "M0 4 L2.8 10 U M5.4 4 L1.8 13 L0.6 13"},
    {"z", "M0 4 L5 4 L0 10 L5 10"},
    {"0", "U A3 5 3 5 0 360"},
    {"1", "M0.6 2 L3 0 L3 10"},
    {"2", "U A3 3 3 3 -170 30 L0 10 L6.2 10"},
    {"3", "U A2.9 2.6 2.7 2.6 -160 90 A2.9 7.5 3.1 2.5 -90 160"},
    {"4", "M4.6 10 L4.6 0 L0 7 L6.6 7"},
    {"5", "M6 0 L1 0 L0.7 4.6 A3 7 3 3 -140 150"},
    {"6", "U A3 7 3 3 0 360 U M0.05 7 A4.5 7 4.45 7 180 258"},
    {"7", "M0 0 L6.2 0 L2 10"},
    {"8", "U A3 2.6 2.6 2.6 0 360 U A3 7.4 3 2.6 0 360"},
    {"9", "U A3 3 3 3 0 360 U M6 3 A1.5 3 4.5 7 0 100"},
    {".", "M0 9.7 L0 10"},
    {",", "M0.6 9.6 L0 11.6"},
    {"-", "M0 6 L3.2 6"},
    {"(", "U A3 5 2.4 6.2 -112 -248"},
    {")", "U A0 5 2.4 6.2 -68 68"},
    {"'", "M0 0 L0 2.6"},
    {":", "M0 4.6 L0 4.9 U M0 9.7 L0 10"},
    {"/", "M0 11 L4 -1"},
    {"!", "M0 0 L0 7 U M0 9.7 L0 10"},
    {"?", "U A2.5 2.5 2.5 2.5 -160 90 L2.5 7 U M2.5 9.7 L2.5 10"},
};

struct Seg {
    float x0, y0, x1, y1;
};
struct Shape {
    std::vector<Seg> segs;
    float width = 0;
};

const Shape& GlyphShape(char c) {
    static std::map<char, Shape> cache;
    auto it = cache.find(c);
    if (it != cache.end()) return it->second;
    Shape s;
    const char* prog = nullptr;
    for (const Glyph& g : kGlyphs)
        if (g.ch[0] == c) prog = g.prog;
    if (prog) {
        std::istringstream in(prog);
        std::string op;
        bool down = false;
        float px = 0, py = 0;
        auto lineTo = [&](float x, float y) {
            if (down) s.segs.push_back({px, py, x, y});
            px = x; py = y; down = true;
        };
        while (in >> op) {
            if (op[0] == 'M') {
                px = std::strtof(op.c_str() + 1, nullptr);
                in >> py;
                down = true;
            } else if (op[0] == 'L') {
                float x = std::strtof(op.c_str() + 1, nullptr), y;
                in >> y;
                lineTo(x, y);
            } else if (op[0] == 'U') {
                down = false;
            } else if (op[0] == 'A') {
                float cx = std::strtof(op.c_str() + 1, nullptr), cy, rx, ry, a0, a1;
                in >> cy >> rx >> ry >> a0 >> a1;
                int n = std::max(6, int(std::fabs(a1 - a0) / 10.f));
                for (int i = 0; i <= n; ++i) {
                    float a = (a0 + (a1 - a0) * i / n) * 3.14159265f / 180.f;
                    float x = cx + rx * std::cos(a), y = cy + ry * std::sin(a);
                    if (i == 0 && !down) { px = x; py = y; down = true; continue; }
                    lineTo(x, y);
                }
            }
        }
        for (const Seg& g : s.segs) s.width = std::max(s.width, std::max(g.x0, g.x1));
    } else {
        s.width = c == ' ' ? 3.4f : 4.f;
    }
    return cache[c] = s;
}

// Hooks of f, r and t overhang the next letter a little.
float Advance(char c) {
    float tuck = c == 'f' ? 1.5f : c == 'r' ? 0.6f : c == 't' ? 0.5f : 0.f;
    return GlyphShape(c).width + (c == ' ' ? 0.f : 2.0f) - tuck;
}

}  // namespace

int TextWidth(const std::string& text, int size) {
    float scale = size * 0.068f, w = 0;
    for (char c : text) w += Advance(c);
    return int(std::ceil(w * scale));
}

Mask RenderText(const std::string& text, int size) {
    Mask m;
    if (text.empty()) return m;
    const float scale = size * 0.068f;             // grid units to pixels (cap height 0.68 size)
    const float weight = std::max(0.62f, size * 0.052f);  // stroke half-width in pixels
    const float pad = weight + 2;
    std::vector<Seg> segs;
    float pen = 0;
    for (char c : text) {
        const Shape& s = GlyphShape(c);
        for (const Seg& g : s.segs)
            segs.push_back({pad + (pen + g.x0) * scale, pad + g.y0 * scale,
                            pad + (pen + g.x1) * scale, pad + g.y1 * scale});
        pen += Advance(c);
    }
    m.w = int(std::ceil(pen * scale + 2 * pad));
    m.h = int(std::ceil(13.5f * scale + 2 * pad));
    m.a.assign(size_t(m.w) * m.h, 0.f);
    for (const Seg& g : segs) {
        // A broad nib held at a slant: strokes across the nib are thicker.
        float ang = std::atan2(g.y1 - g.y0, g.x1 - g.x0);
        float r = weight * (0.7f + 0.38f * std::fabs(std::sin(ang + 0.6f)));
        int x0 = std::max(0, int(std::min(g.x0, g.x1) - r - 2)), x1 = std::min(m.w, int(std::max(g.x0, g.x1) + r + 2));
        int y0 = std::max(0, int(std::min(g.y0, g.y1) - r - 2)), y1 = std::min(m.h, int(std::max(g.y0, g.y1) + r + 2));
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) {
                float d = SdSegment(x + 0.5f, y + 0.5f, g.x0, g.y0, g.x1, g.y1, r);
                float cov = Clamp01(0.5f - d);
                float& a = m.a[size_t(y) * m.w + x];
                a = std::max(a, cov);
            }
    }
    return m;
}

}  // namespace art
