#include "media/text.h"

#include <SDL.h>
#include <SDL_ttf.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/gbk.h"
#include "base/log.h"

namespace {

std::string g_fontPath = "data/seguibk.ttf";

uint64_t HashText(const char* s, size_t n, int height) {
    uint64_t h = 1469598103934665603ull;
    for (size_t i = 0; i < n; ++i) {
        h ^= uint8_t(s[i]);
        h *= 1099511628211ull;
    }
    h ^= uint64_t(uint32_t(height)) * 0x9E3779B97F4A7C15ull;
    h *= 1099511628211ull;
    return h;
}

}  // namespace

void CTextCache::SetFontPath(const char* path) { g_fontPath = path ? path : ""; }
const char* CTextCache::GetFontPath() { return g_fontPath.c_str(); }

CTextCache::CTextCache(CLog* log) : m_pLog(log) { m_fonts.reserve(8); }

CTextCache::~CTextCache() {
    for (SFont& f : m_fonts)
        if (f.font) TTF_CloseFont(f.font);
    m_fonts.clear();
    if (m_bTtfStarted) TTF_Quit();
}

bool CTextCache::Open() {
    if (m_bTriedOpen) return m_bFontOk;
    m_bTriedOpen = true;
    if (TTF_Init() != 0) {
        if (m_pLog) m_pLog->Write("Init font engine failed: %s", TTF_GetError());
        fprintf(stderr, "ashen-oath: the font engine did not start (%s): no text will be drawn\n", TTF_GetError());
        m_bLoggedFailure = true;
        return false;
    }
    m_bTtfStarted = true;
    m_bFontOk = true;  // FontFor clears it when the file cannot be opened
    return FontFor(18) != nullptr;
}

// Opens the font so that its cell (ascent + descent) is as close to the asked
// pixel height as the face allows without exceeding it, as a GDI font of that
// height is.
CTextCache::SFont* CTextCache::FontFor(int height) {
    if (!m_bTriedOpen) Open();
    if (!m_bFontOk || height <= 0 || height > 512) return nullptr;
    for (SFont& f : m_fonts)
        if (f.height == height) return &f;

    TTF_Font* font = TTF_OpenFont(g_fontPath.c_str(), height);
    if (!font) {
        m_bFontOk = false;
        // Without the font no text is drawn at all: say so once, in the log and
        // on stderr, so a missing or broken file does not go unnoticed.
        if (!m_bLoggedFailure) {
            if (m_pLog) m_pLog->Write("Open font %s failed!", g_fontPath.c_str());
            fprintf(stderr, "ashen-oath: cannot open the font %s (%s): no text will be drawn\n", g_fontPath.c_str(),
                    TTF_GetError());
        }
        m_bLoggedFailure = true;
        return nullptr;
    }
    int pt = height;
    int fh = TTF_FontHeight(font);
    if (fh > 0 && fh != height) {
        pt = std::max(1, (height * height + fh / 2) / fh);
        TTF_SetFontSize(font, pt);
        while (TTF_FontHeight(font) > height && pt > 1) TTF_SetFontSize(font, --pt);
        while (TTF_FontHeight(font) < height) {
            TTF_SetFontSize(font, pt + 1);
            if (TTF_FontHeight(font) > height) {
                TTF_SetFontSize(font, pt);
                break;
            }
            ++pt;
        }
    }
    SFont f;
    f.height = height;
    f.font = font;
    f.ascent = TTF_FontAscent(font);
    f.metrics.height = TTF_FontHeight(font);
    f.metrics.externalLeading = std::max(0, TTF_FontLineSkip(font) - f.metrics.height);
    int minx, maxx, miny, maxy, advance = 0;
    if (TTF_GlyphMetrics32(font, 'x', &minx, &maxx, &miny, &maxy, &advance) != 0) advance = height / 2;
    f.metrics.avgCharWidth = advance;
    m_fonts.push_back(f);
    return &m_fonts.back();
}

