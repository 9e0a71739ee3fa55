#include <gtest/gtest.h>

#include "media/graph.h"
#include "res_test_util.h"
#include "resources/bmp.h"
#include "resources/vrn_writer.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Solid(int w, int h, uint32_t rgb, uint32_t corner) {
    std::vector<uint32_t> px(size_t(w) * size_t(h), rgb);
    px[0] = corner;
    return BmpEncode24(px.data(), w, h);
}

void Pack(const char* file, std::vector<SVrnInput> entries) {
    Bytes img;
    ASSERT_TRUE(BuildVrnArchive(entries, VRN_COMPRESS_AUTO, &img, nullptr));
    restest::WriteBytes(file, img);
}

class BitmapPacks : public ::testing::Test {
protected:
    restest::ScratchDir dir;
    CGraph graph;
    void SetUp() override {
        Pack("data/role.vrn", {{"a.bmp", Solid(4, 3, 0x0000FF, 0xFF00FF)}});
        Pack("data/ui.vrn", {{"a.bmp", Solid(5, 2, 0x00FF00, 0xFF00FF)},
                             {"bad.bmp", Bytes{'B', 'M', 1, 2, 3}},
                             {"lies.bmp", [] { Bytes b = Solid(8, 8, 0, 0); b.resize(b.size() - 10); return b; }()}});
        Pack("data/tiles.vrn", {{"1\\ab001.bmp", Solid(64, 32, 0x808080, 0xFF00FF)},
                                {"obj.bmp", Solid(16, 16, 0xFFFFFF, 0)}});
        graph.SetPackPath(0, "data\\role.vrn");
        graph.SetPackPath(1, "data\\ui.vrn");
        graph.SetPackPath(5, "data\\tiles.vrn");
        for (int i = 0; i < SURF_COUNT; ++i) graph.GetSurface(i)->Create(64, 48, i >= 3);
    }
};

TEST_F(BitmapPacks, CachesKeysAndPackSwitches) {
    EXPECT_EQ(graph.GetPackOpenCount(), 0);
    EXPECT_TRUE(graph.LoadBitmapData(0, "a.bmp", 0));
    EXPECT_FALSE(graph.LoadBitmapData(0, "a.bmp", 0));  // already cached: nothing read
    EXPECT_EQ(graph.GetPackOpenCount(), 1);
    // Same entry name in pack 1: its own key, its own bytes.
    EXPECT_TRUE(graph.LoadBitmapData(1, "a.bmp", 0));
    EXPECT_EQ(graph.GetPackOpenCount(), 2);
    CSurface* s = graph.GetSurface(SURF_BUFFER);
    ASSERT_TRUE(graph.DrawBitmapData(0, "a.bmp", SURF_BUFFER, 0, 0, 0));
    EXPECT_EQ(s->At(1, 1), RgbTo565(0, 0, 255));
    EXPECT_EQ(s->At(0, 0), KEY565);
    ASSERT_TRUE(graph.DrawBitmapData(1, "a.bmp", SURF_BUFFER, 10, 5, 0));
    EXPECT_EQ(s->At(11, 6), RgbTo565(0, 255, 0));
    EXPECT_EQ(s->At(10, 5), KEY565);
    EXPECT_FALSE(graph.DrawBitmapData(1, "a.bmp", SURF_BUFFER, 0, 0, 1));  // other cache

    // The same picture in cache 1 is a separate copy; freeing one cache
    // leaves the other.
    EXPECT_TRUE(graph.LoadBitmapData(1, "a.bmp", 1));
    graph.FreeBitmapCache(0);
    EXPECT_FALSE(graph.DrawBitmapData(1, "a.bmp", SURF_BUFFER, 0, 0, 0));
    EXPECT_TRUE(graph.DrawBitmapData(1, "a.bmp", SURF_BUFFER, 0, 0, 1));
    EXPECT_TRUE(graph.LoadBitmapData(1, "a.bmp", 0));  // read again after the free
    EXPECT_EQ(graph.GetPackOpenCount(), 2);            // pack 1 still open

    // 5, 1, 5: three opens.
    graph.FreeBitmapCache(0);
    graph.FreeBitmapCache(1);
    const int before = graph.GetPackOpenCount();
    EXPECT_TRUE(graph.LoadBitmapData(5, "1\\ab001.bmp", 1));
    EXPECT_TRUE(graph.LoadBitmapData(1, "a.bmp", 1));
    EXPECT_TRUE(graph.LoadBitmapData(5, "obj.bmp", 1));
    EXPECT_EQ(graph.GetPackOpenCount() - before, 3);

    int32_t w = 0, h = 0;
    EXPECT_TRUE(graph.GetBitmapSize(5, "1\\ab001.bmp", &w, &h));  // loads into cache 0
    EXPECT_EQ(w, 64);
    EXPECT_EQ(h, 32);
    w = h = -7;
    EXPECT_FALSE(graph.GetBitmapSize(5, "nothing.bmp", &w, &h));
    EXPECT_EQ(w, -7);
    EXPECT_TRUE(restest::Boxes().empty());
}

