// The pure parts of presenting: the letterbox and the mouse mapping for any window
// size, the renderer choice from what the machine reports, the conversion of 16-bit
// frames into window formats, and the dirty bands between two frames.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "media/present.h"

using namespace present;

TEST(Letterbox, LargestIntegerScaleCentredAndCutWhenTooSmall) {
    SLetterbox lb = ComputeLetterbox(640, 480);
    EXPECT_EQ(lb.scale, 1);
    EXPECT_EQ(lb.x, 0);
    EXPECT_EQ(lb.y, 0);
    lb = ComputeLetterbox(1280, 960);
    EXPECT_EQ(lb.scale, 2);
    EXPECT_EQ(lb.x, 0);
    EXPECT_EQ(lb.y, 0);
    // A 1280 x 1024 full screen: scale 2, 32 black rows above and below.
    lb = ComputeLetterbox(1280, 1024);
    EXPECT_EQ(lb.scale, 2);
    EXPECT_EQ(lb.x, 0);
    EXPECT_EQ(lb.y, 32);
    // 1920 x 1080: height limits to 2; 320 columns each side, 60 rows.
    lb = ComputeLetterbox(1920, 1080);
    EXPECT_EQ(lb.scale, 2);
    EXPECT_EQ(lb.x, 320);
    EXPECT_EQ(lb.y, 60);
    // Odd remainders round the left and top margins down.
    lb = ComputeLetterbox(1279, 961);
    EXPECT_EQ(lb.scale, 1);
    EXPECT_EQ(lb.x, 319);
    EXPECT_EQ(lb.y, 240);
    lb = ComputeLetterbox(2560, 1440);
    EXPECT_EQ(lb.scale, 3);
    EXPECT_EQ(lb.x, 320);
    EXPECT_EQ(lb.y, 0);
    // Smaller than the picture: scale 1 at the origin (the rest is cut).
    lb = ComputeLetterbox(600, 400);
    EXPECT_EQ(lb.scale, 1);
    EXPECT_EQ(lb.x, 0);
    EXPECT_EQ(lb.y, 0);
    lb = ComputeLetterbox(0, 0);
    EXPECT_EQ(lb.scale, 1);
    EXPECT_EQ(lb.Width(), 640);
    EXPECT_EQ(lb.Height(), 480);
}

TEST(Letterbox, MouseMapsThroughTheLetterboxAndBack) {
    // Full screen 1280 x 1024 at scale 2 with a 32-row band at the top.
    SLetterbox lb = ComputeLetterbox(1280, 1024);
    auto toGame = [&](int x, int y) { return WindowToGame(lb, x, y, 1280, 1024, 1280, 1024); };
    EXPECT_EQ(toGame(0, 32).x, 0);
    EXPECT_EQ(toGame(0, 32).y, 0);
    EXPECT_EQ(toGame(1, 33).x, 0);
    EXPECT_EQ(toGame(2, 34).x, 1);
    EXPECT_EQ(toGame(2, 34).y, 1);
    EXPECT_EQ(toGame(1279, 991).x, 639);
    EXPECT_EQ(toGame(1279, 991).y, 479);
    // Points in the black bands clamp to the picture's edge rows.
    EXPECT_EQ(toGame(640, 0).y, 0);
    EXPECT_EQ(toGame(640, 31).y, 0);
    EXPECT_EQ(toGame(640, 1023).y, 479);
    EXPECT_EQ(toGame(-5, -5).x, 0);
    EXPECT_EQ(toGame(5000, 5000).x, 639);
    // The same window back at scale 1 after leaving full screen: no offset.
    lb = ComputeLetterbox(640, 480);
    EXPECT_EQ(WindowToGame(lb, 320, 195, 640, 480, 640, 480).x, 320);
    EXPECT_EQ(WindowToGame(lb, 320, 195, 640, 480, 640, 480).y, 195);
    // 1920 x 1080 full screen: (320, 60) is the picture's origin.
    lb = ComputeLetterbox(1920, 1080);
    EXPECT_EQ(WindowToGame(lb, 320, 60, 1920, 1080, 1920, 1080).x, 0);
    EXPECT_EQ(WindowToGame(lb, 319, 59, 1920, 1080, 1920, 1080).x, 0);
    EXPECT_EQ(WindowToGame(lb, 1599, 1019, 1920, 1080, 1920, 1080).x, 639);
    EXPECT_EQ(WindowToGame(lb, 1599, 1019, 1920, 1080, 1920, 1080).y, 479);
    // Every game pixel survives the round trip at scales 1 to 3, with and
    // without a high-density drawable twice the window's size.
    for (int scale = 1; scale <= 3; ++scale) {
        for (int density = 1; density <= 2; ++density) {
            const int dw = 640 * scale + 100, dh = 480 * scale + 60;
            const int ww = dw / density, wh = dh / density;
            lb = ComputeLetterbox(dw, dh);
            ASSERT_EQ(lb.scale, scale);
            for (int gy = 0; gy < 480; gy += 7)
                for (int gx = 0; gx < 640; gx += 5) {
                    const SPoint w = GameToWindow(lb, gx, gy, ww, wh, dw, dh);
                    const SPoint g = WindowToGame(lb, w.x, w.y, ww, wh, dw, dh);
                    if (density == 1 || scale > 1) {
                        EXPECT_EQ(g.x, gx) << scale << " " << density;
                        EXPECT_EQ(g.y, gy) << scale << " " << density;
                    } else {
                        // Scale 1 on a drawable twice as dense: a window point
                        // covers two game pixels and lands on the first of them.
                        EXPECT_EQ(g.x, gx & ~1) << gx;
                        EXPECT_EQ(g.y, gy & ~1) << gy;
                    }
                }
        }
    }
}

