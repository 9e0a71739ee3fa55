#include <gtest/gtest.h>

#include <string>

#include "media/graph.h"
#include "media/text.h"
#include "media_test_util.h"
#include "base/gbk.h"

namespace {

struct Box {
    int minX = 1 << 30, minY = 1 << 30, maxX = -1, maxY = -1, count = 0;
};

// Pixels of the surface that differ from the background.
Box Changed(const CSurface& s, uint16_t background) {
    Box b;
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x)
            if (s.At(x, y) != background) {
                b.minX = std::min(b.minX, x);
                b.maxX = std::max(b.maxX, x);
                b.minY = std::min(b.minY, y);
                b.maxY = std::max(b.maxY, y);
                ++b.count;
            }
    return b;
}

class TextTest : public ::testing::Test {
protected:
    void SetUp() override {
        font = mediatest::FindFont();
        if (font.empty()) GTEST_SKIP() << "no CJK font installed";
        CTextCache::SetFontPath(font.c_str());
        ASSERT_TRUE(graph.Init(1));
        surf = graph.GetSurface(SURF_TEMP);
        graph.FillRect(SURF_TEMP, nullptr, kBack);
    }
    void TearDown() override { CTextCache::SetFontPath("data/seguibk.ttf"); }

    static constexpr uint16_t kBack = 0x1234;
    mediatest::ScratchDir dir;
    CGraph graph;
    std::string font;
    CSurface* surf = nullptr;
};

TEST_F(TextTest, LeftAlignedTextStaysInsideItsExtentWithSolidPixels) {
    const SPoint ext = graph.MeasureText("Hi");
    const SFontMetrics m = graph.GetFontMetrics();
    EXPECT_GT(ext.x, 4);
    EXPECT_EQ(ext.y, m.height);
    EXPECT_LE(m.height, 18);
    EXPECT_GE(m.height, 15);
    EXPECT_GT(m.avgCharWidth, 0);

    graph.DrawText("Hi", 50, 40, SURF_TEMP, TA_LEFT_TOP, RGB(255, 255, 255));
    const uint16_t white = RgbTo565(RGB(255, 255, 255));
    const Box b = Changed(*surf, kBack);
    ASSERT_GT(b.count, 10);
    EXPECT_GE(b.minX, 50);
    EXPECT_LT(b.maxX, 50 + ext.x);
    EXPECT_GE(b.minY, 40);
    EXPECT_LT(b.maxY, 40 + ext.y);
    // Solid rendering: every changed pixel is exactly the colour, the rest kept.
    for (uint16_t v : surf->pixels) ASSERT_TRUE(v == kBack || v == white);

    // Drawing it again in another colour over it changes the same pixels.
    graph.DrawText("Hi", 50, 40, SURF_TEMP, TA_LEFT_TOP, RGB(255, 0, 0));
    const Box b2 = Changed(*surf, kBack);
    EXPECT_EQ(b2.count, b.count);
    for (uint16_t v : surf->pixels) ASSERT_TRUE(v == kBack || v == 0xF800);
}

TEST_F(TextTest, CentredAlignmentAndClipping) {
    const SPoint ext = graph.MeasureText("Centre me");
    graph.DrawText("Centre me", 320, 100, SURF_TEMP, TA_CENTER_TOP, RGB(0, 255, 0));
    const Box b = Changed(*surf, kBack);
    ASSERT_GT(b.count, 10);
    const int left = 320 - ext.x / 2;
    EXPECT_GE(b.minX, left);
    EXPECT_LT(b.maxX, left + ext.x);
    // Roughly symmetric around the anchor.
    EXPECT_LT(std::abs((b.minX + b.maxX) / 2 - 320), 6);

    // Half off each corner: no writes outside the surface (checked by ASan),
    // and some pixels still land inside.
    graph.FillRect(SURF_TEMP, nullptr, kBack);
    graph.DrawText("WWWW", -20, -8, SURF_TEMP, TA_LEFT_TOP, RGB(0, 255, 0));
    graph.DrawText("WWWW", 630, 472, SURF_TEMP, TA_LEFT_TOP, RGB(0, 255, 0));
    const Box c = Changed(*surf, kBack);
    EXPECT_GT(c.count, 0);
    EXPECT_EQ(c.minX, 0);
    EXPECT_GE(c.maxX, 632);
    EXPECT_LE(c.maxX, 639);
    graph.DrawText("", 10, 10, SURF_TEMP, TA_LEFT_TOP, RGB(0, 255, 0));
    graph.DrawText(nullptr, 10, 10, SURF_TEMP, TA_LEFT_TOP, RGB(0, 255, 0));
    EXPECT_EQ(Changed(*surf, kBack).count, c.count);
}

TEST_F(TextTest, GbkChineseAndFontHeights) {
    const char* hello = GbkText("你好，世界");
    ASSERT_NE(std::string(hello), std::string("你好，世界"));  // really GBK bytes
    const SPoint ext = graph.MeasureText(hello);
    EXPECT_GT(ext.x, 4 * 12);
    graph.DrawText(hello, 10, 10, SURF_TEMP, TA_LEFT_TOP, RGB(255, 255, 0));
    const Box b = Changed(*surf, kBack);
    EXPECT_GT(b.count, 60);
    EXPECT_LT(b.maxX, 10 + ext.x);

    const SFontMetrics m20 = graph.GetFontMetrics(20), m48 = graph.GetFontMetrics(48);
    EXPECT_LE(m20.height, 20);
    EXPECT_GT(m20.height, graph.GetFontMetrics(18).height - 1);
    EXPECT_LE(m48.height, 48);
    EXPECT_GE(m48.height, 44);
    EXPECT_GT(graph.MeasureText("Result", 48).x, 2 * graph.MeasureText("Result", 18).x);
}

TEST_F(TextTest, CacheIsSharedAcrossColoursAndBounded) {
    CTextCache cache(graph.Log());
    ASSERT_TRUE(cache.Open());
    cache.Draw(*surf, "Cached", 0, 0, 0, 0xFFFF, 18);
    cache.Draw(*surf, "Cached", 1, 0, 0, 0x0000, 18);
    cache.Draw(*surf, "Cached", 0, 1, 0, 0x001F, 18);
    EXPECT_EQ(cache.CachedCount(), 1u);
    cache.Draw(*surf, "Cached", 0, 0, 0, 0xFFFF, 20);
    EXPECT_EQ(cache.CachedCount(), 2u);
    const SPoint before = cache.Measure("Cached", 18);
    EXPECT_EQ(cache.CachedCount(), 2u);

    char text[32];
    for (int i = 0; i < 700; ++i) {
        snprintf(text, sizeof(text), "line %d", i);
        cache.Measure(text, 18);
    }
    EXPECT_LE(cache.CachedCount(), CTextCache::kMaxEntries);
    EXPECT_LE(cache.CachedBytes(), CTextCache::kMaxBytes + 64 * 1024);
    // An evicted text renders again with the same extent.
    const SPoint after = cache.Measure("Cached", 18);
    EXPECT_EQ(after.x, before.x);
    EXPECT_EQ(after.y, before.y);
}

}  // namespace
