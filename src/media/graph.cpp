// CGraph: the display's surfaces, rectangle copies, fills, pixel effects, lines
// and presentation. Text goes through CTextCache (media/text.cpp); the bitmap packs
// live in resources/bitmap_pack.cpp.
#include "media/graph.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cstdlib>
#include <new>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "media/text.h"
#include "media/window.h"
#include "resources/vrn_file.h"
#include "base/log.h"

CGraph* g_pGraph = nullptr;

namespace {

struct SSurfaceDesc {
    int32_t width, height;
    bool keyed;
    const char* failure;  // log line when the surface cannot be made
};

// Index order; surface 0 stands for the screen itself.
const SSurfaceDesc kSurfaceDescs[SURF_COUNT] = {
    {SCREEN_W, SCREEN_H, false, "Create Primary Surface...  failed!"},
    {SCREEN_W, SCREEN_H, false, "Create Buffer Surface...  failed!"},
    {WORLD_W, WORLD_H, false, "Create Layer Surface...  failed!"},
    {WORLD_W, WORLD_H, true, "Create Layer Surface...  failed!"},
    {WORLD_W, WORLD_H, true, "Create Layer Surface...  failed!"},
    {TILE_SHEET_W, TILE_SHEET_H, true, "Create Tile Surface...  failed!"},
    {OBJECT_SHEET_W, OBJECT_SHEET_H, true, "Create Object Surface...  failed!"},
    {SCREEN_W, SCREEN_H, true, "Create Temp Surface...  failed!"},
};

// One row of a colour-keyed copy: every source pixel except the key replaces the
// destination pixel. Forward order (callers handle overlap direction).
inline void KeyedRow(uint16_t* d, const uint16_t* s, int32_t n, uint16_t key) {
    int32_t i = 0;
#if defined(__SSE2__)
    const __m128i k = _mm_set1_epi16(int16_t(key));
    for (; i + 8 <= n; i += 8) {
        __m128i sv = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        __m128i dv = _mm_loadu_si128(reinterpret_cast<const __m128i*>(d + i));
        __m128i isKey = _mm_cmpeq_epi16(sv, k);
        __m128i out = _mm_or_si128(_mm_and_si128(isKey, dv), _mm_andnot_si128(isKey, sv));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), out);
    }
#endif
    for (; i < n; ++i) {
        uint16_t p = s[i];
        d[i] = (p == key) ? d[i] : p;
    }
}

inline void KeyedRowBackward(uint16_t* d, const uint16_t* s, int32_t n, uint16_t key) {
    for (int32_t i = n - 1; i >= 0; --i) {
        uint16_t p = s[i];
        if (p != key) d[i] = p;
    }
}

// Intersects r with the surface; false when nothing is left.
bool ClipToSurface(SRect& r, const CSurface& s) {
    r.left = std::max(r.left, 0);
    r.top = std::max(r.top, 0);
    r.right = std::min(r.right, s.width);
    r.bottom = std::min(r.bottom, s.height);
    return r.left < r.right && r.top < r.bottom;
}

inline uint16_t Pack565(int r, int g, int b) { return uint16_t((r << 11) | (g << 5) | b); }

}  // namespace

CGraph::CGraph() : m_pLog(std::make_unique<CLog>("GameEngine.log", false)) { g_pGraph = this; }

CGraph::~CGraph() {
    Release();
    if (g_pGraph == this) g_pGraph = nullptr;
}

bool CGraph::Init(int windowed) {
    (void)windowed;  // both modes use the same off-screen buffers; the window decides
    Release();
    for (int i = 0; i < SURF_COUNT; ++i) {
        const SSurfaceDesc& desc = kSurfaceDescs[i];
        try {
            m_surfaces[i].Create(desc.width, desc.height, desc.keyed);
        } catch (const std::bad_alloc&) {
            m_pLog->Write("%s", desc.failure);
            Release();
            return false;
        }
    }
    // Our buffers are always 5-6-5.
    m_nColorMask = COLOR_MASK_565;
    m_pLog->Write(m_nColorMask == COLOR_MASK_565 ? "it's 565" : "it's 555");
    for (int i = SURF_ROLE; i < SURF_COUNT; ++i) m_surfaces[i].colorKey = KEY565;
    if (!m_pText) m_pText = std::make_unique<CTextCache>(m_pLog.get());
    m_pText->Open();
    m_pLog->Write("Init DDraw succeed!");
    m_bInitialised = true;
    return true;
}

void CGraph::Release() {
    for (int i = SURF_COUNT - 1; i >= 0; --i) {
        m_surfaces[i].width = m_surfaces[i].height = 0;
        std::vector<uint16_t>().swap(m_surfaces[i].pixels);
    }
    m_pText.reset();
    m_bInitialised = false;
}

