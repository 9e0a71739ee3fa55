#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "res_test_util.h"
#include "resources/bmp.h"

namespace {

using Bytes = std::vector<uint8_t>;

uint16_t To565(int r, int g, int b) { return uint16_t((r >> 3) << 11 | (g >> 2) << 5 | (b >> 3)); }

struct Picture {
    int32_t w = 0, h = 0;
    std::vector<uint16_t> px;
};

Picture Decode(const Bytes& bmp) {
    Picture p;
    EXPECT_TRUE(BmpGetSize(bmp.data(), bmp.size(), &p.w, &p.h));
    p.px.assign(size_t(p.w) * size_t(p.h), 0x1234);
    EXPECT_TRUE(BmpDecodeTo565(bmp.data(), bmp.size(), p.px.data(), p.w, p.h, p.w, 0, 0));
    return p;
}

// ImageMagick's own reading of a file (raw 8-bit RGB), converted to 5-6-5.
Picture Reference(const std::string& rgbFile, int32_t w, int32_t h) {
    Bytes rgb = restest::ReadBytes(rgbFile);
    Picture p;
    p.w = w, p.h = h;
    EXPECT_EQ(rgb.size(), size_t(w) * size_t(h) * 3);
    for (size_t i = 0; i + 2 < rgb.size(); i += 3) p.px.push_back(To565(rgb[i], rgb[i + 1], rgb[i + 2]));
    return p;
}

uint32_t Le32(const Bytes& b, size_t at) { return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | uint32_t(b[at + 3]) << 24; }

struct Layout {
    const char* args;
    const char* file;
    uint16_t bits;
    uint32_t compression;
    uint32_t headerSize;
};

const Layout kLayouts[] = {
    {"-type truecolor -compress none", "BMP3:t24.bmp", 24, 0, 40},
    {"-type truecolor -compress none", "BMP:t24v5.bmp", 24, 0, 124},
    {"-type palette -compress none", "BMP3:t8.bmp", 8, 0, 40},
    {"-colors 12 -type palette -compress none", "BMP3:t4.bmp", 4, 0, 40},
    {"-monochrome -compress none", "BMP3:t1.bmp", 1, 0, 40},
    {"-type truecolor", "BMP2:t2_24.bmp", 24, 0, 12},
    {"-colors 12 -type palette", "BMP2:t2_4.bmp", 4, 0, 12},
    {"-alpha on", "BMP:t32.bmp", 32, 3, 124},
    {"-type palette -compress RLE", "BMP3:t8rle.bmp", 8, 1, 40},
    {"-type truecolor -define bmp:subtype=RGB565", "BMP:t565.bmp", 16, 3, 124},
    {"-type truecolor -define bmp:subtype=RGB555", "BMP:t555.bmp", 16, 3, 124},
};

std::string FileName(const char* arg) { return std::string(arg).substr(std::string(arg).find(':') + 1); }

// Every layout is written by ImageMagick in one run, then read back by it
// (as raw RGB) in a second run: the reference our decoder must match.
class BmpFiles : public ::testing::Test {
protected:
    restest::ScratchDir dir;
    void SetUp() override {
        // 37 x 23: a vertical gradient (23 colours), a magenta block at the
        // top left, a white pixel at the bottom right.
        std::string cmd = "convert -size 37x23 gradient:'rgb(200,20,0)'-'rgb(0,90,250)' -fill magenta "
                          "-draw 'rectangle 0,0 9,5' -fill 'rgb(250,250,250)' -draw 'point 36,22'";
        // Settings outlive the parentheses: the layouts that define a subtype
        // come last, and the others reset compression, type and alpha.
        for (const Layout& l : kLayouts) cmd += std::string(" \\( +clone -compress none -type truecolor -alpha off ") + l.args + " -write " + l.file + " +delete \\)";
        cmd += " null: && mogrify -format rgb -depth 8 *.bmp";
        ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;
    }
};

TEST_F(BmpFiles, ImageMagickLayoutsMatchItsOwnReading) {
    for (const Layout& c : kLayouts) {
        const std::string name = FileName(c.file);
        SCOPED_TRACE(name);
        Bytes file = restest::ReadBytes(name);
        SBmpInfo info;
        ASSERT_TRUE(BmpParse(file.data(), file.size(), &info));
        EXPECT_EQ(info.bitCount, c.bits);
        EXPECT_EQ(info.compression, c.compression);
        EXPECT_EQ(info.headerSize, c.headerSize);
        EXPECT_FALSE(info.topDown);
        Picture ours = Decode(file);
        ASSERT_EQ(ours.w, 37);
        ASSERT_EQ(ours.h, 23);
        Picture ref = Reference(name.substr(0, name.size() - 4) + ".rgb", 37, 23);
        ASSERT_EQ(ref.px.size(), ours.px.size());
        const bool fiveBitGreen = name == "t555.bmp";
        for (size_t i = 0; i < ours.px.size(); ++i) {
            // A 5-bit green widened by another program may round one step apart.
            int dg = int((ours.px[i] >> 5) & 63) - int((ref.px[i] >> 5) & 63);
            bool same = (ours.px[i] & 0xF81F) == (ref.px[i] & 0xF81F) && (fiveBitGreen ? std::abs(dg) <= 1 : dg == 0);
            ASSERT_TRUE(same) << "pixel " << i << " ours " << std::hex << ours.px[i] << " ref " << ref.px[i];
        }
        // Magenta stays exactly the colour key, in every layout that kept it.
        if (c.bits != 1) {
            EXPECT_EQ(ours.px[0], 0xF81F);
            EXPECT_EQ(ours.px[5 * 37 + 9], 0xF81F);
        }
    }
}

TEST_F(BmpFiles, TopDownClippingAnd16BitRgb) {
    Bytes file = restest::ReadBytes("t24.bmp");
    Picture ref = Decode(file);

    // Top-down copy of the same picture: rows reversed, height negated.
    Bytes td = file;
    const size_t off = Le32(file, 10), stride = (37 * 3 + 3) & ~3u;
    for (int r = 0; r < 23; ++r) std::memcpy(td.data() + off + r * stride, file.data() + off + (22 - r) * stride, stride);
    int32_t negH = -23;
    std::memcpy(td.data() + 22, &negH, 4);
    SBmpInfo info;
    ASSERT_TRUE(BmpParse(td.data(), td.size(), &info));
    EXPECT_TRUE(info.topDown);
    EXPECT_EQ(info.height, 23);
    EXPECT_EQ(Decode(td).px, ref.px);

    // Clipped at every edge: only the overlap is written, nothing else.
    const int W = 20, H = 10;
    for (auto [x, y] : {std::pair{-3, -2}, {10, 4}, {-40, 0}, {0, 30}, {19, 9}, {-36, -22}}) {
        std::vector<uint16_t> dst(W * H, 0x0101);
        ASSERT_TRUE(BmpDecodeTo565(file.data(), file.size(), dst.data(), W, H, W, x, y));
        for (int ty = 0; ty < H; ++ty)
            for (int tx = 0; tx < W; ++tx) {
                int sx = tx - x, sy = ty - y;
                uint16_t want = (sx >= 0 && sx < 37 && sy >= 0 && sy < 23) ? ref.px[sy * 37 + sx] : 0x0101;
                ASSERT_EQ(dst[ty * W + tx], want) << x << "," << y << " at " << tx << "," << ty;
            }
    }
    // A pitch wider than the width leaves the gap alone.
    std::vector<uint16_t> wide(50 * 23, 7);
    ASSERT_TRUE(BmpDecodeTo565(file.data(), file.size(), wide.data(), 40, 23, 50, 0, 0));
    EXPECT_EQ(wide[40], 7);
    EXPECT_EQ(wide[50 + 36], ref.px[37 + 36]);

    // 16-bit BI_RGB is 5-5-5: build it from the reference pixels.
    Bytes b16(54 + 23 * 76, 0);
    b16[0] = 'B', b16[1] = 'M';
    uint32_t v;
    v = 54, std::memcpy(&b16[10], &v, 4);
    v = 40, std::memcpy(&b16[14], &v, 4);
    v = 37, std::memcpy(&b16[18], &v, 4);
    v = 23, std::memcpy(&b16[22], &v, 4);
    b16[26] = 1, b16[28] = 16;
    for (int r = 0; r < 23; ++r)
        for (int c = 0; c < 37; ++c) {
            uint16_t p = ref.px[r * 37 + c];
            uint16_t p555 = uint16_t((p >> 11) << 10 | ((p >> 6) & 31) << 5 | (p & 31));
            std::memcpy(&b16[54 + (22 - r) * 76 + c * 2], &p555, 2);
        }
    Picture p16 = Decode(b16);
    for (size_t i = 0; i < p16.px.size(); ++i) ASSERT_EQ(p16.px[i] & 0xFFDF, ref.px[i] & 0xFFDF) << i;
    EXPECT_EQ(p16.px[0], 0xF81F);
}

// A hand-written RLE4 picture: runs, an absolute group, a delta, end of line
// and end of picture. Skipped pixels keep the target's value.
TEST(Bmp, Rle4AndRle8Escapes) {
    auto build = [](uint16_t bits, uint32_t comp, const Bytes& stream, int32_t w, int32_t h) {
        Bytes b(54 + 16 * 4, 0);
        b[0] = 'B', b[1] = 'M';
        uint32_t v;
        v = uint32_t(54 + 16 * 4), std::memcpy(&b[10], &v, 4);
        v = 40, std::memcpy(&b[14], &v, 4);
        std::memcpy(&b[18], &w, 4);
        std::memcpy(&b[22], &h, 4);
        b[26] = 1, b[28] = uint8_t(bits), b[30] = uint8_t(comp);
        v = 16, std::memcpy(&b[46], &v, 4);
        for (int i = 0; i < 16; ++i) {  // palette: index i -> (i*16, 255 - i*16, i*8)
            b[54 + i * 4 + 0] = uint8_t(i * 8);
            b[54 + i * 4 + 1] = uint8_t(255 - i * 16);
            b[54 + i * 4 + 2] = uint8_t(i * 16);
        }
        b.insert(b.end(), stream.begin(), stream.end());
        return b;
    };
    auto pal = [](int i) { return To565(i * 16, 255 - i * 16, i * 8); };
    // 6 x 3, bottom row first: row 0: run of 5 alternating 1,2 then EOL;
    // row 1: absolute 3 pixels 7,8,9 (2 bytes, padded to 2), delta (+2, +1);
    // row 2 from x=5: run of 1 of 15, end of picture.
    Bytes rle4 = build(4, 2, {5, 0x12, 0, 0, 0, 3, 0x78, 0x90, 0, 2, 2, 1, 1, 0xF0, 0, 1}, 6, 3);
    std::vector<uint16_t> dst(18, 0xAAAA);
    ASSERT_TRUE(BmpDecodeTo565(rle4.data(), rle4.size(), dst.data(), 6, 3, 6, 0, 0));
    const uint16_t K = 0xAAAA;
    std::vector<uint16_t> want = {
        K, K, K, K, K, pal(15),                          // top row = file row 2
        pal(7), pal(8), pal(9), K, K, K,                 // file row 1
        pal(1), pal(2), pal(1), pal(2), pal(1), K};      // bottom row
    EXPECT_EQ(dst, want);

    // RLE8: a run wider than the picture is cut at the right edge.
    Bytes rle8 = build(8, 1, {9, 3, 0, 0, 0, 3, 4, 5, 6, 0, 0, 1}, 4, 2);
    std::vector<uint16_t> d8(8, 0);
    ASSERT_TRUE(BmpDecodeTo565(rle8.data(), rle8.size(), d8.data(), 4, 2, 4, 0, 0));
    EXPECT_EQ(d8, (std::vector<uint16_t>{pal(4), pal(5), pal(6), 0, pal(3), pal(3), pal(3), pal(3)}));

    // Damage: an absolute group cut by the end of the file; a delta cut short.
    Bytes cut = build(8, 1, {0, 5, 1, 2}, 4, 2);
    EXPECT_FALSE(BmpDecodeTo565(cut.data(), cut.size(), d8.data(), 4, 2, 4, 0, 0));
    cut = build(8, 1, {0, 2, 1}, 4, 2);
    EXPECT_FALSE(BmpDecodeTo565(cut.data(), cut.size(), d8.data(), 4, 2, 4, 0, 0));
    // RLE may not be top-down.
    Bytes td = build(8, 1, {1, 1, 0, 1}, 4, -2);
    EXPECT_FALSE(BmpParse(td.data(), td.size(), nullptr));
}

TEST(Bmp, LyingHeadersAreRefused) {
    std::vector<uint32_t> rgb(12 * 8, 0xFF00FF);
    rgb[5] = 0x102030;
    Bytes good = BmpEncode24(rgb.data(), 12, 8);
    int32_t w = 0, h = 0;
    ASSERT_TRUE(BmpGetSize(good.data(), good.size(), &w, &h));
    EXPECT_EQ(w, 12);
    EXPECT_EQ(h, 8);

    auto refused = [](Bytes b) {
        std::vector<uint16_t> dst(64 * 64, 0x5555);
        bool ok = BmpDecodeTo565(b.data(), b.size(), dst.data(), 64, 64, 64, 0, 0);
        int32_t w = -1, h = -1;
        bool sized = BmpGetSize(b.data(), b.size(), &w, &h);
        return !ok && !sized && dst == std::vector<uint16_t>(64 * 64, 0x5555) && w == -1;
    };
    auto with32 = [&](size_t at, uint32_t v) {
        Bytes b = good;
        std::memcpy(&b[at], &v, 4);
        return b;
    };
    EXPECT_TRUE(refused(Bytes(good.begin(), good.end() - 1)));  // last row cut
    EXPECT_TRUE(refused(Bytes(good.begin(), good.begin() + 30)));
    EXPECT_TRUE(refused(with32(18, 100000)));                 // width lies
    EXPECT_TRUE(refused(with32(22, 9)));                      // height lies by one row
    EXPECT_TRUE(refused(with32(22, 0x80000000u)));            // most negative height
    EXPECT_TRUE(refused(with32(18, 0)));
    EXPECT_TRUE(refused(with32(10, uint32_t(good.size()))));  // pixels beyond the end
    EXPECT_TRUE(refused(with32(10, 0xFFFFFFF0u)));
    EXPECT_TRUE(refused(with32(14, 41)));                     // unknown header size
    EXPECT_TRUE(refused(with32(14, 0xFFFFFFFFu)));
    EXPECT_TRUE(refused(with32(30, 4)));                      // JPEG inside: not ours
    Bytes b = good;
    b[28] = 7;                                                // no such depth
    EXPECT_TRUE(refused(b));
    b = good;
    b[0] = 'X';
    EXPECT_TRUE(refused(b));
    // Palette pictures whose palette runs off the end, with nothing left.
    b = good;
    b[28] = 8;
    b.resize(54);
    EXPECT_TRUE(refused(b));
}

}  // namespace
