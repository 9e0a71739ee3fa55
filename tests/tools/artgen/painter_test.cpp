// Unit tests of the art generator's painting core, compiled in from the tool's
// sources: the BMP encoder, the key-colour conversion, distance shapes, the
// lattice-periodic noise the tiles rely on, iso faces and the stroke lettering.
#include <gtest/gtest.h>
#include <png.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tools/artgen/canvas.cpp"
#include "tools/artgen/font.cpp"
#include "tools/artgen/iso.cpp"
#include "tools/artgen/text.cpp"
#include "tools/artgen/noise.h"
#include "resources/bmp.h"

using namespace art;

namespace {

uint32_t Le32(const std::vector<uint8_t>& b, size_t at) {
    return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | uint32_t(b[at + 3]) << 24;
}

TEST(ArtBmp, HeaderRowOrderPaddingAndChannelOrder) {
    for (int w = 1; w <= 6; ++w) {
        const int h = 3;
        std::vector<uint8_t> rgb(size_t(w) * h * 3);
        for (int i = 0; i < w * h; ++i) {
            rgb[i * 3] = uint8_t(i * 7);
            rgb[i * 3 + 1] = uint8_t(100 + i);
            rgb[i * 3 + 2] = uint8_t(200 - i);
        }
        std::vector<uint8_t> b = EncodeBmp(w, h, rgb);
        size_t stride = (size_t(w) * 3 + 3) / 4 * 4;
        ASSERT_EQ(b.size(), 54 + stride * h) << "width " << w;
        EXPECT_EQ(b[0], 'B');
        EXPECT_EQ(b[1], 'M');
        EXPECT_EQ(Le32(b, 2), b.size());
        EXPECT_EQ(Le32(b, 10), 54u);
        EXPECT_EQ(Le32(b, 14), 40u);
        EXPECT_EQ(Le32(b, 18), uint32_t(w));
        EXPECT_EQ(Le32(b, 22), uint32_t(h));  // positive: bottom-up
        EXPECT_EQ(b[28], 24);
        EXPECT_EQ(Le32(b, 30), 0u);
        EXPECT_EQ(Le32(b, 34), stride * h);
        // The top-left pixel is the first pixel of the last stored row, in B, G, R order.
        size_t last = 54 + stride * (h - 1);
        EXPECT_EQ(b[last + 0], rgb[2]);
        EXPECT_EQ(b[last + 1], rgb[1]);
        EXPECT_EQ(b[last + 2], rgb[0]);
        // Padding bytes are zero.
        for (int y = 0; y < h; ++y)
            for (size_t p = size_t(w) * 3; p < stride; ++p) EXPECT_EQ(b[54 + stride * y + p], 0);
        // The engine's decoder reads it back to the same colours.
        std::vector<uint16_t> px(size_t(w) * h, 0);
        ASSERT_TRUE(BmpDecodeTo565(b.data(), b.size(), px.data(), w, h, w, 0, 0));
        for (int i = 0; i < w * h; ++i) {
            uint16_t want = uint16_t((rgb[i * 3] >> 3) << 11 | (rgb[i * 3 + 1] >> 2) << 5 | rgb[i * 3 + 2] >> 3);
            EXPECT_EQ(px[i], want) << "pixel " << i << " width " << w;
        }
    }
}

TEST(ArtKey, CoverageDecidesTheKeyAndNearKeyColoursAreMovedAway) {
    Img im(5, 1);
    im.Set(0, 0, {0.2f, 0.4f, 0.6f}, 0.6f);   // half covered or more: its own colour
    im.Set(1, 0, {0.2f, 0.4f, 0.6f}, 0.49f);  // less than half: transparent
    im.Set(2, 0, {1.f, 0.f, 1.f}, 1.f);       // painted magenta must not become the key
    im.Set(3, 0, {0.99f, 0.05f, 0.97f}, 1.f); // close to the key in 16 bits
    im.Set(4, 0, {1.6f, -0.2f, 0.5f}, 1.f);   // out of range values clamp
    std::vector<uint8_t> o = ToRgb8(im);
    EXPECT_EQ(o[0], 51);
    EXPECT_EQ(o[1], 102);
    EXPECT_EQ(o[2], 153);
    EXPECT_EQ(o[3], 255);
    EXPECT_EQ(o[4], 0);
    EXPECT_EQ(o[5], 255);
    for (int p : {2, 3}) {
        EXPECT_FALSE(NearKey(o[p * 3], o[p * 3 + 1], o[p * 3 + 2])) << p;
        // In 5-6-5 and 5-5-5 the pixel must not collapse onto the key either.
        EXPECT_NE((o[p * 3] >> 3) << 11 | (o[p * 3 + 1] >> 2) << 5 | o[p * 3 + 2] >> 3, 0xF81F) << p;
        EXPECT_NE((o[p * 3] >> 3) << 10 | (o[p * 3 + 1] >> 3) << 5 | o[p * 3 + 2] >> 3, 0x7C1F) << p;
    }
    EXPECT_EQ(o[12], 255);
    EXPECT_EQ(o[13], 0);
    EXPECT_EQ(o[14], 128);
    EXPECT_TRUE(NearKey(255, 0, 255));
    EXPECT_TRUE(NearKey(210, 50, 220));
    EXPECT_FALSE(NearKey(210, 61, 220));
}

TEST(ArtCanvas, BlendDrawCropAndMirror) {
    Img a(4, 4);
    a.Blend(1, 1, {1, 0, 0}, 0.5f);
    a.Blend(1, 1, {1, 0, 0}, 0.5f);
    EXPECT_NEAR(a.A(1, 1), 0.75f, 1e-6);
    EXPECT_NEAR(a.Get(1, 1).r, 1.f, 1e-6);  // straight colour stays red
    a.Blend(9, 9, {1, 1, 1}, 1.f);          // outside: ignored
    a.Set(3, 0, {0, 1, 0}, 1.f);
    Img m = MirrorX(a);
    EXPECT_NEAR(m.Get(0, 0).g, 1.f, 1e-6);
    EXPECT_NEAR(m.A(2, 1), 0.75f, 1e-6);
    Img c = a.Crop(1, 0, 3, 2);
    EXPECT_NEAR(c.Get(2, 0).g, 1.f, 1e-6);
    EXPECT_NEAR(c.A(0, 1), 0.75f, 1e-6);
    Img d(4, 4);
    d.Fill({0, 0, 1});
    d.Draw(c, 2, 2);  // partly outside the target
    EXPECT_NEAR(d.Get(2, 3).r, 0.75f, 1e-5);
    EXPECT_NEAR(d.Get(2, 3).b, 0.25f, 1e-5);
    EXPECT_NEAR(d.A(2, 3), 1.f, 1e-6);
}

TEST(ArtShapes, DistancesAndCoverage) {
    std::vector<float> square = {0, 0, 10, 0, 10, 10, 0, 10};
    std::vector<float> reversed = {0, 10, 10, 10, 10, 0, 0, 0};
    EXPECT_NEAR(SdPoly(5, 5, square), -5.f, 1e-5);
    EXPECT_NEAR(SdPoly(5, 5, reversed), -5.f, 1e-5);
    EXPECT_NEAR(SdPoly(13, 5, square), 3.f, 1e-5);
    EXPECT_NEAR(SdPoly(13, 14, square), 5.f, 1e-5);
    // Concave L: the notch is outside.
    std::vector<float> ell = {0, 0, 4, 0, 4, 6, 10, 6, 10, 10, 0, 10};
    EXPECT_GT(SdPoly(7, 3, ell), 0.f);
    EXPECT_LT(SdPoly(2, 8, ell), 0.f);
    EXPECT_NEAR(SdCircle(3, 4, 0, 0, 2), 3.f, 1e-5);
    EXPECT_NEAR(SdBox(0, 0, 0, 0, 2, 3), -2.f, 1e-5);
    EXPECT_NEAR(SdBox(5, 0, 0, 0, 2, 3), 3.f, 1e-5);
    EXPECT_NEAR(SdSegment(5, 3, 0, 0, 10, 0, 1), 2.f, 1e-5);
    EXPECT_NEAR(SdSegment(-3, 4, 0, 0, 10, 0, 0), 5.f, 1e-5);
    EXPECT_NEAR(SdEllipse(14, 10, 10, 10, 4, 2), 0.f, 1e-5);
    // Anti-aliased coverage of a circle adds up to its area.
    Img im(40, 40);
    Paint(im, 0, 0, 40, 40, [](float x, float y) { return SdCircle(x, y, 20.3f, 19.7f, 9.f); },
          [](float, float, float) { return Col{1, 1, 1}; });
    double area = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x) area += im.A(x, y);
    EXPECT_NEAR(area, 3.14159265 * 81, 3.14159265 * 81 * 0.02);
}