bool CGraph::BltFast(int dst, int32_t x, int32_t y, int src, const SRect& sr, uint32_t flags) {
    CSurface* d = GetSurface(dst);
    CSurface* s = GetSurface(src);
    if (!d || !s || !d->Valid() || !s->Valid()) return false;
    // 64-bit sizes: no rectangle a caller passes can overflow the checks.
    if (sr.left < 0 || sr.top < 0 || sr.right > s->width || sr.bottom > s->height) return false;
    if (int64_t(sr.right) - sr.left <= 0 || int64_t(sr.bottom) - sr.top <= 0) return false;
    // Both edges of the source now lie on the surface, so the sizes fit.
    const int32_t w = sr.right - sr.left, h = sr.bottom - sr.top;
    if (x < 0 || y < 0 || int64_t(x) + w > d->width || int64_t(y) + h > d->height) return false;

    const bool keyed = (flags & 1u) && s->hasColorKey;
    const uint16_t key = s->colorKey;
    // Within one surface the copy may overlap: walk rows bottom-up when moving
    // down, and keyed rows backwards when moving right on the same row band.
    const bool same = (d == s);
    const bool bottomUp = same && y > sr.top;
    const bool backward = same && x > sr.left;
    for (int32_t k = 0; k < h; ++k) {
        const int32_t row = bottomUp ? h - 1 - k : k;
        uint16_t* drow = d->Row(y + row) + x;
        const uint16_t* srow = s->Row(sr.top + row) + sr.left;
        if (!keyed) {
            if (same)
                memmove(drow, srow, size_t(w) * 2);
            else
                memcpy(drow, srow, size_t(w) * 2);
        } else if (backward) {
            KeyedRowBackward(drow, srow, w, key);
        } else {
            KeyedRow(drow, srow, w, key);
        }
    }
    return true;
}

void CGraph::FillRect(int dst, const SRect* rect, uint16_t value) {
    CSurface* d = GetSurface(dst);
    if (!d || !d->Valid()) return;
    SRect r = rect ? *rect : SRect{0, 0, d->width, d->height};
    if (!ClipToSurface(r, *d)) return;
    for (int32_t y = r.top; y < r.bottom; ++y) std::fill_n(d->Row(y) + r.left, r.right - r.left, value);
}

namespace {
// One axis of BltClipped: a cut at the low edge wins over a cut at the high edge,
// and the high cut also applies when the span ends exactly on the limit. In
// 64-bit: positions and sizes from damaged files cannot overflow here.
void ClipSpan(int64_t& pos, int64_t size, int64_t limit, int64_t srcStart, int64_t& lo, int64_t& hi) {
    lo = srcStart;
    if (pos < 0) {
        lo = srcStart - pos;
        hi = srcStart + size;
        pos = 0;
    } else if (pos + size >= limit) {
        hi = srcStart - pos + limit;
    } else {
        hi = srcStart + size;
    }
}

bool FitsInt32(int64_t v) { return v >= INT32_MIN && v <= INT32_MAX; }
}  // namespace

void CGraph::BltClipped(int dst, int32_t dstW, int32_t dstH, int src, uint32_t flags, int32_t x, int32_t y,
                        int32_t srcLeft, int32_t srcTop, int32_t w, int32_t h) {
    int64_t px = x, py = y, left, right, top, bottom;
    ClipSpan(px, w, dstW, srcLeft, left, right);
    ClipSpan(py, h, dstH, srcTop, top, bottom);
    // A source rectangle beyond the 32-bit range cannot lie on any surface.
    if (!FitsInt32(left) || !FitsInt32(right) || !FitsInt32(top) || !FitsInt32(bottom) || !FitsInt32(px) ||
        !FitsInt32(py))
        return;
    BltFast(dst, int32_t(px), int32_t(py), src, SRect{int32_t(left), int32_t(top), int32_t(right), int32_t(bottom)},
            flags);
}

void CGraph::ClearRoleLayer(int32_t x, int32_t y) {
    SRect r{x - 10, y - 10, x + SCREEN_W + 10, y + SCREEN_H + 10};
    if (x < 10) r.left = x;
    if (y < 10) r.top = y;
    if (x < -650 || x > 2549) r.right = x + SCREEN_W;
    if (y < -490 || y > 1109) r.bottom = y + SCREEN_H;
    FillRect(SURF_ROLE, &r, KEY565);
}

// The grey, darken and brighten effects copy the rectangle to the top-left corner
// of a scratch surface, change it there and copy it back. The rectangle is first
// cut to the target surface and to the scratch surface.
template <typename PixelFn>
static void ScratchEffect(CGraph& g, int surf, int scratch, SRect r, PixelFn fn) {
    CSurface* t = g.GetSurface(surf);
    CSurface* s = g.GetSurface(scratch);
    if (!t || !s || !t->Valid() || !s->Valid()) return;
    if (!ClipToSurface(r, *t)) return;
    r.right = std::min(r.right, r.left + s->width);
    r.bottom = std::min(r.bottom, r.top + s->height);
    const int32_t w = r.right - r.left, h = r.bottom - r.top;
    g.BltFast(scratch, 0, 0, surf, r, BLT_WAIT);
    for (int32_t y = 0; y < h; ++y) {
        uint16_t* p = s->Row(y);
        for (int32_t x = 0; x < w; ++x) {
            const uint16_t v = p[x];
            p[x] = (v == KEY565) ? v : fn(v);
        }
    }
    g.BltFast(surf, r.left, r.top, scratch, SRect{0, 0, w, h}, BLT_WAIT);
}

