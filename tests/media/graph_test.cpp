#include <gtest/gtest.h>

#include <climits>

#include "media/graph.h"
#include "media/text.h"
#include "media/window.h"
#include "media_test_util.h"

namespace {

// A distinct pixel per position that is never the key colour.
uint16_t Pat(int x, int y) { return uint16_t((x & 0xFF) | ((y & 0x3F) << 8)); }

void FillPattern(CSurface& s) {
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x) s.At(x, y) = Pat(x, y);
}

uint16_t P565(int r, int g, int b) { return uint16_t((r << 11) | (g << 5) | b); }
int R5(uint16_t v) { return v >> 11; }
int G6(uint16_t v) { return (v >> 5) & 63; }
int B5(uint16_t v) { return v & 31; }

class GraphTest : public ::testing::Test {
protected:
    void SetUp() override {
        CTextCache::SetFontPath("/nonexistent/font.ttf");
        ASSERT_TRUE(graph.Init(1));
    }
    mediatest::ScratchDir dir;
    CGraph graph;
};

TEST_F(GraphTest, InitMakesEightSurfacesAndLogsStartUp) {
    const struct {
        int w, h;
        bool keyed;
    } want[8] = {{640, 480, false},   {640, 480, false},   {3200, 1600, false}, {3200, 1600, true},
                 {3200, 1600, true},  {640, 640, true},    {2048, 1600, true},  {640, 480, true}};
    for (int i = 0; i < 8; ++i) {
        CSurface* s = graph.GetSurface(i);
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->width, want[i].w) << i;
        EXPECT_EQ(s->height, want[i].h) << i;
        EXPECT_EQ(s->hasColorKey, want[i].keyed) << i;
        if (want[i].keyed) {
            EXPECT_EQ(s->colorKey, 0xF81F);
        }
    }
    EXPECT_EQ(graph.GetSurface(8), nullptr);
    EXPECT_EQ(graph.GetSurface(-1), nullptr);
    EXPECT_EQ(graph.GetColorMask(), 0x07E0F81Fu);
    EXPECT_EQ(g_pGraph, &graph);

    const std::string log = mediatest::ReadFile("GameEngine.log");
    const size_t a = log.find("----->it's 565\r\n");
    const size_t b = log.find("----->Init DDraw succeed!\r\n");
    ASSERT_NE(a, std::string::npos) << log;
    ASSERT_NE(b, std::string::npos) << log;
    EXPECT_LT(a, b);
    // The missing font is reported once, even after several text calls.
    graph.DrawText("abc", 0, 0, 1, 0, RGB(255, 255, 255));
    graph.DrawText("abc", 0, 0, 1, 0, RGB(255, 255, 255), 20);
    EXPECT_EQ(graph.MeasureText("abc").x, 0);
    const std::string after = mediatest::ReadFile("GameEngine.log");
    size_t fontLines = 0;
    for (size_t p = after.find("Open font"); p != std::string::npos; p = after.find("Open font", p + 1)) ++fontLines;
    EXPECT_EQ(fontLines, 1u);

    graph.Release();
    EXPECT_FALSE(graph.GetSurface(1)->Valid());
    SRect r{0, 0, 4, 4};
    EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, r, BLT_WAIT));
}

TEST_F(GraphTest, PresentHandsOverTheBackBufferOnlyWhenInitialised) {
    const uint16_t* seen = nullptr;
    int calls = 0;
    platform::SetFrameObserver([&](const uint16_t* p) {
        seen = p;
        ++calls;
    });
    graph.GetSurface(SURF_BUFFER)->At(5, 5) = 0xABCD;
    graph.Present();
    ASSERT_EQ(calls, 1);
    EXPECT_EQ(seen, graph.GetSurface(SURF_BUFFER)->pixels.data());
    EXPECT_EQ(seen[5 * 640 + 5], 0xABCD);
    graph.Release();
    graph.Present();
    EXPECT_EQ(calls, 1);
    platform::SetFrameObserver(nullptr);
}

