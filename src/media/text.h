// CTextCache: the display's text. GBK text is converted to UTF-8, rasterised once
// per (text, font height) with FreeType (SDL_ttf, solid: no partial pixels) into a
// coverage mask, and kept in a bounded cache; drawing writes the colour into the
// covered pixels only, so the background stays as it was. A cache hit allocates
// nothing.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "media/graph.h"
#include "media/surface.h"
#include "base/types.h"

class CLog;
struct _TTF_Font;

class CTextCache {
public:
    explicit CTextCache(CLog* log);
    ~CTextCache();
    CTextCache(const CTextCache&) = delete;
    CTextCache& operator=(const CTextCache&) = delete;

    // The font file, relative to the working directory unless absolute.
    static void SetFontPath(const char* path);
    static const char* GetFontPath();

    // Starts FreeType and opens the 18-pixel font. False (logged once) when the
    // font file cannot be opened; text calls then do nothing.
    bool Open();
    bool IsOpen() const { return m_bFontOk; }

    // align: GDI flags (0 left/top, 6 centred/top; 2 right, 8 bottom and 24
    // baseline are honoured as well).
    void Draw(CSurface& dst, const char* gbk, int32_t x, int32_t y, int align, uint16_t pixel, int height);
    SPoint Measure(const char* gbk, int height);
    SFontMetrics Metrics(int height);

    size_t CachedCount() const { return m_index.size(); }
    size_t CachedBytes() const { return m_nBytes; }

    static constexpr size_t kMaxEntries = 512;
    static constexpr size_t kMaxBytes = 8u << 20;

private:
    struct SFont {
        int height = 0;
        _TTF_Font* font = nullptr;
        SFontMetrics metrics;
        int ascent = 0;
    };
    struct SEntry {
        uint64_t hash = 0;
        int height = 0;
        std::string text;  // GBK bytes
        int32_t w = 0, h = 0;
        std::vector<uint8_t> mask;  // w * h, 1 where the glyphs cover
        uint64_t lastUse = 0;
    };

    SFont* FontFor(int height);
    const SEntry* Lookup(const char* gbk, int height);
    void Render(SEntry& e, SFont& font);
    void EvictOne();

    CLog* m_pLog;
    bool m_bTtfStarted = false;
    bool m_bTriedOpen = false;
    bool m_bFontOk = false;
    bool m_bLoggedFailure = false;
    std::vector<SFont> m_fonts;
    std::vector<SEntry> m_entries;
    std::unordered_map<uint64_t, uint32_t> m_index;  // hash -> entry
    std::vector<uint32_t> m_free;
    size_t m_nBytes = 0;
    uint64_t m_nTick = 0;
};