void CGraph::GrayRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b) {
    ScratchEffect(*this, surf, SURF_ROLE, SRect{l, t, r, b}, [](uint16_t v) -> uint16_t {
        const int R = v >> 11, G = (v >> 5) & 63, B = v & 31;
        const int g = (3 * R + 6 * (G / 2) + B) / 10;
        return Pack565(g, 2 * g, g);
    });
}

void CGraph::DarkenRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b, int32_t amount) {
    const int d = std::clamp(amount, 0, 31);
    ScratchEffect(*this, surf, SURF_ROLE, SRect{l, t, r, b}, [d](uint16_t v) -> uint16_t {
        const int R = v >> 11, G = (v >> 5) & 63, B = v & 31;
        return Pack565(std::max(R - d, 0), std::max(G - 2 * d, 0), std::max(B - d, 0));
    });
}

void CGraph::BrightenRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b) {
    ScratchEffect(*this, surf, SURF_OBJSHEET, SRect{l, t, r, b}, [](uint16_t v) -> uint16_t {
        const int R = v >> 11, G = (v >> 5) & 63, B = v & 31;
        return Pack565(std::min(R + 7, 31), std::min(G + 14, 63), std::min(B + 7, 31));
    });
}

void CGraph::HalfTintRect(int surf, int32_t l, int32_t t, int32_t r, int32_t b, int towardBlack) {
    CSurface* s = GetSurface(surf);
    if (!s || !s->Valid()) return;
    SRect rc{l, t, r, b};
    if (!ClipToSurface(rc, *s)) return;
    const int32_t w = rc.right - rc.left;
    for (int32_t y = rc.top; y < rc.bottom; ++y) {
        uint16_t* p = s->Row(y) + rc.left;
        if (towardBlack) {
            // Halving each field: shift right and drop the bit that crossed a field.
            for (int32_t x = 0; x < w; ++x) p[x] = uint16_t((p[x] >> 1) & 0x7BEF);
        } else {
            for (int32_t x = 0; x < w; ++x) {
                const uint16_t v = p[x];
                const int R = v >> 11, G = (v >> 5) & 63, B = v & 31;
                p[x] = Pack565((R + 31) / 2, (G + 63) / 2, (B + 31) / 2);
            }
        }
    }
}

void CGraph::DrawText(const char* text, int32_t x, int32_t y, int surf, int align, COLORREF color,
                      int fontHeight) {
    CSurface* s = GetSurface(surf);
    if (!text || !s || !s->Valid() || !m_pText) return;
    m_pText->Draw(*s, text, x, y, align, RgbTo565(color), fontHeight);
}

SPoint CGraph::MeasureText(const char* text, int fontHeight) {
    if (!text || !m_pText) return SPoint{};
    return m_pText->Measure(text, fontHeight);
}

SFontMetrics CGraph::GetFontMetrics(int fontHeight) {
    if (!m_pText) return SFontMetrics{};
    return m_pText->Metrics(fontHeight);
}

// Lines follow GDI: the start point is drawn, the end point is not.
void CGraph::DrawLine(int surf, int32_t x0, int32_t y0, int32_t x1, int32_t y1, COLORREF color) {
    CSurface* s = GetSurface(surf);
    if (!s || !s->Valid()) return;
    const uint16_t c = RgbTo565(color);
    const int64_t dx = std::abs(int64_t(x1) - x0), dy = -std::abs(int64_t(y1) - y0);
    const int32_t sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
    int64_t err = dx + dy;
    int64_t x = x0, y = y0;
    while (x != x1 || y != y1) {
        if (x >= 0 && y >= 0 && x < s->width && y < s->height) s->At(int32_t(x), int32_t(y)) = c;
        const int64_t e2 = 2 * err;
        if (e2 >= dy) {
            err += dy;
            x += sx;
        }
        if (e2 <= dx) {
            err += dx;
            y += sy;
        }
    }
}

void CGraph::FrameRect(int surf, const SRect& r, COLORREF color) {
    if (r.right <= r.left || r.bottom <= r.top) return;
    const uint16_t c = RgbTo565(color);
    const SRect edges[4] = {{r.left, r.top, r.right, r.top + 1},
                            {r.left, r.bottom - 1, r.right, r.bottom},
                            {r.left, r.top, r.left + 1, r.bottom},
                            {r.right - 1, r.top, r.right, r.bottom}};
    for (const SRect& e : edges) FillRect(surf, &e, c);
}

void CGraph::FillRectRGB(int surf, const SRect& r, COLORREF color) { FillRect(surf, &r, RgbTo565(color)); }

void CGraph::Present() {
    if (!m_bInitialised || !m_surfaces[SURF_BUFFER].Valid()) return;
    platform::PresentFrame(m_surfaces[SURF_BUFFER].pixels.data(), m_nColorMask == COLOR_MASK_555);
}