TEST_F(GraphTest, BltFastRefusesOutOfBoundsAndHonoursTheKey) {
    CSurface& src = *graph.GetSurface(SURF_TEMP);  // keyed
    CSurface& dst = *graph.GetSurface(SURF_BUFFER);
    FillPattern(src);
    graph.FillRect(SURF_BUFFER, nullptr, 0x1234);

    // Out of the source, out of the destination, empty: nothing copied.
    EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{-1, 0, 10, 10}, BLT_WAIT));
    EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{0, 0, 641, 10}, BLT_WAIT));
    EXPECT_FALSE(graph.BltFast(1, 631, 0, 7, SRect{0, 0, 10, 10}, BLT_WAIT));
    EXPECT_FALSE(graph.BltFast(1, 0, 471, 7, SRect{0, 0, 10, 10}, BLT_WAIT));
    EXPECT_FALSE(graph.BltFast(1, -1, 0, 7, SRect{0, 0, 10, 10}, BLT_WAIT));
    EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{5, 5, 5, 9}, BLT_WAIT));
    for (uint16_t v : dst.pixels) ASSERT_EQ(v, 0x1234);

    // Exactly at the far corner is allowed.
    EXPECT_TRUE(graph.BltFast(1, 630, 470, 7, SRect{0, 0, 10, 10}, BLT_WAIT));
    EXPECT_EQ(dst.At(639, 479), Pat(9, 9));
    EXPECT_EQ(dst.At(629, 479), 0x1234);

    // Keyed copy of an odd width (vector body and scalar tail).
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 21; x += 2) src.At(100 + x, 50 + y) = KEY565;
    EXPECT_TRUE(graph.BltFast(1, 3, 7, 7, SRect{100, 50, 121, 53}, BLT_WAIT_SRCKEY));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 21; ++x)
            ASSERT_EQ(dst.At(3 + x, 7 + y), x % 2 == 0 ? 0x1234 : Pat(100 + x, 50 + y)) << x << "," << y;
    EXPECT_EQ(dst.At(24, 7), 0x1234);
    // Opaque copy of the same rectangle carries the key colour across.
    EXPECT_TRUE(graph.BltFast(1, 3, 7, 7, SRect{100, 50, 121, 53}, BLT_WAIT));
    EXPECT_EQ(dst.At(3, 7), KEY565);
    // A source without a key copies everything even with the key flag.
    CSurface& ground = *graph.GetSurface(SURF_GROUND);
    ground.At(0, 0) = KEY565;
    ground.At(1, 0) = 0x0001;
    graph.FillRect(SURF_BUFFER, nullptr, 0x1234);
    EXPECT_TRUE(graph.BltFast(1, 0, 0, 2, SRect{0, 0, 2, 1}, BLT_WAIT_SRCKEY));
    EXPECT_EQ(dst.At(0, 0), KEY565);
    EXPECT_EQ(dst.At(1, 0), 0x0001);
}

TEST_F(GraphTest, BltFastWithinOneSurfaceHandlesOverlap) {
    CSurface& s = *graph.GetSurface(SURF_TEMP);
    FillPattern(s);
    // Move a block down and right over itself, opaque and keyed.
    EXPECT_TRUE(graph.BltFast(7, 12, 11, 7, SRect{10, 10, 40, 30}, BLT_WAIT));
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) ASSERT_EQ(s.At(12 + x, 11 + y), Pat(10 + x, 10 + y));
    FillPattern(s);
    EXPECT_TRUE(graph.BltFast(7, 13, 10, 7, SRect{10, 10, 40, 30}, BLT_WAIT_SRCKEY));
    for (int x = 0; x < 30; ++x) ASSERT_EQ(s.At(13 + x, 10), Pat(10 + x, 10));
    FillPattern(s);
    EXPECT_TRUE(graph.BltFast(7, 5, 4, 7, SRect{10, 10, 40, 30}, BLT_WAIT));
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) ASSERT_EQ(s.At(5 + x, 4 + y), Pat(10 + x, 10 + y));
}

