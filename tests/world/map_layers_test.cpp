// Tile names and the pre-rendered ground and object layers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "media/graph.h"
#include "world/map.h"

TEST(MapLayers, TileNamesAndPadding) {
    EXPECT_EQ(TileName(2, "wall", 1, 120, "true", 0), "2\\wall001.bmp");
    EXPECT_EQ(TileName(2, "wall", 1, 120, "true", 1), "2\\wall002.bmp");
    EXPECT_EQ(TileName(2, "wall", 1, 120, "True", 0), "2\\wall1.bmp");  // only "true" pads
    EXPECT_EQ(TileName(2, "wall", 1, 120, "", 9), "2\\wall10.bmp");
    EXPECT_EQ(TileName(1, "g", 1, 5, "true", 0), "1\\g1.bmp");
    EXPECT_EQ(TileName(1, "g", 1, 99, "true", 0), "1\\g01.bmp");
    EXPECT_EQ(TileName(1, "g", 1, 99, "true", 10), "1\\g11.bmp");
    EXPECT_EQ(TileName(1, "g", 1, 1000, "true", 0), "1\\g001.bmp");  // at most three digits
    EXPECT_EQ(TileName(1, "g", 1, 1000, "true", 999), "1\\g1000.bmp");
    EXPECT_EQ(TileName(12, "", 0, 9, "true", 3), "12\\3.bmp");
    // Ten pictures per row; pictures 100 and up reuse the first hundred places.
    EXPECT_EQ(TileSheetPos(0).x, 0);
    EXPECT_EQ(TileSheetPos(13).x, 192);
    EXPECT_EQ(TileSheetPos(13).y, 32);
    EXPECT_EQ(TileSheetPos(105).x, TileSheetPos(5).x);
    EXPECT_EQ(TileSheetPos(105).y, TileSheetPos(5).y);
    EXPECT_EQ(TileSheetPos(99).y, 9 * 32);
}

namespace {

struct SLayers {
    CGraph graph;
    SLayers() {
        graph.GetSurface(SURF_GROUND)->Create(WORLD_W, WORLD_H, false);
        graph.GetSurface(SURF_OBJECT)->Create(WORLD_W, WORLD_H, true);
        graph.GetSurface(SURF_TILE)->Create(640, 640, true);
        graph.GetSurface(SURF_OBJSHEET)->Create(2048, 1600, true);
    }
    CSurface& S(int i) { return *graph.GetSurface(i); }
};

// A map file with a few cells, loaded into a CMap.
bool LoadCells(CMap& map, const std::vector<SMapCell>& cells, int32_t n, const std::vector<SMapObject>& objects) {
    SMapHeader h{};
    std::memcpy(h.magic, "2pam", 4);
    h.size = n;
    h.objectCount = int32_t(objects.size());
    const std::string path = (std::filesystem::current_path() / ("ashen_world_layers.map_" + std::to_string(getpid()))).string();
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    f.write(reinterpret_cast<const char*>(&h), sizeof h);
    f.write(reinterpret_cast<const char*>(cells.data()), std::streamsize(cells.size() * sizeof(SMapCell)));
    f.write(reinterpret_cast<const char*>(objects.data()), std::streamsize(objects.size() * sizeof(SMapObject)));
    f.close();
    return map.Load(path.c_str(), nullptr);
}

}  // namespace