TEST_F(BitmapPacks, MissingAndDamagedPictures) {
    // A missing picture asked for every frame is reported once, not per frame.
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(graph.LoadBitmapData(1, "nope.bmp", 0));
    EXPECT_FALSE(graph.DrawBitmapData(1, "nope.bmp", SURF_BUFFER, 0, 0, 0));
    EXPECT_FALSE(graph.LoadBitmapData(1, "nope.bmp", 1));
    std::string log = restest::ReadText("GameEngine.log");
    EXPECT_EQ(restest::CountLines(log, "can not find (bmp:)nope.bmp in (epk:)data\\ui.vrn"), 1);
    EXPECT_EQ(restest::CountLines(log, "can not find"), 1);
    // Folders are not pictures; forward slashes are not separators.
    EXPECT_FALSE(graph.LoadBitmapData(5, "1", 0));
    EXPECT_FALSE(graph.LoadBitmapData(5, "1/ab001.bmp", 0));

    // Damaged pictures are cached but never drawn, and the surface is untouched.
    CSurface* s = graph.GetSurface(SURF_BUFFER);
    graph.FillRect(SURF_BUFFER, nullptr, 0x1111);
    EXPECT_FALSE(graph.LoadBitmapToSurface(1, "bad.bmp", SURF_BUFFER, 0, 0, 0));
    EXPECT_FALSE(graph.LoadBitmapToSurface(1, "lies.bmp", SURF_BUFFER, 0, 0, 0));
    EXPECT_FALSE(graph.DrawBitmap(1, "lies.bmp", SURF_BUFFER, 0, 0));
    for (uint16_t p : s->pixels) ASSERT_EQ(p, 0x1111);
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(graph.LoadBitmapToSurface(1, "bad.bmp", SURF_BUFFER, 0, 0, 0));
    log = restest::ReadText("GameEngine.log");
    EXPECT_EQ(restest::CountLines(log, "bad bitmap (bmp:)bad.bmp in (epk:)data\\ui.vrn"), 1);

    // A pack file that is not there: its message, nothing found, and the
    // pack that was open before is opened again when asked for.
    graph.SetPackPath(2, "data\\face.vrn");
    EXPECT_FALSE(graph.LoadBitmapData(2, "x.bmp", 0));
    EXPECT_EQ(restest::Boxes().size(), 1u);
    EXPECT_TRUE(graph.LoadBitmapData(5, "obj.bmp", 0));
    // It is not opened again for other pictures: one message box in all.
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(graph.LoadBitmapData(2, ("y" + std::to_string(i) + ".bmp").c_str(), 0));
    EXPECT_EQ(restest::Boxes().size(), 1u);
    // A pack without an archive name says which game.ini key is empty, once.
    graph.SetPackPath(3, "");
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(graph.LoadBitmapData(3, ("z" + std::to_string(i) + ".bmp").c_str(), 0));
    EXPECT_EQ(restest::Boxes().size(), 1u);
    log = restest::ReadText("GameEngine.log");
    EXPECT_EQ(restest::CountLines(log, "picture pack 3 has no archive: [MDfile] items is empty in game.ini"), 1);
    // Bad arguments.
    EXPECT_FALSE(graph.LoadBitmapData(6, "a.bmp", 0));
    EXPECT_FALSE(graph.LoadBitmapData(-1, "a.bmp", 0));
    EXPECT_FALSE(graph.LoadBitmapData(1, "a.bmp", 2));
    EXPECT_FALSE(graph.DrawBitmapData(5, "obj.bmp", 9, 0, 0, 0));
}

TEST_F(BitmapPacks, DrawBitmapUsesStagingAndColourKey) {
    graph.FillRect(SURF_BUFFER, nullptr, 0x0842);
    ASSERT_TRUE(graph.DrawBitmap(5, "1\\ab001.bmp", SURF_BUFFER, 0, 10));
    CSurface* b = graph.GetSurface(SURF_BUFFER);
    EXPECT_EQ(b->At(0, 10), 0x0842);  // magenta corner: the key lets the old pixel through
    EXPECT_EQ(b->At(1, 10), RgbTo565(0x80, 0x80, 0x80));
    EXPECT_EQ(b->At(63, 41), RgbTo565(0x80, 0x80, 0x80));
    EXPECT_EQ(b->At(0, 9), 0x0842);
    // The staging corner of surface 3 holds the picture.
    EXPECT_EQ(graph.GetSurface(SURF_ROLE)->At(0, 0), KEY565);
    // Clipped drawing onto a surface edge: decoding clips, the key copy refuses
    // a rectangle outside its destination as the fast copy does.
    EXPECT_TRUE(graph.LoadBitmapToSurface(5, "obj.bmp", SURF_BUFFER, 60, 40, 0));
    EXPECT_EQ(b->At(63, 47), RgbTo565(255, 255, 255));
    EXPECT_FALSE(graph.DrawBitmap(5, "obj.bmp", SURF_BUFFER, 60, 40));
}

}  // namespace