TEST_F(GraphTest, BltClippedCutsAtEachEdge) {
    CSurface& src = *graph.GetSurface(SURF_TEMP);
    CSurface& dst = *graph.GetSurface(SURF_BUFFER);
    FillPattern(src);
    auto reset = [&] { graph.FillRect(SURF_BUFFER, nullptr, 0x1234); };

    // x = -10 with a 64-wide source: the rightmost 54 columns land at x = 0.
    reset();
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, -10, 20, 100, 30, 64, 8);
    for (int x = 0; x < 54; ++x) ASSERT_EQ(dst.At(x, 20), Pat(110 + x, 30)) << x;
    EXPECT_EQ(dst.At(54, 20), 0x1234);
    EXPECT_EQ(dst.At(0, 27), Pat(110, 37));
    EXPECT_EQ(dst.At(0, 28), 0x1234);

    // x + w == W copies the whole width.
    reset();
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, 576, 0, 0, 0, 64, 4);
    EXPECT_EQ(dst.At(576, 0), Pat(0, 0));
    EXPECT_EQ(dst.At(639, 3), Pat(63, 3));
    EXPECT_EQ(dst.At(575, 0), 0x1234);

    // Past the right edge: cut to W.
    reset();
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, 600, 0, 0, 0, 64, 2);
    EXPECT_EQ(dst.At(600, 0), Pat(0, 0));
    EXPECT_EQ(dst.At(639, 1), Pat(39, 1));

    // Top and bottom edges.
    reset();
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, 5, -3, 0, 10, 4, 8);
    EXPECT_EQ(dst.At(5, 0), Pat(0, 13));
    EXPECT_EQ(dst.At(5, 4), Pat(0, 17));
    EXPECT_EQ(dst.At(5, 5), 0x1234);
    reset();
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, 5, 476, 0, 10, 4, 8);
    EXPECT_EQ(dst.At(5, 476), Pat(0, 10));
    EXPECT_EQ(dst.At(5, 479), Pat(0, 13));

    // Crossing both left and right: only the left cut is made, so the copy no
    // longer fits and nothing is drawn.
    reset();
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, -10, 0, 0, 0, 660, 4);
    for (int x = 0; x < 640; ++x) ASSERT_EQ(dst.At(x, 0), 0x1234);

    // Wholly to the right: nothing.
    reset();
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, 700, 0, 0, 0, 10, 4);
    for (uint16_t v : dst.pixels) ASSERT_EQ(v, 0x1234);

    // Keyed, clipped on the left: key pixels of the source leave the destination.
    reset();
    src.At(12, 0) = KEY565;
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT_SRCKEY, -10, 0, 0, 0, 20, 1);
    EXPECT_EQ(dst.At(1, 0), Pat(11, 0));
    EXPECT_EQ(dst.At(2, 0), 0x1234);
    EXPECT_EQ(dst.At(3, 0), Pat(13, 0));
}