TEST(ArtNoise, IsoNoiseRepeatsOnTheCellLatticeAndNowhereShorter) {
    for (int i = 0; i < 200; ++i) {
        float x = Rand01(i, 1, 3) * 300 - 150, y = Rand01(i, 2, 3) * 300 - 150;
        for (int freq : {1, 2, 3, 5, 8}) {
            float v = IsoNoise(x, y, 17, freq, 3);
            EXPECT_NEAR(v, IsoNoise(x + 32, y + 16, 17, freq, 3), 1e-4f);
            EXPECT_NEAR(v, IsoNoise(x + 32, y - 16, 17, freq, 3), 1e-4f);
            EXPECT_NEAR(v, IsoNoise(x - 64, y, 17, freq, 3), 1e-4f);
            EXPECT_GE(v, 0.f);
            EXPECT_LE(v, 1.f);
        }
        int ix = int(x), iy = int(y);
        EXPECT_EQ(IsoGrain(ix, iy, 5), IsoGrain(ix + 32, iy + 16, 5)) << ix << "," << iy;
        EXPECT_EQ(IsoGrain(ix, iy, 5), IsoGrain(ix - 32, iy + 16, 5)) << ix << "," << iy;
        EXPECT_EQ(IsoGrain(ix, iy, 5), IsoGrain(ix, iy - 32, 5)) << ix << "," << iy;
    }
    // Not constant, and not periodic along half a cell.
    int differ = 0;
    for (int i = 0; i < 50; ++i) {
        float x = float(i * 3), y = float(i * 2);
        differ += std::fabs(IsoNoise(x, y, 17, 2, 3) - IsoNoise(x + 16, y + 8, 17, 2, 3)) > 1e-3f;
    }
    EXPECT_GT(differ, 40);
    std::set<float> grains;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 64; ++x) grains.insert(IsoGrain(x, y, 5));
    EXPECT_GT(grains.size(), 1000u) << "one period holds 64 x 16 independent values";
    Rng r1(42), r2(42), r3(43);
    for (int i = 0; i < 10; ++i) {
        uint32_t a = r1.Next();
        EXPECT_EQ(a, r2.Next());
        EXPECT_NE(a, r3.Next());
    }
    Rng ri(7);
    for (int i = 0; i < 1000; ++i) {
        int v = ri.I(-3, 4);
        EXPECT_TRUE(v >= -3 && v <= 4);
    }
}