void CTextCache::Render(SEntry& e, SFont& font) {
    e.w = 0;
    e.h = font.metrics.height;
    e.mask.clear();
    const std::string utf8 = GbkToUtf8(e.text);
    if (utf8.empty()) return;
    SDL_Color white{255, 255, 255, 255};
    SDL_Surface* s = TTF_RenderUTF8_Solid(font.font, utf8.c_str(), white);
    if (!s) return;
    if (SDL_MUSTLOCK(s)) SDL_LockSurface(s);
    e.w = s->w;
    e.h = s->h;
    e.mask.assign(size_t(s->w) * size_t(s->h), 0);
    const uint8_t* base = static_cast<const uint8_t*>(s->pixels);
    // Solid rendering gives an 8-bit surface: index 0 is the background.
    for (int y = 0; y < s->h; ++y) {
        const uint8_t* row = base + size_t(y) * size_t(s->pitch);
        uint8_t* out = e.mask.data() + size_t(y) * size_t(s->w);
        for (int x = 0; x < s->w; ++x) out[x] = row[x] != 0;
    }
    if (SDL_MUSTLOCK(s)) SDL_UnlockSurface(s);
    SDL_FreeSurface(s);
}

void CTextCache::EvictOne() {
    uint32_t victim = UINT32_MAX;
    uint64_t oldest = UINT64_MAX;
    for (const auto& [hash, idx] : m_index) {
        if (m_entries[idx].lastUse < oldest) {
            oldest = m_entries[idx].lastUse;
            victim = idx;
        }
    }
    if (victim == UINT32_MAX) return;
    SEntry& e = m_entries[victim];
    m_index.erase(e.hash);
    m_nBytes -= e.mask.size();
    std::vector<uint8_t>().swap(e.mask);
    e.text.clear();
    m_free.push_back(victim);
}

const CTextCache::SEntry* CTextCache::Lookup(const char* gbk, int height) {
    SFont* font = FontFor(height);
    if (!font) return nullptr;
    const size_t n = strlen(gbk);
    const uint64_t hash = HashText(gbk, n, height);
    ++m_nTick;
    auto it = m_index.find(hash);
    if (it != m_index.end()) {
        SEntry& e = m_entries[it->second];
        if (e.height == height && e.text.size() == n && memcmp(e.text.data(), gbk, n) == 0) {
            e.lastUse = m_nTick;
            return &e;
        }
        // A different text with the same hash: render the new one into its slot.
        m_nBytes -= e.mask.size();
        e.text.assign(gbk, n);
        e.height = height;
        Render(e, *font);
        m_nBytes += e.mask.size();
        e.lastUse = m_nTick;
        return &e;
    }
    while (!m_index.empty() && (m_index.size() >= kMaxEntries || m_nBytes > kMaxBytes)) EvictOne();
    uint32_t idx;
    if (!m_free.empty()) {
        idx = m_free.back();
        m_free.pop_back();
    } else {
        idx = uint32_t(m_entries.size());
        m_entries.emplace_back();
    }
    SEntry& e = m_entries[idx];
    e.hash = hash;
    e.height = height;
    e.text.assign(gbk, n);
    Render(e, *font);
    m_nBytes += e.mask.size();
    e.lastUse = m_nTick;
    m_index.emplace(hash, idx);
    return &e;
}

void CTextCache::Draw(CSurface& dst, const char* gbk, int32_t x, int32_t y, int align, uint16_t pixel,
                      int height) {
    if (!gbk || !*gbk || !dst.Valid()) return;
    const SEntry* e = Lookup(gbk, height);
    if (!e || e->mask.empty()) return;
    int32_t left = x, top = y;
    if ((align & 6) == 6)
        left = x - e->w / 2;
    else if (align & 2)
        left = x - e->w;
    if ((align & 24) == 24) {
        const SFont* f = FontFor(height);
        top = y - (f ? f->ascent : 0);
    } else if (align & 8) {
        top = y - e->h;
    }
    const int32_t x0 = std::max(left, 0), x1 = std::min(left + e->w, dst.width);
    const int32_t y0 = std::max(top, 0), y1 = std::min(top + e->h, dst.height);
    for (int32_t yy = y0; yy < y1; ++yy) {
        const uint8_t* m = e->mask.data() + size_t(yy - top) * size_t(e->w) + size_t(x0 - left);
        uint16_t* d = dst.Row(yy) + x0;
        const int32_t n = x1 - x0;
        for (int32_t i = 0; i < n; ++i) d[i] = m[i] ? pixel : d[i];
    }
}

SPoint CTextCache::Measure(const char* gbk, int height) {
    SPoint p;
    if (!gbk) return p;
    const SEntry* e = Lookup(gbk, height);
    if (!e) return p;
    p.x = e->w;
    p.y = e->h;
    return p;
}

SFontMetrics CTextCache::Metrics(int height) {
    SFont* f = FontFor(height);
    return f ? f->metrics : SFontMetrics{};
}
