// The pure parts of showing a frame in a window, kept apart from SDL so that they
// can be checked on their own: where the 640 x 480 picture stands in a window of
// any size (integer scale, centred, black around it), how a window point maps back
// to a game pixel, which renderer suits the machine, and the conversion of a 16-bit
// frame into the window's own pixel format.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/types.h"

namespace present {

// The picture's place in a drawable of the given size: the largest integer scale
// at which 640 x 480 fits (at least 1), centred. A drawable smaller than the
// picture shows its top-left part.
struct SLetterbox {
    int32_t x = 0, y = 0;        // top-left of the picture in drawable pixels
    int32_t scale = 1;
    int32_t Width() const { return SCREEN_W * scale; }
    int32_t Height() const { return SCREEN_H * scale; }
    bool operator==(const SLetterbox& o) const { return x == o.x && y == o.y && scale == o.scale; }
};
SLetterbox ComputeLetterbox(int32_t drawableW, int32_t drawableH);

// A point in window coordinates to a game pixel, clamped to 640 x 480. The window
// may count in other units than the drawable (high-density displays): the point
// is first scaled by drawable size / window size.
SPoint WindowToGame(const SLetterbox& lb, int32_t wx, int32_t wy, int32_t windowW, int32_t windowH,
                    int32_t drawableW, int32_t drawableH);
// A game pixel to the window point at the middle of its block (for warping the
// cursor); the inverse of WindowToGame.
SPoint GameToWindow(const SLetterbox& lb, int32_t gx, int32_t gy, int32_t windowW, int32_t windowH,
                    int32_t drawableW, int32_t drawableH);

// Which way frames reach the screen.
enum class ERenderPath {
    Surface,      // our own conversion into the window's surface (no GPU needed)
    Accelerated,  // a streaming texture drawn by SDL's accelerated renderer
};
struct SRenderChoice {
    ERenderPath path = ERenderPath::Surface;
    const char* reason = "";
};

// The ASHEN_RENDERER override: "software" or "accelerated"; anything else (or
// nothing) leaves the choice to the machine. *valid is false for an unknown word.
bool ParseRendererOverride(const char* value, ERenderPath* path, bool* valid);

// True for the renderer strings of OpenGL implementations that rasterise on the
// CPU (llvmpipe, softpipe, swrast, SwiftShader, ...).
bool IsSoftwareRasteriser(const char* glRenderer);

// The choice from what the accelerated renderer reports: SDL's renderer name
// ("opengl", "opengles2", "direct3d11", "software", ...) and, for the OpenGL
// renderers, OpenGL's renderer string (nullptr when unknown).
SRenderChoice ChooseRenderPath(const char* sdlRendererName, const char* glRenderer);

// The window's pixel format: bytes per pixel (2, 3 or 4) and the channel masks
// within a little-endian pixel value.
struct SPixelFormat {
    int32_t bytesPerPixel = 4;
    uint32_t rMask = 0x00FF0000, gMask = 0x0000FF00, bMask = 0x000000FF;
};

// Layout of the 16-bit source frame.
enum class E16Layout { RGB565, RGB555 };

// One 16-bit pixel to the window format; 5- and 6-bit channels widen by repeating
// their top bits (31 -> 255, 16 -> 132), as the PNG frame dumps do.
uint32_t ConvertPixel(uint16_t p, E16Layout layout, const SPixelFormat& fmt);

// Converts rows [y0, y1) and columns [x0, x1) of a 640-wide 16-bit frame into the
// window's surface at an integer scale: source pixel (x, y) fills the scale x
// scale block whose top-left is dst + (y * scale) * dstPitch + x * scale * bpp, so
// dst must point at the picture's top-left pixel. One pass over the source.
void ConvertFrame(const uint16_t* src, int32_t srcPitch, int32_t x0, int32_t y0, int32_t x1, int32_t y1,
                  E16Layout layout, const SPixelFormat& fmt, int32_t scale, uint8_t* dst, int32_t dstPitch);

// Where two frames differ, as up to kMaxBands bands of rows with the columns that
// changed in them. Bands are in source pixels, right and bottom exclusive.
constexpr int kMaxBands = 8;
struct SDirtyBands {
    int count = 0;
    SRect bands[kMaxBands];
};
// Compares `now` with `last` (both w x h, pitch w) and copies the changed rows of
// `now` into `last`. With `all` set every pixel counts as changed.
SDirtyBands UpdateDirtyBands(const uint16_t* now, uint16_t* last, int32_t w, int32_t h, bool all);

}  // namespace present