TEST(RendererChoice, SoftwareRasterisersAndOverrides) {
    EXPECT_EQ(ChooseRenderPath("opengl", "llvmpipe (LLVM 15.0.6, 256 bits)").path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("opengles2", "softpipe").path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("opengl", "Software Rasterizer").path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("opengl", "Google SwiftShader").path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("opengl", "Mesa X11 swrast").path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("direct3d11", "Microsoft Basic Render Driver").path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("software", nullptr).path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath(nullptr, nullptr).path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("", "").path, ERenderPath::Surface);
    EXPECT_EQ(ChooseRenderPath("opengl", "Mesa Intel(R) UHD Graphics 620 (KBL GT2)").path, ERenderPath::Accelerated);
    EXPECT_EQ(ChooseRenderPath("opengl", "NVIDIA GeForce GTX 1060/PCIe/SSE2").path, ERenderPath::Accelerated);
    EXPECT_EQ(ChooseRenderPath("opengl", "AMD Radeon RX 580 (polaris10, LLVM 15.0.6, DRM 3.49)").path,
              ERenderPath::Accelerated);
    EXPECT_EQ(ChooseRenderPath("direct3d", nullptr).path, ERenderPath::Accelerated);
    EXPECT_STRNE(ChooseRenderPath("opengl", "llvmpipe").reason, "");
    EXPECT_FALSE(IsSoftwareRasteriser(nullptr));
    EXPECT_TRUE(IsSoftwareRasteriser("LLVMPIPE"));

    ERenderPath path = ERenderPath::Accelerated;
    bool valid = false;
    EXPECT_TRUE(ParseRendererOverride("software", &path, &valid));
    EXPECT_TRUE(valid);
    EXPECT_EQ(path, ERenderPath::Surface);
    EXPECT_TRUE(ParseRendererOverride("accelerated", &path, &valid));
    EXPECT_EQ(path, ERenderPath::Accelerated);
    EXPECT_FALSE(ParseRendererOverride(nullptr, &path, &valid));
    EXPECT_TRUE(valid);
    EXPECT_FALSE(ParseRendererOverride("", &path, &valid));
    EXPECT_TRUE(valid);
    EXPECT_FALSE(ParseRendererOverride("Software", &path, &valid));
    EXPECT_FALSE(valid);
    EXPECT_FALSE(ParseRendererOverride("gpu", &path, &valid));
    EXPECT_FALSE(valid);
}

namespace {

const SPixelFormat kXrgb{4, 0x00FF0000, 0x0000FF00, 0x000000FF};
const SPixelFormat kXbgr{4, 0x000000FF, 0x0000FF00, 0x00FF0000};
const SPixelFormat k565{2, 0xF800, 0x07E0, 0x001F};
const SPixelFormat k555{2, 0x7C00, 0x03E0, 0x001F};
const SPixelFormat kBgr24{3, 0xFF0000, 0x00FF00, 0x0000FF};

}  // namespace

