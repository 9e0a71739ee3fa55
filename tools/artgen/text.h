// Captions and titles: glyph coverage from our own stroke lettering (font.cpp), then
// an outline, drop shadow, vertical gradient and a bevel lit from the upper left.
#pragma once
#include <string>
#include <vector>

#include "canvas.h"

namespace art {

struct Mask {
    int w = 0, h = 0;
    std::vector<float> a;
    float At(int x, int y) const {
        return (x < 0 || y < 0 || x >= w || y >= h) ? 0.f : a[size_t(y) * w + x];
    }
};

struct TextStyle {
    int size = 16;
    Col top = Hex(0xF0E6C8), bottom = Hex(0xB89A60);
    Col outline = Hex(0x1A120C);
    float outlineWidth = 1.5f;
    float shadow = 1.5f;    // drop shadow offset to the lower right, 0 for none
    float bevel = 0.35f;    // strength of the upper-left light on the glyph edges
    bool engraved = false;  // cut into the surface instead of standing on it
};

bool TextInit();
void TextQuit();
Mask RenderText(const std::string& utf8, int size);
// Draws the caption with its box centred on (cx, cy) when centre, else top-left at (cx, cy).
void DrawText(Img& im, const std::string& utf8, float cx, float cy, const TextStyle& st,
              bool centre = true);
int TextWidth(const std::string& utf8, int size);
// A soft halo of colour c around the caption (added light), for titles over scenes.
void GlowText(Img& im, const std::string& utf8, float cx, float cy, int size, Col c,
              int radius, float strength);

}  // namespace art