TEST_F(GraphTest, ClearRoleLayerMargins) {
    CSurface& role = *graph.GetSurface(SURF_ROLE);
    auto cleared = [&](int x, int y) { return role.At(x, y) == KEY565; };
    auto run = [&](int x, int y) {
        graph.FillRect(SURF_ROLE, nullptr, 0);
        graph.ClearRoleLayer(x, y);
    };

    run(100, 100);  // margins on every side
    EXPECT_TRUE(cleared(90, 90));
    EXPECT_FALSE(cleared(89, 90));
    EXPECT_FALSE(cleared(90, 89));
    EXPECT_TRUE(cleared(749, 589));
    EXPECT_FALSE(cleared(750, 589));
    EXPECT_FALSE(cleared(749, 590));

    run(5, 9);  // x < 10 and y < 10: no left or top margin
    EXPECT_TRUE(cleared(5, 9));
    EXPECT_FALSE(cleared(4, 9));
    EXPECT_FALSE(cleared(5, 8));
    EXPECT_TRUE(cleared(654, 498));
    EXPECT_FALSE(cleared(655, 498));

    run(10, 10);  // margins kept at exactly 10
    EXPECT_TRUE(cleared(0, 0));

    run(2549, 1109);  // right and bottom margins still there
    EXPECT_TRUE(cleared(3198, 1598));
    EXPECT_FALSE(cleared(3199, 1598));
    EXPECT_FALSE(cleared(3198, 1599));

    run(2550, 1110);  // past 2549 / 1109: right and bottom margins dropped
    EXPECT_TRUE(cleared(3189, 1589));
    EXPECT_FALSE(cleared(3190, 1589));
    EXPECT_FALSE(cleared(3189, 1590));
    EXPECT_TRUE(cleared(2540, 1100));  // the left and top margins stay

    run(-700, -500);  // far off: nothing inside the layer
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x) ASSERT_FALSE(cleared(x, y));
}

TEST_F(GraphTest, GreyDarkenBrightenUseScratchAndSkipKey) {
    CSurface& buf = *graph.GetSurface(SURF_BUFFER);
    CSurface& role = *graph.GetSurface(SURF_ROLE);
    CSurface& obj = *graph.GetSurface(SURF_OBJSHEET);
    auto setRow = [&] {
        buf.At(200, 100) = P565(31, 0, 0);
        buf.At(201, 100) = P565(0, 63, 0);
        buf.At(202, 100) = P565(10, 21, 30);
        buf.At(203, 100) = KEY565;
        buf.At(204, 100) = P565(3, 20, 10);
        buf.At(205, 100) = P565(30, 60, 0);
        buf.At(199, 100) = P565(7, 7, 7);  // outside the rectangle
    };

    setRow();
    graph.GrayRect(1, 200, 100, 206, 101);
    // g = (3R + 6(G/2) + B) / 10, written as (g, 2g, g).
    EXPECT_EQ(buf.At(200, 100), P565(9, 18, 9));
    EXPECT_EQ(buf.At(201, 100), P565(18, 36, 18));
    EXPECT_EQ(buf.At(202, 100), P565(12, 24, 12));  // (30 + 60 + 30) / 10
    EXPECT_EQ(buf.At(203, 100), KEY565);
    EXPECT_EQ(buf.At(199, 100), P565(7, 7, 7));
    // The work was done at the top-left corner of the role layer.
    EXPECT_EQ(role.At(0, 0), P565(9, 18, 9));
    EXPECT_EQ(role.At(3, 0), KEY565);

    setRow();
    graph.DarkenRect(1, 200, 100, 206, 101, 5);
    EXPECT_EQ(buf.At(204, 100), P565(0, 10, 5));
    EXPECT_EQ(buf.At(202, 100), P565(5, 11, 25));
    EXPECT_EQ(buf.At(203, 100), KEY565);

    // An amount above 31 acts as 31.
    setRow();
    graph.DarkenRect(1, 200, 100, 206, 101, 40);
    const uint16_t at40[3] = {buf.At(200, 100), buf.At(201, 100), buf.At(205, 100)};
    setRow();
    graph.DarkenRect(1, 200, 100, 206, 101, 31);
    EXPECT_EQ(at40[0], buf.At(200, 100));
    EXPECT_EQ(at40[1], buf.At(201, 100));
    EXPECT_EQ(at40[2], buf.At(205, 100));
    EXPECT_EQ(buf.At(201, 100), P565(0, 1, 0));  // 63 - 62
    EXPECT_EQ(buf.At(203, 100), KEY565);

    setRow();
    graph.BrightenRect(1, 200, 100, 206, 101);
    EXPECT_EQ(buf.At(205, 100), P565(31, 63, 7));
    EXPECT_EQ(buf.At(204, 100), P565(10, 34, 17));
    EXPECT_EQ(buf.At(203, 100), KEY565);
    EXPECT_EQ(buf.At(199, 100), P565(7, 7, 7));
    EXPECT_EQ(obj.At(5, 0), P565(31, 63, 7));  // scratch: the object sheet

    // A rectangle running off the surface is cut, not refused.
    buf.At(639, 479) = P565(31, 63, 31);
    graph.DarkenRect(1, 630, 470, 700, 500, 1);
    EXPECT_EQ(buf.At(639, 479), P565(30, 61, 30));
}