TEST(ArtIso, FacesFillTheirProjectionWithFaceCoordinates) {
    Img im(200, 120);
    Iso iso{100, 20};
    EXPECT_FLOAT_EQ(iso.X({1, 0, 0}) - iso.X({0, 0, 0}), 32.f);
    EXPECT_FLOAT_EQ(iso.Y({1, 0, 0}) - iso.Y({0, 0, 0}), 16.f);
    EXPECT_FLOAT_EQ(iso.X({0, 1, 0}) - iso.X({0, 0, 0}), -32.f);
    EXPECT_FLOAT_EQ(iso.Y({0, 0, 10}) - iso.Y({0, 0, 0}), -10.f);
    // A wall 2 cells long and 40 high on the v = 1 line, coloured by its (s, t).
    Quad(im, iso, {0, 1, 0}, {2, 0, 0}, {0, 0, 40}, [](float s, float t) { return Col{s, t, 0}; }, Col{0, 0, 1}, 0.f);
    auto at = [&](V3 p) { return im.Get(int(iso.X(p)), int(iso.Y(p))); };
    Col nearStart = at({0.1f, 1, 2}), nearEnd = at({1.9f, 1, 38});
    EXPECT_NEAR(nearStart.r, 0.05f, 0.03f);
    EXPECT_NEAR(nearStart.g, 0.05f, 0.04f);
    EXPECT_NEAR(nearEnd.r, 0.95f, 0.03f);
    EXPECT_NEAR(nearEnd.g, 0.95f, 0.04f);
    // Nothing beyond the face.
    EXPECT_EQ(im.A(int(iso.X({1, 1, 50})), int(iso.Y({1, 1, 50}))), 0.f);
    EXPECT_EQ(im.A(int(iso.X({2.3f, 1, 10})), int(iso.Y({2.3f, 1, 10}))), 0.f);
    // The outline colour edges the face.
    Img o(200, 120);
    Quad(o, iso, {0, 1, 0}, {2, 0, 0}, {0, 0, 40}, [](float, float) { return Col{1, 1, 1}; }, Col{0, 0, 1}, 1.5f);
    int x = int(iso.X({1, 1, 20}));
    int top = 0;
    while (top < 120 && o.A(x, top) < 0.5f) ++top;
    ASSERT_LT(top, 120);
    EXPECT_GT(o.Get(x, top).b, 0.9f);
    EXPECT_GT(o.Get(x, top + 5).r, 0.9f);
}

