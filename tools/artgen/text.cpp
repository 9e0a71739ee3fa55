#include "text.h"

#include <SDL.h>
#include <SDL_ttf.h>

#include <cstdio>
#include <map>

namespace art {

static const char* kFontPath = "/usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf";
static std::map<int, TTF_Font*> g_fonts;
static bool g_ready = false;

bool TextInit() {
    if (g_ready) return true;
    if (TTF_Init() != 0) return false;
    g_ready = true;
    return true;
}

void TextQuit() {
    for (auto& f : g_fonts) TTF_CloseFont(f.second);
    g_fonts.clear();
    if (g_ready) TTF_Quit();
    g_ready = false;
}

static TTF_Font* Font(int size) {
    auto it = g_fonts.find(size);
    if (it != g_fonts.end()) return it->second;
    TTF_Font* f = g_ready ? TTF_OpenFont(kFontPath, size) : nullptr;
    if (!f) std::fprintf(stderr, "artgen: cannot open font %s\n", kFontPath);
    g_fonts[size] = f;
    return f;
}

Mask RenderText(const std::string& utf8, int size) {
    Mask m;
    TTF_Font* f = Font(size);
    if (!f || utf8.empty()) return m;
    SDL_Color white{255, 255, 255, 255};
    SDL_Surface* s = TTF_RenderUTF8_Blended(f, utf8.c_str(), white);
    if (!s) return m;
    SDL_Surface* c = SDL_ConvertSurfaceFormat(s, SDL_PIXELFORMAT_ARGB8888, 0);
    SDL_FreeSurface(s);
    if (!c) return m;
    m.w = c->w; m.h = c->h;
    m.a.resize(size_t(m.w) * m.h);
    SDL_LockSurface(c);
    for (int y = 0; y < m.h; ++y) {
        const uint32_t* row = reinterpret_cast<const uint32_t*>(
            static_cast<const uint8_t*>(c->pixels) + size_t(y) * c->pitch);
        for (int x = 0; x < m.w; ++x) m.a[size_t(y) * m.w + x] = (row[x] >> 24) / 255.f;
    }
    SDL_UnlockSurface(c);
    SDL_FreeSurface(c);
    return m;
}

int TextWidth(const std::string& utf8, int size) {
    TTF_Font* f = Font(size);
    int w = 0, h = 0;
    if (f) TTF_SizeUTF8(f, utf8.c_str(), &w, &h);
    return w;
}

void DrawText(Img& im, const std::string& utf8, float cx, float cy, const TextStyle& st,
              bool centre) {
    Mask m = RenderText(utf8, st.size);
    if (m.w == 0) return;
    int pad = int(st.outlineWidth + st.shadow) + 2;
    int ox = centre ? int(std::lround(cx - m.w / 2.f)) : int(cx);
    int oy = centre ? int(std::lround(cy - m.h / 2.f)) : int(cy);
    // Outline: coverage dilated by the outline width.
    int r = int(std::ceil(st.outlineWidth));
    auto dil = [&](int x, int y) {
        float best = m.At(x, y);
        for (int dy = -r; dy <= r; ++dy)
            for (int dx = -r; dx <= r; ++dx) {
                float dd = std::sqrt(float(dx * dx + dy * dy));
                if (dd > st.outlineWidth + 0.5f) continue;
                float k = Clamp01(st.outlineWidth + 0.5f - dd);
                best = std::max(best, m.At(x + dx, y + dy) * k);
            }
        return best;
    };
    int sh = int(std::lround(st.shadow));
    float top = float(pad), bot = float(m.h - pad);
    for (int y = -pad; y < m.h + pad; ++y)
        for (int x = -pad; x < m.w + pad; ++x) {
            int px = ox + x, py = oy + y;
            if (!im.In(px, py)) continue;
            if (sh > 0) {
                float s = dil(x - sh, y - sh);
                if (s > 0) im.Blend(px, py, Hex(0x000000), s * 0.55f);
            }
            if (st.outlineWidth > 0) {
                float o = dil(x, y);
                if (o > 0) im.Blend(px, py, st.outline, o);
            }
            float a = m.At(x, y);
            if (a <= 0) continue;
            float t = Clamp01((y - top * 0.2f) / std::max(1.f, bot));
            Col c = Mix(st.top, st.bottom, t);
            float lit = m.At(x - 1, y - 1) - m.At(x + 1, y + 1);
            if (st.engraved) lit = -lit;
            c = Shade(c, 1.f - lit * st.bevel);
            im.Blend(px, py, c, a);
        }
}

}  // namespace art