TEST_F(GraphTest, HalfTintInPlaceIncludingKey) {
    CSurface& buf = *graph.GetSurface(SURF_BUFFER);
    CSurface& role = *graph.GetSurface(SURF_ROLE);
    graph.FillRect(SURF_ROLE, nullptr, 0x0042);
    buf.At(0, 0) = 0x0000;
    buf.At(1, 0) = KEY565;
    buf.At(2, 0) = 0xFFFF;
    buf.At(3, 0) = P565(1, 1, 1);
    graph.HalfTintRect(1, 0, 0, 4, 1, 0);  // toward white
    EXPECT_EQ(R5(buf.At(0, 0)), 15);
    EXPECT_EQ(G6(buf.At(0, 0)), 31);
    EXPECT_EQ(B5(buf.At(0, 0)), 15);
    EXPECT_EQ(buf.At(1, 0), P565(31, 31, 31));
    EXPECT_EQ(buf.At(2, 0), 0xFFFF);
    EXPECT_EQ(buf.At(3, 0), P565(16, 32, 16));

    buf.At(0, 0) = 0xFFFF;
    buf.At(1, 0) = KEY565;
    buf.At(2, 0) = P565(1, 1, 1);
    buf.At(3, 0) = P565(17, 33, 9);
    graph.HalfTintRect(1, 0, 0, 4, 1, 1);  // toward black
    EXPECT_EQ(buf.At(0, 0), P565(15, 31, 15));
    EXPECT_EQ(buf.At(1, 0), P565(15, 0, 15));
    EXPECT_EQ(buf.At(2, 0), 0);
    EXPECT_EQ(buf.At(3, 0), P565(8, 16, 4));
    EXPECT_EQ(role.At(0, 0), 0x0042);  // no scratch surface involved
}

TEST_F(GraphTest, LinesAndRectanglesExcludeTheFarEdge) {
    CSurface& s = *graph.GetSurface(SURF_TEMP);
    const uint16_t c = RgbTo565(RGB(0, 255, 0));
    graph.FillRect(7, nullptr, 0);

    graph.DrawLine(7, 10, 5, 15, 5, RGB(0, 255, 0));
    for (int x = 10; x < 15; ++x) EXPECT_EQ(s.At(x, 5), c) << x;
    EXPECT_EQ(s.At(15, 5), 0);
    EXPECT_EQ(s.At(9, 5), 0);

    graph.DrawLine(7, 20, 20, 16, 24, RGB(0, 255, 0));  // down-left diagonal
    for (int i = 0; i < 4; ++i) EXPECT_EQ(s.At(20 - i, 20 + i), c) << i;
    EXPECT_EQ(s.At(16, 24), 0);

    graph.DrawLine(7, -5, -5, 3, 3, RGB(0, 255, 0));  // clipped at the corner
    EXPECT_EQ(s.At(0, 0), c);
    EXPECT_EQ(s.At(2, 2), c);
    EXPECT_EQ(s.At(3, 3), 0);
    graph.DrawLine(7, 630, 470, 700, 540, RGB(0, 255, 0));
    EXPECT_EQ(s.At(639, 479), c);

    graph.FillRect(7, nullptr, 0);
    graph.FrameRect(7, SRect{10, 10, 20, 15}, RGB(0, 255, 0));
    EXPECT_EQ(s.At(10, 10), c);
    EXPECT_EQ(s.At(19, 10), c);
    EXPECT_EQ(s.At(19, 14), c);
    EXPECT_EQ(s.At(10, 14), c);
    EXPECT_EQ(s.At(20, 10), 0);
    EXPECT_EQ(s.At(10, 15), 0);
    EXPECT_EQ(s.At(15, 12), 0);

    graph.FillRect(7, nullptr, 0);
    graph.FillRectRGB(7, SRect{630, 470, 660, 500}, RGB(255, 0, 0));
    EXPECT_EQ(s.At(630, 470), RgbTo565(RGB(255, 0, 0)));
    EXPECT_EQ(s.At(639, 479), RgbTo565(RGB(255, 0, 0)));
    EXPECT_EQ(s.At(629, 479), 0);
    graph.FillRectRGB(7, SRect{2, 2, 4, 3}, RGB(0, 0, 255));
    EXPECT_EQ(s.At(3, 2), 0x001F);
    EXPECT_EQ(s.At(4, 2), 0);
    EXPECT_EQ(s.At(2, 3), 0);
}

}  // namespace