TEST(ArtLettering, EveryCharacterTheCaptionsUseHasStrokesInsideItsLines) {
    const std::string chars =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.,-()':/!?";
    const int size = 40;
    std::set<std::vector<float>> shapes;
    for (char c : chars) {
        Mask m = RenderText(std::string(1, c), size);
        ASSERT_GT(m.w, 0) << c;
        float ink = 0;
        for (float a : m.a) ink += a;
        EXPECT_GT(ink, 8.f) << "no strokes for '" << c << "'";
        shapes.insert(m.a);
        // Strokes stay between the cap line and the descender line.
        const float scale = size * 0.068f, weight = std::max(0.62f, size * 0.052f), pad = weight + 2;
        for (int y = 0; y < m.h; ++y)
            for (int x = 0; x < m.w; ++x)
                if (m.At(x, y) > 0) {
                    EXPECT_GE(y + 1, int(pad - 1.2f * scale - weight - 1)) << c;
                    EXPECT_LE(y, int(pad + 13.2f * scale + weight + 1)) << c;
                }
    }
    EXPECT_GE(shapes.size(), chars.size() - 2) << "letters must look different";
    // Spaces and unknown characters advance without ink.
    Mask blank = RenderText("  #", size);
    float ink = 0;
    for (float a : blank.a) ink += a;
    EXPECT_EQ(ink, 0.f);
    EXPECT_GT(blank.w, TextWidth(" ", size));
    // Widths grow with the text and with the size.
    EXPECT_LT(TextWidth("Load", 20), TextWidth("Load Game", 20));
    EXPECT_LT(TextWidth("Quit", 14), TextWidth("Quit", 28));
    EXPECT_EQ(RenderText("", 20).w, 0);
}

TEST(ArtLettering, DrawTextCentresTheCaption) {
    Img im(200, 60);
    TextStyle st;
    st.size = 20;
    st.shadow = 0;
    DrawText(im, "Load Game", 100, 30, st);
    int x0 = 200, x1 = -1, y0 = 60, y1 = -1;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 200; ++x)
            if (im.A(x, y) > 0.5f) {
                x0 = std::min(x0, x); x1 = std::max(x1, x);
                y0 = std::min(y0, y); y1 = std::max(y1, y);
            }
    ASSERT_GE(x1, 0);
    EXPECT_NEAR((x0 + x1) / 2.0, 100.0, 3.0);
    EXPECT_NEAR((y0 + y1) / 2.0, 30.0, 6.0);
    EXPECT_GT(x1 - x0, 60);
    // Left-aligned text starts at its x.
    Img l(200, 60);
    DrawText(l, "Quit", 20, 10, st, false);
    int first = 200;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 200; ++x)
            if (l.A(x, y) > 0.5f) first = std::min(first, x);
    EXPECT_NEAR(first, 20, 4);
}

TEST(ArtPng, KeyedPreviewsCarryAlphaAndPlainOnesDoNot) {
    std::vector<uint8_t> rgb = {255, 0, 255, 10, 20, 30, 40, 50, 60, 255, 0, 255};
    std::string dir = std::filesystem::current_path().string();
    std::string keyed = dir + "/art_png_keyed_" + std::to_string(::getpid()) + ".png";
    std::string plain = dir + "/art_png_plain_" + std::to_string(::getpid()) + ".png";
    ASSERT_TRUE(WritePng(keyed, 2, 2, rgb, true));
    ASSERT_TRUE(WritePng(plain, 2, 2, rgb, false));
    auto readPng = [](const std::string& path, int& type, std::vector<std::vector<uint8_t>>& rows) {
        FILE* f = std::fopen(path.c_str(), "rb");
        if (!f) return false;
        png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        if (setjmp(png_jmpbuf(png))) {
            png_destroy_read_struct(&png, &info, nullptr);
            std::fclose(f);
            return false;
        }
        png_init_io(png, f);
        png_read_info(png, info);
        type = png_get_color_type(png, info);
        int h = int(png_get_image_height(png, info));
        rows.assign(h, std::vector<uint8_t>(png_get_rowbytes(png, info)));
        for (auto& r : rows) png_read_row(png, r.data(), nullptr);
        png_destroy_read_struct(&png, &info, nullptr);
        std::fclose(f);
        return true;
    };
    int type = -1;
    std::vector<std::vector<uint8_t>> rows;
    ASSERT_TRUE(readPng(keyed, type, rows));
    EXPECT_EQ(type, PNG_COLOR_TYPE_RGBA);
    EXPECT_EQ(rows[0][3], 0);    // magenta -> clear
    EXPECT_EQ(rows[0][7], 255);  // colour -> opaque
    EXPECT_EQ(rows[0][4], 10);
    EXPECT_EQ(rows[1][7], 0);
    ASSERT_TRUE(readPng(plain, type, rows));
    EXPECT_EQ(type, PNG_COLOR_TYPE_RGB);
    EXPECT_EQ(rows[1][3], 255);
    std::remove(keyed.c_str());
    std::remove(plain.c_str());
    EXPECT_FALSE(WritePng("/proc/no/such/dir/x.png", 2, 2, rgb, true));
}

}  // namespace