TEST(MapLayers, DrawTileTypeCopiesOnlyItsCellsWithTheColourKey) {
    SLayers L;
    // Sheet: picture 1 at (64, 0) is a diamond-ish block: colour 0x1234 with a
    // magenta corner pixel.
    for (int y = 0; y < 32; ++y)
        for (int x = 64; x < 128; ++x) L.S(SURF_TILE).At(x, y) = 0x1234;
    L.S(SURF_TILE).At(64, 0) = KEY565;
    L.graph.FillRect(SURF_GROUND, nullptr, 0x0F0F);
    std::vector<SMapCell> cells(4);
    const SPoint pts[4] = {CellBoxOrigin(0, 0), CellBoxOrigin(0, 1), CellBoxOrigin(1, 0), CellBoxOrigin(1, 1)};
    for (int k = 0; k < 4; ++k) {
        cells[size_t(k)].x = pts[k].x;
        cells[size_t(k)].y = pts[k].y;
        cells[size_t(k)].picX = 64;
        cells[size_t(k)].tileType = k == 3 ? 2 : 1;
    }
    CMap map;
    ASSERT_TRUE(LoadCells(map, cells, 2, {}));
    map.DrawTileType(&L.graph, SURF_GROUND, SURF_TILE, 1);
    EXPECT_EQ(L.S(SURF_GROUND).At(pts[0].x + 10, pts[0].y + 10), 0x1234);
    EXPECT_EQ(L.S(SURF_GROUND).At(pts[2].x + 10, pts[2].y + 10), 0x1234);
    EXPECT_EQ(L.S(SURF_GROUND).At(pts[0].x, pts[0].y), 0x0F0F);        // keyed corner shows through
    EXPECT_EQ(L.S(SURF_GROUND).At(pts[3].x + 32, pts[3].y + 31), 0x0F0F);  // type 2 not drawn
    map.DrawTileType(&L.graph, SURF_GROUND, SURF_TILE, 2);
    EXPECT_EQ(L.S(SURF_GROUND).At(pts[3].x + 32, pts[3].y + 31), 0x1234);
}

TEST(MapLayers, ObjectsAndTheirGroundPieces) {
    SLayers L;
    // Object sheet: a 128 x 96 object at (100, 200) painted 0x2222, with its
    // lower-left 64 x 32 area as a ground piece painted 0x3333 except one keyed pixel.
    for (int y = 200; y < 296; ++y)
        for (int x = 100; x < 228; ++x) L.S(SURF_OBJSHEET).At(x, y) = 0x2222;
    for (int y = 264; y < 296; ++y)
        for (int x = 100; x < 164; ++x) L.S(SURF_OBJSHEET).At(x, y) = 0x3333;
    L.S(SURF_OBJSHEET).At(101, 265) = KEY565;
    L.graph.FillRect(SURF_GROUND, nullptr, 0x0101);
    std::vector<SMapObject> objects(2);
    SMapObject& o = objects[0];
    o.sheetX = 100;
    o.sheetY = 200;
    o.width = 128;
    o.height = 96;
    o.worldX = 1000;
    o.worldY = 500;
    o.pieceCount = 1;
    o.pieces[0][0] = 100;
    o.pieces[0][1] = 264;
    // The second object reaches past the world's right edge.
    SMapObject& e = objects[1];
    e = o;
    e.pieceCount = 0;
    e.worldX = WORLD_W - 40;
    e.worldY = 100;
    std::vector<SMapCell> cells(1);
    CMap map;
    ASSERT_TRUE(LoadCells(map, cells, 1, objects));
    map.DrawObjects(&L.graph, SURF_OBJECT, SURF_OBJSHEET, SURF_GROUND, COLOR_MASK_565);
    const CSurface& obj = L.S(SURF_OBJECT);
    const CSurface& ground = L.S(SURF_GROUND);
    EXPECT_EQ(obj.At(0, 0), KEY565);  // the layer starts transparent
    EXPECT_EQ(obj.At(1000 + 100, 500 + 10), 0x2222);
    // The piece's 64 x 32 box is cleared on the object layer, all of it.
    EXPECT_EQ(obj.At(1000 + 5, 500 + 70), KEY565);
    EXPECT_EQ(obj.At(1000 + 63, 500 + 95), KEY565);
    EXPECT_EQ(obj.At(1000 + 64, 500 + 95), 0x2222);
    // ... and lies on the ground layer, keyed.
    EXPECT_EQ(ground.At(1000 + 5, 500 + 70), 0x3333);
    EXPECT_EQ(ground.At(1000 + 1, 500 + 65), 0x0101);
    EXPECT_EQ(ground.At(1000 + 5, 500 + 10), 0x0101);
    // Cut at x = 3200.
    EXPECT_EQ(obj.At(WORLD_W - 1, 150), 0x2222);
    EXPECT_EQ(obj.At(WORLD_W - 40, 150), 0x2222);
    // 5-5-5 layout clears with its own key.
    map.DrawObjects(&L.graph, SURF_OBJECT, SURF_OBJSHEET, SURF_GROUND, COLOR_MASK_555);
    EXPECT_EQ(obj.At(0, 0), 0x7C1F);
    EXPECT_EQ(obj.At(1000 + 5, 500 + 70), 0x7C1F);
}