// Rectangles from damaged files at the ends of the 32-bit range: nothing is
// copied, nothing outside a surface is read, and no arithmetic overflows.
TEST_F(GraphTest, CopiesAtTheEndsOfTheRangeCopyNothing) {
    CSurface& src = *graph.GetSurface(SURF_TEMP);
    CSurface& dst = *graph.GetSurface(SURF_BUFFER);
    FillPattern(src);
    graph.FillRect(SURF_BUFFER, nullptr, 0x1234);
    const int32_t big = INT32_MAX, small = INT32_MIN;
    for (uint32_t flags : {BLT_WAIT, BLT_WAIT_SRCKEY}) {
        // A source rectangle whose right edge the caller computed without overflow.
        EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{big - 10, 0, big, 10}, flags));
        EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{0, big - 5, 10, big}, flags));
        EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{small, 0, 10, 10}, flags));
        EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{0, 0, big, 10}, flags));
        EXPECT_FALSE(graph.BltFast(1, 0, 0, 7, SRect{-10, small, 10, big}, flags));
        EXPECT_FALSE(graph.BltFast(1, big, 0, 7, SRect{0, 0, 10, 10}, flags));
        EXPECT_FALSE(graph.BltFast(1, big - 5, big - 5, 7, SRect{0, 0, 10, 10}, flags));
        EXPECT_FALSE(graph.BltFast(1, small, small, 7, SRect{0, 0, 10, 10}, flags));
        // The clipped copy with source corners and sizes near the limits.
        graph.BltClipped(1, 640, 480, 7, flags, 0, 0, big, 0, 64, 32);
        graph.BltClipped(1, 640, 480, 7, flags, 0, 0, 0, big - 3, 64, 32);
        graph.BltClipped(1, 640, 480, 7, flags, -10, 0, big - 5, 0, 64, 32);
        graph.BltClipped(1, 640, 480, 7, flags, big - 5, 0, 0, 0, 64, 32);
        graph.BltClipped(1, 640, 480, 7, flags, small, small, 0, 0, 64, 32);
        graph.BltClipped(1, 640, 480, 7, flags, 5, 5, small, small, big, big);
        graph.BltClipped(1, big, big, 7, flags, big - 1, big - 1, 0, 0, big, big);
        graph.BltClipped(1, 640, 480, 7, flags, -20, 0, small + 5, 0, 64, 32);
    }
    for (uint16_t v : dst.pixels) ASSERT_EQ(v, 0x1234);
    // A source rectangle that reaches past the source's edge is refused whole.
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, 0, 0, 600, 0, 64, 4);
    EXPECT_EQ(dst.At(0, 0), 0x1234);
    graph.BltClipped(1, 640, 480, 7, BLT_WAIT, 0, 0, 576, 0, 64, 4);
    EXPECT_EQ(dst.At(0, 0), Pat(576, 0));
}