TEST(FrameConversion, KnownPixelsIn565And555) {
    // 5-6-5: white, magenta, pure channels, the smallest steps.
    EXPECT_EQ(ConvertPixel(0xFFFF, E16Layout::RGB565, kXrgb), 0xFFFFFFu);
    EXPECT_EQ(ConvertPixel(0xF81F, E16Layout::RGB565, kXrgb), 0xFF00FFu);
    EXPECT_EQ(ConvertPixel(0x07E0, E16Layout::RGB565, kXrgb), 0x00FF00u);
    EXPECT_EQ(ConvertPixel(0x001F, E16Layout::RGB565, kXrgb), 0x0000FFu);
    EXPECT_EQ(ConvertPixel(0x0821, E16Layout::RGB565, kXrgb), 0x080408u);  // r1 g1 b1
    EXPECT_EQ(ConvertPixel(0x8410, E16Layout::RGB565, kXrgb), 0x848284u);  // r16 g32 b16
    EXPECT_EQ(ConvertPixel(0x0000, E16Layout::RGB565, kXrgb), 0u);
    // 5-5-5: the same colours in their own layout.
    EXPECT_EQ(ConvertPixel(0x7FFF, E16Layout::RGB555, kXrgb), 0xFFFFFFu);
    EXPECT_EQ(ConvertPixel(0x7C1F, E16Layout::RGB555, kXrgb), 0xFF00FFu);
    EXPECT_EQ(ConvertPixel(0x03E0, E16Layout::RGB555, kXrgb), 0x00FF00u);
    EXPECT_EQ(ConvertPixel(0x0421, E16Layout::RGB555, kXrgb), 0x080808u);
    EXPECT_EQ(ConvertPixel(0x4210, E16Layout::RGB555, kXrgb), 0x848484u);
    // The unused top bit of 5-5-5 is ignored.
    EXPECT_EQ(ConvertPixel(0x8000, E16Layout::RGB555, kXrgb), 0u);
    // Other window formats: blue first, 16-bit windows, three bytes.
    EXPECT_EQ(ConvertPixel(0xF800, E16Layout::RGB565, kXbgr), 0x0000FFu);
    EXPECT_EQ(ConvertPixel(0x1234, E16Layout::RGB565, k565), 0x1234u);
    EXPECT_EQ(ConvertPixel(0x1234, E16Layout::RGB555, k555), 0x1234u);
    // 5-6-5 green 33 (100001) keeps its top five bits in 5-5-5: 16.
    EXPECT_EQ(ConvertPixel(0x0420, E16Layout::RGB565, k555), 0x0200u);
    EXPECT_EQ(ConvertPixel(0xF81F, E16Layout::RGB565, k555), 0x7C1Fu);
    // 5-5-5 green 16 widens to 6 bits as 33 (repeated top bit).
    EXPECT_EQ(ConvertPixel(0x0200, E16Layout::RGB555, k565), 0x0420u);
    EXPECT_EQ(ConvertPixel(0x7C1F, E16Layout::RGB555, k565), 0xF81Fu);
    EXPECT_EQ(ConvertPixel(0x8410, E16Layout::RGB565, kBgr24), 0x848284u);
}

