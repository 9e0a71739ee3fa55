#include "media/present.h"

#include <algorithm>
#include <cstring>

namespace present {

SLetterbox ComputeLetterbox(int32_t drawableW, int32_t drawableH) {
    SLetterbox lb;
    const int32_t sx = drawableW / SCREEN_W, sy = drawableH / SCREEN_H;
    lb.scale = std::max(1, std::min(sx, sy));
    lb.x = std::max(0, (drawableW - lb.Width()) / 2);
    lb.y = std::max(0, (drawableH - lb.Height()) / 2);
    return lb;
}

namespace {

// a * num / den for window <-> drawable units; den of 0 leaves a unchanged.
int32_t Rescale(int32_t a, int32_t num, int32_t den) {
    if (den <= 0 || num <= 0 || num == den) return a;
    return int32_t(int64_t(a) * num / den);
}

int32_t FloorDiv(int32_t a, int32_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

int32_t Clamp(int32_t v, int32_t lo, int32_t hi) { return v < lo ? lo : (v > hi ? hi : v); }

}  // namespace

SPoint WindowToGame(const SLetterbox& lb, int32_t wx, int32_t wy, int32_t windowW, int32_t windowH,
                    int32_t drawableW, int32_t drawableH) {
    const int32_t dx = Rescale(wx, drawableW, windowW), dy = Rescale(wy, drawableH, windowH);
    const int32_t s = lb.scale > 0 ? lb.scale : 1;
    return SPoint{Clamp(FloorDiv(dx - lb.x, s), 0, SCREEN_W - 1), Clamp(FloorDiv(dy - lb.y, s), 0, SCREEN_H - 1)};
}

SPoint GameToWindow(const SLetterbox& lb, int32_t gx, int32_t gy, int32_t windowW, int32_t windowH,
                    int32_t drawableW, int32_t drawableH) {
    const int32_t s = lb.scale > 0 ? lb.scale : 1;
    const int32_t dx = lb.x + Clamp(gx, 0, SCREEN_W - 1) * s + s / 2;
    const int32_t dy = lb.y + Clamp(gy, 0, SCREEN_H - 1) * s + s / 2;
    return SPoint{Rescale(dx, windowW, drawableW), Rescale(dy, windowH, drawableH)};
}

bool ParseRendererOverride(const char* value, ERenderPath* path, bool* valid) {
    *valid = true;
    if (!value || !*value) return false;
    if (std::strcmp(value, "software") == 0) {
        *path = ERenderPath::Surface;
        return true;
    }
    if (std::strcmp(value, "accelerated") == 0) {
        *path = ERenderPath::Accelerated;
        return true;
    }
    *valid = false;
    return false;
}

namespace {

// Case-insensitive search of an ASCII word.
bool ContainsNoCase(const char* text, const char* word) {
    const size_t n = std::strlen(word);
    for (const char* p = text; *p; ++p) {
        size_t i = 0;
        while (i < n && p[i]) {
            char a = p[i], b = word[i];
            if (a >= 'A' && a <= 'Z') a = char(a - 'A' + 'a');
            if (b >= 'A' && b <= 'Z') b = char(b - 'A' + 'a');
            if (a != b) break;
            ++i;
        }
        if (i == n) return true;
    }
    return false;
}

}  // namespace

bool IsSoftwareRasteriser(const char* glRenderer) {
    if (!glRenderer) return false;
    static const char* const kSoftware[] = {"llvmpipe", "softpipe", "swrast", "software rasterizer",
                                            "swiftshader", "lavapipe", "basic render driver", "gdi generic"};
    for (const char* word : kSoftware)
        if (ContainsNoCase(glRenderer, word)) return true;
    return false;
}

SRenderChoice ChooseRenderPath(const char* sdlRendererName, const char* glRenderer) {
    if (!sdlRendererName || !*sdlRendererName) return {ERenderPath::Surface, "no accelerated renderer"};
    if (std::strcmp(sdlRendererName, "software") == 0)
        return {ERenderPath::Surface, "the accelerated renderer is SDL's software renderer"};
    if (IsSoftwareRasteriser(glRenderer))
        return {ERenderPath::Surface, "the accelerated renderer rasterises on the CPU"};
    return {ERenderPath::Accelerated, "the accelerated renderer has a GPU"};
}

namespace {

// Where one 8-bit channel goes in a pixel with the given mask.
struct SChannel {
    int shift = 0;  // lowest bit of the mask
    int bits = 0;   // width of the mask
    uint32_t Place(uint32_t v8) const {
        if (bits == 0) return 0;
        uint32_t v;
        if (bits >= 8) v = (v8 << (bits - 8)) | (bits > 8 ? v8 >> (16 - std::min(bits, 16)) : 0);
        else v = v8 >> (8 - bits);
        return v << shift;
    }
};

SChannel ChannelOf(uint32_t mask) {
    SChannel c;
    if (!mask) return c;
    while (!(mask & 1u)) {
        mask >>= 1;
        ++c.shift;
    }
    while (mask & 1u) {
        mask >>= 1;
        ++c.bits;
    }
    return c;
}

inline uint32_t Expand5(uint32_t v) { return (v << 3) | (v >> 2); }
inline uint32_t Expand6(uint32_t v) { return (v << 2) | (v >> 4); }

// The three 8-bit channels of a source pixel.
inline void Split(uint16_t p, E16Layout layout, uint32_t& r, uint32_t& g, uint32_t& b) {
    if (layout == E16Layout::RGB565) {
        r = Expand5(uint32_t(p >> 11) & 31);
        g = Expand6(uint32_t(p >> 5) & 63);
    } else {
        r = Expand5(uint32_t(p >> 10) & 31);
        g = Expand5(uint32_t(p >> 5) & 31);
    }
    b = Expand5(uint32_t(p) & 31);
}

// One row, 32-bit XRGB (red in bits 16 to 23): the common window format.
void RowXrgb(const uint16_t* s, int32_t n, E16Layout layout, int32_t scale, uint32_t* d) {
    if (layout == E16Layout::RGB565) {
        if (scale == 1) {
            for (int32_t i = 0; i < n; ++i) {
                const uint32_t p = s[i];
                const uint32_t r = p >> 11, g = (p >> 5) & 63, b = p & 31;
                d[i] = (Expand5(r) << 16) | (Expand6(g) << 8) | Expand5(b);
            }
            return;
        }
        if (scale == 2) {
            for (int32_t i = 0; i < n; ++i) {
                const uint32_t p = s[i];
                const uint32_t r = p >> 11, g = (p >> 5) & 63, b = p & 31;
                const uint32_t v = (Expand5(r) << 16) | (Expand6(g) << 8) | Expand5(b);
                d[2 * i] = v;
                d[2 * i + 1] = v;
            }
            return;
        }
    }
    for (int32_t i = 0; i < n; ++i) {
        uint32_t r, g, b;
        Split(s[i], layout, r, g, b);
        const uint32_t v = (r << 16) | (g << 8) | b;
        for (int32_t k = 0; k < scale; ++k) *d++ = v;
    }
}

// One row of any 32- or 16-bit format, through the channel masks.
template <typename T>
void RowMasked(const uint16_t* s, int32_t n, E16Layout layout, int32_t scale, const SChannel (&c)[3], T* d) {
    for (int32_t i = 0; i < n; ++i) {
        uint32_t r, g, b;
        Split(s[i], layout, r, g, b);
        const T v = T(c[0].Place(r) | c[1].Place(g) | c[2].Place(b));
        for (int32_t k = 0; k < scale; ++k) *d++ = v;
    }
}

// One row of a 3-byte format (little-endian).
void Row24(const uint16_t* s, int32_t n, E16Layout layout, int32_t scale, const SChannel (&c)[3], uint8_t* d) {
    for (int32_t i = 0; i < n; ++i) {
        uint32_t r, g, b;
        Split(s[i], layout, r, g, b);
        const uint32_t v = c[0].Place(r) | c[1].Place(g) | c[2].Place(b);
        for (int32_t k = 0; k < scale; ++k) {
            *d++ = uint8_t(v);
            *d++ = uint8_t(v >> 8);
            *d++ = uint8_t(v >> 16);
        }
    }
}

// 16-bit copies in the source's own layout, widened by the scale; `mask` drops
// the unused top bit of 5-5-5.
void RowSame16(const uint16_t* s, int32_t n, int32_t scale, uint16_t mask, uint16_t* d) {
    if (scale == 1 && mask == 0xFFFF) {
        std::memcpy(d, s, size_t(n) * 2);
        return;
    }
    for (int32_t i = 0; i < n; ++i) {
        const uint16_t v = uint16_t(s[i] & mask);
        for (int32_t k = 0; k < scale; ++k) *d++ = v;
    }
}

}  // namespace

uint32_t ConvertPixel(uint16_t p, E16Layout layout, const SPixelFormat& fmt) {
    uint32_t r, g, b;
    Split(p, layout, r, g, b);
    return ChannelOf(fmt.rMask).Place(r) | ChannelOf(fmt.gMask).Place(g) | ChannelOf(fmt.bMask).Place(b);
}

void ConvertFrame(const uint16_t* src, int32_t srcPitch, int32_t x0, int32_t y0, int32_t x1, int32_t y1,
                  E16Layout layout, const SPixelFormat& fmt, int32_t scale, uint8_t* dst, int32_t dstPitch) {
    if (!src || !dst || x1 <= x0 || y1 <= y0 || scale < 1) return;
    const int32_t bpp = fmt.bytesPerPixel;
    if (bpp != 2 && bpp != 3 && bpp != 4) return;
    const SChannel c[3] = {ChannelOf(fmt.rMask), ChannelOf(fmt.gMask), ChannelOf(fmt.bMask)};
    const bool xrgb = bpp == 4 && fmt.rMask == 0x00FF0000 && fmt.gMask == 0x0000FF00 && fmt.bMask == 0x000000FF;
    const bool same16 = bpp == 2 && ((layout == E16Layout::RGB565 && fmt.rMask == 0xF800 && fmt.gMask == 0x07E0 &&
                                      fmt.bMask == 0x001F) ||
                                     (layout == E16Layout::RGB555 && fmt.rMask == 0x7C00 && fmt.gMask == 0x03E0 &&
                                      fmt.bMask == 0x001F));
    const int32_t n = x1 - x0;
    const size_t rowBytes = size_t(n) * size_t(scale) * size_t(bpp);
    for (int32_t y = y0; y < y1; ++y) {
        const uint16_t* s = src + size_t(y) * size_t(srcPitch) + size_t(x0);
        uint8_t* d = dst + size_t(y) * size_t(scale) * size_t(dstPitch) + size_t(x0) * size_t(scale) * size_t(bpp);
        if (xrgb) RowXrgb(s, n, layout, scale, reinterpret_cast<uint32_t*>(d));
        else if (same16) RowSame16(s, n, scale, layout == E16Layout::RGB565 ? 0xFFFF : 0x7FFF,
                                   reinterpret_cast<uint16_t*>(d));
        else if (bpp == 4) RowMasked(s, n, layout, scale, c, reinterpret_cast<uint32_t*>(d));
        else if (bpp == 2) RowMasked(s, n, layout, scale, c, reinterpret_cast<uint16_t*>(d));
        else Row24(s, n, layout, scale, c, d);
        // The other rows of the block repeat the first.
        for (int32_t k = 1; k < scale; ++k) std::memcpy(d + size_t(k) * size_t(dstPitch), d, rowBytes);
    }
}

namespace {

// First and last+1 index where two rows differ; false when they are equal.
bool RowDiff(const uint16_t* a, const uint16_t* b, int32_t w, int32_t& x0, int32_t& x1) {
    if (std::memcmp(a, b, size_t(w) * 2) == 0) return false;
    int32_t i = 0;
    while (i < w && a[i] == b[i]) ++i;
    int32_t j = w;
    while (j > i && a[j - 1] == b[j - 1]) --j;
    x0 = i;
    x1 = j;
    return true;
}

}  // namespace

SDirtyBands UpdateDirtyBands(const uint16_t* now, uint16_t* last, int32_t w, int32_t h, bool all) {
    // Rows this close together go into one band: a few more converted rows cost
    // less than another update of the window.
    constexpr int32_t kJoinGap = 8;
    SDirtyBands out;
    for (int32_t y = 0; y < h; ++y) {
        const uint16_t* a = now + size_t(y) * size_t(w);
        uint16_t* b = last + size_t(y) * size_t(w);
        int32_t x0 = 0, x1 = w;
        if (!all && !RowDiff(a, b, w, x0, x1)) continue;
        std::memcpy(b + x0, a + x0, size_t(x1 - x0) * 2);
        SRect* band = out.count ? &out.bands[out.count - 1] : nullptr;
        if (band && (y - band->bottom <= kJoinGap || out.count == kMaxBands)) {
            band->left = std::min(band->left, x0);
            band->right = std::max(band->right, x1);
            band->bottom = y + 1;
        } else {
            out.bands[out.count++] = SRect{x0, y, x1, y + 1};
        }
    }
    return out;
}

}  // namespace present
