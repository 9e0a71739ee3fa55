// CGraph: the 640 x 480 16-bit display and its eight numbered surfaces, the text
// fonts, the whole-rectangle colour effects, the message line, and (defined in
// media/bitmap_pack.cpp) the bitmap packs and picture caches.
//
// Surfaces: 0 primary (what is seen), 1 back buffer 640x480, 2 ground layer,
// 3 role layer (also the bitmap staging and grey/darken scratch surface),
// 4 object layer (each 3200x1600), 5 tile sheet 640x640, 6 object sheet
// 2048x1600 (brighten scratch), 7 snapshot 640x480. Surfaces 3 to 7 carry the
// magenta colour key.
#pragma once
#include <cstdint>
#include <map>
#include <set>
#include <memory>
#include <string>
#include <vector>

#include "media/surface.h"
#include "base/types.h"

class CLog;
class CVRN_File;
class CTextCache;

enum ESurfaceIndex { SURF_PRIMARY = 0, SURF_BUFFER = 1, SURF_GROUND = 2, SURF_ROLE = 3, SURF_OBJECT = 4,
                     SURF_TILE = 5, SURF_OBJSHEET = 6, SURF_TEMP = 7, SURF_COUNT = 8 };

// The two picture caches. BMP_CACHE_MAP holds the pictures of the current map's
// characters, of screens and of panels, and is emptied at every map change;
// BMP_CACHE_GAME holds the hero's frames, the tiles and the object sheet until
// the game ends.
enum EBitmapCache { BMP_CACHE_MAP = 0, BMP_CACHE_GAME = 1, BMP_CACHE_COUNT = 2 };

// DirectDraw fast-copy flags as the callers pass them.
constexpr uint32_t BLT_WAIT = 16;         // opaque copy
constexpr uint32_t BLT_WAIT_SRCKEY = 17;  // copy with the source colour key

// GDI text alignment flags used by the game.
constexpr int TA_LEFT_TOP = 0;
constexpr int TA_CENTER_TOP = 6;

// Font heights used by the game: 18 is the display's text font and every
// panel's own font; 20 is the label font; 48 the result title.
struct SFontMetrics {
    int32_t height = 0;          // ascent + descent
    int32_t externalLeading = 0;
    int32_t avgCharWidth = 0;
};

// The message line shown for 70 presented frames (its rules belong to the UI).
struct SMessageLine {
    char text[256] = {0};
    int32_t framesLeft = 0;
};

constexpr uint32_t COLOR_MASK_565 = 0x07E0F81F;
constexpr uint32_t COLOR_MASK_555 = 0x03E07C1F;

class CGraph {
public:
    CGraph();
    virtual ~CGraph();

    // Creates the surfaces (windowed or full screen: the same buffers here) and
    // the fonts; writes the display's start-up log lines. False on failure.
    bool Init(int windowed);
    void Release();
    void RestoreAll() {}
    uint32_t GetColorMask() const { return m_nColorMask; }

    CSurface* GetSurface(int index) { return (index >= 0 && index < SURF_COUNT) ? &m_surfaces[index] : nullptr; }

    // Rectangle copies. BltFast refuses (returns false, copies nothing) when the
    // source rectangle is not inside the source or the destination rectangle is
    // not inside the destination, as DirectDraw's fast copy does; the callers
    // rely on a refused copy drawing nothing at all.
    bool BltFast(int dst, int32_t x, int32_t y, int src, const SRect& srcRect, uint32_t flags);
    // Fills a rectangle (nullptr: the whole surface) with a raw pixel value;
    // clipped to the surface.
    void FillRect(int dst, const SRect* rect, uint16_t value);
    void BltClipped(int dst, int32_t dstW, int32_t dstH, int src, uint32_t flags, int32_t x, int32_t y,
                    int32_t srcLeft, int32_t srcTop, int32_t w, int32_t h);
    void ClearRoleLayer(int32_t x, int32_t y);
    void GrayRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b);
    void DarkenRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b, int32_t amount);
    void BrightenRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b);
    void HalfTintRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b, int towardBlack);

    // Text (GBK, drawn with a transparent background). fontHeight selects the
    // font: 18 is the display's text font. align: TA_LEFT_TOP or TA_CENTER_TOP.
    void DrawText(const char* text, int32_t x, int32_t y, int surf, int align, COLORREF color,
                  int fontHeight = 18);
    // Width and height of a text's extent in the given font.
    SPoint MeasureText(const char* text, int fontHeight = 18);
    SFontMetrics GetFontMetrics(int fontHeight = 18);

    // Lines and rectangles for rain, bars and frames (clipped to the surface).
    void DrawLine(int surf, int32_t x0, int32_t y0, int32_t x1, int32_t y1, COLORREF color);
    void FrameRect(int surf, const SRect& r, COLORREF color);
    void FillRectRGB(int surf, const SRect& r, COLORREF color);
    // The pixel value of a colour in the display's layout (0xF81F for magenta).
    uint16_t ColorToPixel(COLORREF c) const { return RgbTo565(c); }

    // Shows the back buffer (and hands it to the frame recorder for --shot).
    void Present();

    // ---- Bitmap packs and picture caches (media/bitmap_pack.cpp) ----
    // A pack that cannot be opened, a missing picture and a damaged picture are
    // each reported once (per pack, per name), not every time they are asked for.
    void SetPackPath(int pack, const char* path);
    const char* GetPackPath(int pack) const { return (pack >= 0 && pack < PACK_COUNT) ? m_szPackPath[pack] : ""; }
    bool LoadBitmapData(int pack, const char* name, int cache);
    bool DrawBitmapData(int pack, const char* name, int surf, int32_t x, int32_t y, int cache);
    bool LoadBitmapToSurface(int pack, const char* name, int surf, int32_t x, int32_t y, int cache);
    bool GetBitmapSize(int pack, const char* name, int32_t* width, int32_t* height);
    bool DrawBitmap(int pack, const char* name, int surf, int32_t x, int32_t y);
    void FreeBitmapCache(int cache);
    // Number of archive opens the pack reader has made (for tests).
    int GetPackOpenCount() const { return m_nPackOpens; }

    SMessageLine& MessageLine() { return m_message; }
    CLog* Log() { return m_pLog.get(); }

private:
    bool m_bInitialised = false;
    uint32_t m_nColorMask = COLOR_MASK_565;
    CSurface m_surfaces[SURF_COUNT];
    std::unique_ptr<CLog> m_pLog;
    std::unique_ptr<CTextCache> m_pText;
    SMessageLine m_message;

    // Bitmap packs.
    char m_szPackPath[PACK_COUNT][30] = {};
    std::map<std::string, std::vector<uint8_t>> m_cache[BMP_CACHE_COUNT];
    std::unique_ptr<CVRN_File> m_pPackReader;
    int m_nOpenPack = -1;
    int m_nPackOpens = 0;
    bool m_bPackFailed[PACK_COUNT] = {};    // its archive could not be opened: not tried again
    std::set<std::string> m_missingPictures;  // cache keys of pictures no pack holds
    std::set<std::string> m_badPictures;      // cache keys of pictures that did not decode
    void LogPictureLine(const char* line);
};

// The display, for code that has no game pointer.
extern CGraph* g_pGraph;