TEST(FrameConversion, EveryPixelAtScalesOneToThreeMatchesThePixelRule) {
    // A frame holding all 65536 values (and more), converted whole and as a
    // sub-rectangle, at scales 1 to 3, into each window format.
    const int w = 640, h = 480;
    std::vector<uint16_t> src(size_t(w) * h);
    for (size_t i = 0; i < src.size(); ++i) src[i] = uint16_t(i * 40503u);
    for (size_t i = 0; i < 65536; ++i) src[i] = uint16_t(i);
    struct Case {
        E16Layout layout;
        SPixelFormat fmt;
    };
    const Case cases[] = {{E16Layout::RGB565, kXrgb}, {E16Layout::RGB555, kXrgb}, {E16Layout::RGB565, kXbgr},
                          {E16Layout::RGB565, k565},  {E16Layout::RGB565, k555},  {E16Layout::RGB555, k565},
                          {E16Layout::RGB555, k555},  {E16Layout::RGB565, kBgr24}};
    for (const Case& c : cases) {
        for (int scale = 1; scale <= 3; ++scale) {
            const int bpp = c.fmt.bytesPerPixel;
            const int pitch = w * scale * bpp + 12;  // a pitch wider than the row
            std::vector<uint8_t> dst(size_t(pitch) * h * scale, 0xAB);
            ConvertFrame(src.data(), w, 0, 0, w, h, c.layout, c.fmt, scale, dst.data(), pitch);
            int bad = 0;
            for (int y = 0; y < h * scale && bad < 5; y += (y % 97 == 0 ? 1 : 13))
                for (int x = 0; x < w * scale; ++x) {
                    const uint8_t* p = dst.data() + size_t(y) * pitch + size_t(x) * bpp;
                    uint32_t v = 0;
                    for (int k = 0; k < bpp; ++k) v |= uint32_t(p[k]) << (8 * k);
                    const uint32_t want = ConvertPixel(src[size_t(y / scale) * w + size_t(x / scale)], c.layout, c.fmt);
                    if (v != want && bad++ < 5)
                        ADD_FAILURE() << "bpp " << bpp << " scale " << scale << " at " << x << "," << y << ": " << v
                                      << " want " << want;
                }
            // The bytes past the row are not touched.
            EXPECT_EQ(dst[size_t(w) * scale * bpp], 0xAB);
            // Each pixel of the first row: the whole 65536-value range goes
            // through the row converter at least once across the rows.
            for (size_t i = 0; i < 65536 && scale == 1; i += 1) {
                const int x = int(i % w), y = int(i / w);
                const uint8_t* p = dst.data() + size_t(y) * pitch + size_t(x) * bpp;
                uint32_t v = 0;
                for (int k = 0; k < bpp; ++k) v |= uint32_t(p[k]) << (8 * k);
                ASSERT_EQ(v, ConvertPixel(uint16_t(i), c.layout, c.fmt)) << i;
            }
        }
    }
    // A sub-rectangle touches only its own blocks.
    const int scale = 2, pitch = w * scale * 4;
    std::vector<uint8_t> dst(size_t(pitch) * h * scale, 0);
    ConvertFrame(src.data(), w, 10, 20, 30, 25, E16Layout::RGB565, kXrgb, scale, dst.data(), pitch);
    auto at = [&](int x, int y) {
        uint32_t v;
        std::memcpy(&v, dst.data() + size_t(y) * pitch + size_t(x) * 4, 4);
        return v;
    };
    EXPECT_EQ(at(20, 40), ConvertPixel(src[20 * w + 10], E16Layout::RGB565, kXrgb));
    EXPECT_EQ(at(59, 49), ConvertPixel(src[24 * w + 29], E16Layout::RGB565, kXrgb));
    EXPECT_EQ(at(19, 40), 0u);
    EXPECT_EQ(at(60, 40), 0u);
    EXPECT_EQ(at(20, 39), 0u);
    EXPECT_EQ(at(20, 50), 0u);
}

TEST(DirtyBands, OnlyWhatChangedAndTheCopyFollows) {
    const int w = 640, h = 480;
    std::vector<uint16_t> now(size_t(w) * h, 0x1111), last(size_t(w) * h, 0);
    // The first present converts everything.
    SDirtyBands b = UpdateDirtyBands(now.data(), last.data(), w, h, true);
    ASSERT_EQ(b.count, 1);
    EXPECT_EQ(b.bands[0].left, 0);
    EXPECT_EQ(b.bands[0].top, 0);
    EXPECT_EQ(b.bands[0].right, w);
    EXPECT_EQ(b.bands[0].bottom, h);
    EXPECT_EQ(last, now);
    // Nothing changed: nothing to do.
    EXPECT_EQ(UpdateDirtyBands(now.data(), last.data(), w, h, false).count, 0);
    // Two small changes far apart: two bands with their columns; a change 5 rows
    // below the first joins its band.
    now[size_t(100) * w + 30] = 1;
    now[size_t(104) * w + 35] = 2;
    now[size_t(105) * w + 20] = 3;
    now[size_t(400) * w + 639] = 4;
    b = UpdateDirtyBands(now.data(), last.data(), w, h, false);
    ASSERT_EQ(b.count, 2);
    EXPECT_EQ(b.bands[0].left, 20);
    EXPECT_EQ(b.bands[0].right, 36);
    EXPECT_EQ(b.bands[0].top, 100);
    EXPECT_EQ(b.bands[0].bottom, 106);
    EXPECT_EQ(b.bands[1].left, 639);
    EXPECT_EQ(b.bands[1].right, 640);
    EXPECT_EQ(b.bands[1].top, 400);
    EXPECT_EQ(b.bands[1].bottom, 401);
    EXPECT_EQ(last, now);
    // More scattered changes than bands: the last band grows to take the rest.
    for (int y = 0; y < h; y += 20) now[size_t(y) * w + y % w] ^= 0xFFFF;
    b = UpdateDirtyBands(now.data(), last.data(), w, h, false);
    ASSERT_EQ(b.count, kMaxBands);
    EXPECT_EQ(b.bands[kMaxBands - 1].bottom, 461);
    EXPECT_EQ(last, now);
    int covered = 0;
    for (int y = 0; y < h; y += 20)
        for (int i = 0; i < b.count; ++i)
            if (b.bands[i].Contains(y % w, y)) {
                ++covered;
                break;
            }
    EXPECT_EQ(covered, h / 20);
}
