// data\cursor.ani: a RIFF "ACON" animated cursor of six 32 x 32 frames, an
// iron-grey arrow whose tip glows like an ember and flickers. Hot spot (1, 1).
#include <cstdio>

#include "iso.h"
#include "noise.h"
#include "output.h"

namespace art {
namespace {

constexpr int kFrames = 6;
constexpr int kHotX = 1, kHotY = 1;

void Put16(std::vector<uint8_t>& b, uint32_t v) { b.push_back(uint8_t(v)); b.push_back(uint8_t(v >> 8)); }
void Put32(std::vector<uint8_t>& b, uint32_t v) { Put16(b, v & 0xFFFF); Put16(b, v >> 16); }
void PutId(std::vector<uint8_t>& b, const char* id) { b.insert(b.end(), id, id + 4); }

Img Frame(int f) {
    Img im(32, 32);
    const std::vector<float> arrow = {1, 1, 1, 22, 6.5f, 17, 10.5f, 26, 14, 24.5f, 10, 15.8f, 17, 15.8f};
    float glow = 0.65f + 0.35f * std::sin(f * 6.2831853f / kFrames) + (Rand01(f, 0, 5) - 0.5f) * 0.15f;
    Paint(im, 0, 0, 32, 32, [&](float x, float y) { return SdPoly(x, y, arrow); },
          [&](float x, float y, float d) {
              if (d > -1.1f) return Hex(0x0C0A08);
              Col c = Shade(Hex(0x9A9CA0), 1.2f - (x + y) / 40.f);
              // Ember heat spreading from the tip.
              float heat = Clamp01(1.f - std::hypot(x - 2, y - 3) / (9.f + 4.f * glow));
              Col ember = Mix(Hex(0xA82A12), Hex(0xFFE2A0), heat * heat * glow);
              c = Mix(c, ember, Clamp01(heat * 1.7f) * (0.55f + 0.45f * glow));
              return c;
          });
    return im;
}

// One frame as a .cur file: ICONDIR, one entry with the hot spot, a 32-bit DIB with
// its AND mask (height doubled, rows bottom-up).
std::vector<uint8_t> CurFile(const Img& im) {
    std::vector<uint8_t> b;
    const uint32_t xorBytes = 32 * 32 * 4, andBytes = 32 * 4, dib = 40 + xorBytes + andBytes;
    Put16(b, 0); Put16(b, 2); Put16(b, 1);
    b.push_back(32); b.push_back(32); b.push_back(0); b.push_back(0);
    Put16(b, kHotX); Put16(b, kHotY); Put32(b, dib); Put32(b, 22);
    Put32(b, 40); Put32(b, 32); Put32(b, 64); Put16(b, 1); Put16(b, 32);
    Put32(b, 0); Put32(b, xorBytes + andBytes); Put32(b, 0); Put32(b, 0); Put32(b, 0); Put32(b, 0);
    for (int y = 31; y >= 0; --y)
        for (int x = 0; x < 32; ++x) {
            bool on = im.A(x, y) >= 0.5f;
            Col c = im.Get(x, y);
            auto q = [](float v) { return uint8_t(std::lround(Clamp01(v) * 255.f)); };
            b.push_back(on ? q(c.b) : 0); b.push_back(on ? q(c.g) : 0); b.push_back(on ? q(c.r) : 0);
            b.push_back(on ? 255 : 0);
        }
    for (int y = 31; y >= 0; --y) {
        uint32_t bits = 0;
        for (int x = 0; x < 32; ++x)
            if (im.A(x, y) < 0.5f) bits |= 0x80000000u >> x;
        b.push_back(uint8_t(bits >> 24)); b.push_back(uint8_t(bits >> 16));
        b.push_back(uint8_t(bits >> 8)); b.push_back(uint8_t(bits));
    }
    return b;
}

}  // namespace

void GenCursor(Output& out) {
    std::vector<uint8_t> fram;
    PutId(fram, "fram");
    for (int f = 0; f < kFrames; ++f) {
        Img im = Frame(f);
        std::vector<uint8_t> cur = CurFile(im);
        PutId(fram, "icon");
        Put32(fram, uint32_t(cur.size()));
        fram.insert(fram.end(), cur.begin(), cur.end());
        if (cur.size() % 2) fram.push_back(0);
        out.AddReview("ui", "cursor" + std::to_string(f), im);
    }
    std::vector<uint8_t> body;
    PutId(body, "ACON");
    PutId(body, "anih");
    Put32(body, 36);
    Put32(body, 36);        // header size
    Put32(body, kFrames);   // frames
    Put32(body, kFrames);   // steps
    Put32(body, 32); Put32(body, 32); Put32(body, 32); Put32(body, 1);
    Put32(body, 8);         // 8 jiffies (1/60 s) per step
    Put32(body, 1);         // frames are icon/cursor resources
    PutId(body, "rate");
    Put32(body, 4 * kFrames);
    for (int f = 0; f < kFrames; ++f) Put32(body, f == 0 ? 12 : 8);
    PutId(body, "LIST");
    Put32(body, uint32_t(fram.size()));
    body.insert(body.end(), fram.begin(), fram.end());
    std::vector<uint8_t> file;
    PutId(file, "RIFF");
    Put32(file, uint32_t(body.size()));
    file.insert(file.end(), body.begin(), body.end());
    out.AddBytes("loose/data/cursor.ani", file);
    out.AddText("manifest/cursor.txt",
                "# data\\cursor.ani: RIFF ACON, 6 frames of 32x32 32-bit cursors, hot spot 1,1 (arrow tip)\n"
                "frames=6 width=32 height=32 hotx=1 hoty=1 jiffies=12,8,8,8,8,8\n");
}

}  // namespace art
