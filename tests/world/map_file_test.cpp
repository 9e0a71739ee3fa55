// Map files: loading, refusing damaged files, the cell questions and registries.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/gbk.h"
#include "base/message_box.h"
#include "world/map.h"

namespace {

struct SBuiltMap {
    SMapHeader header{};
    std::vector<SMapCell> cells;
    std::vector<SMapObject> objects;
    std::vector<SMapNpc> npcs;

    explicit SBuiltMap(int32_t n = 50) {
        std::memcpy(header.magic, "2pam", 4);
        std::strcpy(header.fileName, "test.map");
        std::strcpy(header.displayName, "Testvale");
        std::strcpy(header.music, "village.ogg");
        header.size = n;
        header.startX = 3;
        header.startY = 4;
        cells.resize(size_t(n) * size_t(n));
        for (int32_t i = 0; i < n; ++i)
            for (int32_t j = 0; j < n; ++j) {
                SMapCell& c = Cell(i, j);
                const SPoint p = CellBoxOrigin(i, j);
                c.x = p.x;
                c.y = p.y;
                c.cross = 1;
                c.tileType = 1;
            }
    }
    SMapCell& Cell(int32_t i, int32_t j) { return cells[size_t(i) * size_t(header.size) + size_t(j)]; }
    std::vector<uint8_t> Bytes() {
        header.objectCount = int32_t(objects.size());
        header.npcCount = int32_t(npcs.size());
        std::vector<uint8_t> out;
        auto put = [&out](const void* p, size_t n) {
            out.insert(out.end(), static_cast<const uint8_t*>(p), static_cast<const uint8_t*>(p) + n);
        };
        put(&header, sizeof header);
        put(cells.data(), cells.size() * sizeof(SMapCell));
        put(objects.data(), objects.size() * sizeof(SMapObject));
        put(npcs.data(), npcs.size() * sizeof(SMapNpc));
        return out;
    }
};

std::string TempPath(const char* name) {
    return (std::filesystem::current_path() / (std::string("ashen_world_") + name)).string();
}

std::string WriteBytes(const char* name, const std::vector<uint8_t>& bytes) {
    const std::string path = TempPath(name);
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    f.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    return path;
}

int g_boxes = 0;
std::string g_lastBoxText, g_lastBoxCaption;
void ObserveBox(const char* text, const char* caption, int) {
    ++g_boxes;
    g_lastBoxText = text;
    g_lastBoxCaption = caption;
}

// Centre of cell (i, j)'s diamond.
SPoint DiamondCentre(int32_t i, int32_t j) { return SPoint{1568 + (i - j) * 32, (i + j) * 16 + 16}; }

}  // namespace

TEST(MapFile, RecordLayoutsMatchTheFileFormat) {
    SBuiltMap m(2);
    m.Cell(1, 0).script = 7;
    m.Cell(1, 0).exit = 9;
    m.Cell(1, 0).tileType = 4;
    m.Cell(1, 0).cross = 0x01020304;
    SMapObject o{};
    o.pieceCount = 2;
    o.sheetX = 0x11;
    o.height = 0x22;
    m.objects.push_back(o);
    SMapNpc npc{};
    npc.record = 5;
    npc.cellX = 6;
    npc.cellY = 7;
    m.npcs.push_back(npc);
    const std::vector<uint8_t> b = m.Bytes();
    ASSERT_EQ(b.size(), 92u + 4 * 32 + 276 + 32);
    EXPECT_EQ(0, std::memcmp(b.data(), "\x32\x70\x61\x6D", 4));
    EXPECT_EQ(b[56], 2);                          // N
    EXPECT_EQ(b[60], 1);                          // objects
    EXPECT_EQ(b[64], 1);                          // NPCs
    EXPECT_EQ(b[68], 3);                          // start cell
    EXPECT_EQ(b[72], 4);
    EXPECT_EQ(0, std::memcmp(b.data() + 76, "village.ogg", 12));
    const uint8_t* cell = b.data() + 92 + 2 * 32;  // cell (1, 0) at index i * N + j
    EXPECT_EQ(cell[24], 0x04);
    EXPECT_EQ(cell[27], 0x01);
    EXPECT_EQ(cell[28], 7);
    EXPECT_EQ(cell[29], 9);
    EXPECT_EQ(cell[30], 4);
    const uint8_t* obj = b.data() + 92 + 4 * 32;
    EXPECT_EQ(obj[8], 2);
    EXPECT_EQ(obj[252], 0x11);
    EXPECT_EQ(obj[272], 0x22);
    const uint8_t* np = obj + 276;
    EXPECT_EQ(np[0], 5);
    EXPECT_EQ(np[24], 6);
    EXPECT_EQ(np[28], 7);

    CMap map;
    std::vector<SMapNpc> npcs(3);  // replaced, not appended to
    ASSERT_TRUE(map.Load(WriteBytes("layout.map", b).c_str(), &npcs));
    ASSERT_EQ(npcs.size(), 1u);
    EXPECT_EQ(npcs[0].record, 5u);
    EXPECT_EQ(npcs[0].cellY, 7);
    uint32_t words[23];
    map.GetHeader(words);
    EXPECT_EQ(words[14], 2u);
    EXPECT_EQ(words[17], 3u);
    EXPECT_STREQ(reinterpret_cast<const char*>(words) + 24, "Testvale");
}

TEST(MapFile, PointToCellFollowsTheDiamondGrid) {
    CMap map;
    EXPECT_EQ(map.PointToCell(1568, 5).x, 0);
    EXPECT_EQ(map.PointToCell(1568, 5).y, 0);
    // Points well inside each diamond (away from its edges) fall in that cell.
    const int offsets[][2] = {{0, 0}, {20, 0}, {-20, 0}, {0, 10}, {0, -10}, {12, 5}, {-12, -5}, {-9, 6}};
    int checked = 0;
    for (int32_t i = 0; i < 50; i += 3)
        for (int32_t j = 0; j < 50; j += 4) {
            const SPoint c = DiamondCentre(i, j);
            for (const auto& o : offsets) {
                const SPoint cell = map.PointToCell(c.x + o[0], c.y + o[1]);
                ASSERT_EQ(cell.x, i) << "point " << c.x + o[0] << "," << c.y + o[1];
                ASSERT_EQ(cell.y, j) << "point " << c.x + o[0] << "," << c.y + o[1];
                ++checked;
            }
        }
    EXPECT_GT(checked, 1000);
    // The box the compiler writes for a cell holds the cell's diamond: its centre
    // converts back to the cell.
    for (int32_t i : {0, 7, 49})
        for (int32_t j : {0, 23, 49}) {
            const SPoint box = CellBoxOrigin(i, j);
            const SPoint cell = map.PointToCell(box.x + 32, box.y + 16);
            EXPECT_EQ(cell.x, i);
            EXPECT_EQ(cell.y, j);
        }
    // Straight below the origin no corrections apply: the ray between the axes.
    EXPECT_EQ(map.PointToCell(1568, 40).x, 1);
    EXPECT_EQ(map.PointToCell(1568, 40).y, 1);
}

TEST(MapFile, PointsOutsideTheGridAreRefused) {
    SBuiltMap m(50);
    m.Cell(0, 0).exit = 1;
    m.Cell(0, 0).script = 1;
    CMap map;
    map.SetRegistries("[count]\r\ncount=1\r\n[comment]\r\n1=Out\r\n[name]\r\n1=x.map\r\n",
                      "[name]\r\n1=x.gsp\r\n");
    ASSERT_TRUE(map.Load(WriteBytes("outside.map", m.Bytes()).c_str(), nullptr));
    // Left of the origin and above the upper-left edge: negative first index.
    const SPoint above = map.PointToCell(1000, 10);
    EXPECT_LT(above.x, 0);
    EXPECT_GE(above.y, 0);
    std::string out;
    EXPECT_EQ(map.GetCross(1000, 10), 0);
    EXPECT_FALSE(map.GetCellExit(out, 1000, 10));
    EXPECT_FALSE(map.GetCellScript(out, 1000, 10));
    // Right of the origin above the upper-right edge: negative second index.
    EXPECT_LT(map.PointToCell(2200, 10).y, 0);
    EXPECT_EQ(map.GetCross(2200, 10), 0);
    // Below the grid's bottom corner: indices of N or more.
    const SPoint below = map.PointToCell(1568, 1599);
    EXPECT_GE(below.x + below.y, 98);
    EXPECT_EQ(map.GetCross(-1, 100), 0);
    EXPECT_FALSE(map.GetCellExit(out, -5, 5));
    EXPECT_EQ(map.GetCellPoint(50, 0).x, -1);
    EXPECT_EQ(map.GetCellPoint(0, 50).y, -1);
    EXPECT_EQ(map.GetCellPoint(-1, 0).x, -1);
    EXPECT_EQ(map.GetCellPoint(49, 49).x, CellBoxOrigin(49, 49).x);
    EXPECT_EQ(map.GetCellPoint(49, 49).y, CellBoxOrigin(49, 49).y);
    // Inside, cell (0, 0) answers.
    EXPECT_EQ(map.GetCross(1568, 5), 1);
    EXPECT_TRUE(map.GetCellExit(out, 1568, 5));
    EXPECT_EQ(out, "x.map");
}

TEST(MapFile, RegistriesAndLabels) {
    SBuiltMap m(10);
    m.Cell(1, 1).script = 0;
    m.Cell(2, 2).script = 2;
    m.Cell(3, 3).exit = 1;
    m.Cell(4, 4).exit = 3;
    m.Cell(5, 5).exit = 2;
    CMap map;
    map.SetRegistries("[count]\r\ncount=2\r\n[comment]\r\n1=To Greywood\r\n2=To Ashvale\r\n"
                      "[name]\r\n1=greywood.map\r\n2=main.map\r\n3=ford.map\r\n",
                      "[name]\r\n0=zero.gsp\r\n2=well.gsp\r\n");
    ASSERT_EQ(map.Labels().size(), 2u);
    ASSERT_TRUE(map.Load(WriteBytes("registries.map", m.Bytes()).c_str(), nullptr));
    auto centre = [](int i) { return DiamondCentre(i, i); };
    std::string out = "unchanged";
    // Script number 0 never reports a script, even with a key "0".
    EXPECT_FALSE(map.GetCellScript(out, centre(1).x, centre(1).y));
    EXPECT_EQ(out, "unchanged");
    EXPECT_TRUE(map.GetCellScript(out, centre(2).x, centre(2).y));
    EXPECT_EQ(out, "well.gsp");
    EXPECT_TRUE(map.GetCellExit(out, centre(3).x, centre(3).y));
    EXPECT_EQ(out, "greywood.map");
    EXPECT_TRUE(map.GetCellLabel(out, centre(3).x, centre(3).y));
    EXPECT_EQ(out, "To Greywood");
    EXPECT_TRUE(map.GetCellLabel(out, centre(5).x, centre(5).y));
    EXPECT_EQ(out, "To Ashvale");
    // Exit 3 has a destination but no label (count is 2).
    EXPECT_TRUE(map.GetCellExit(out, centre(4).x, centre(4).y));
    EXPECT_EQ(out, "ford.map");
    out = "kept";
    EXPECT_FALSE(map.GetCellLabel(out, centre(4).x, centre(4).y));
    EXPECT_EQ(out, "kept");
    // Without the registries every lookup refuses and there are no labels.
    map.SetRegistries("", "");
    EXPECT_TRUE(map.Labels().empty());
    EXPECT_FALSE(map.GetCellExit(out, centre(3).x, centre(3).y));
    EXPECT_FALSE(map.GetCellScript(out, centre(2).x, centre(2).y));
    EXPECT_FALSE(map.GetCellLabel(out, centre(3).x, centre(3).y));
}

TEST(MapFile, DamagedFilesFailCleanly) {
    SetMessageBoxObserver(ObserveBox);
    CMap map;
    SBuiltMap good(8);
    ASSERT_TRUE(map.Load(WriteBytes("good.map", good.Bytes()).c_str(), nullptr));
    ASSERT_STREQ(map.Header().displayName, "Testvale");

    // Missing file: false, nothing shown.
    g_boxes = 0;
    EXPECT_FALSE(map.Load(TempPath("no_such.map").c_str(), nullptr));
    EXPECT_EQ(g_boxes, 0);

    // Wrong magic: the message, the header kept.
    SBuiltMap bad(8);
    std::memcpy(bad.header.magic, "map2", 4);
    std::strcpy(bad.header.displayName, "Wrong");
    EXPECT_FALSE(map.Load(WriteBytes("magic.map", bad.Bytes()).c_str(), nullptr));
    EXPECT_EQ(g_boxes, 1);
    EXPECT_EQ(g_lastBoxText, GbkText("你所选择的.map文件不是本游戏支持的地图文件。"));
    EXPECT_EQ(g_lastBoxCaption, "ERROR");
    EXPECT_STREQ(map.Header().displayName, "Testvale");

    // Truncated inside the cells, and a file shorter than its header.
    std::vector<uint8_t> bytes = SBuiltMap(8).Bytes();
    std::vector<uint8_t> cut(bytes.begin(), bytes.begin() + 92 + 10 * 32 + 5);
    std::vector<SMapNpc> npcs;
    EXPECT_FALSE(map.Load(WriteBytes("cut.map", cut).c_str(), &npcs));
    std::vector<uint8_t> tiny(bytes.begin(), bytes.begin() + 40);
    EXPECT_FALSE(map.Load(WriteBytes("tiny.map", tiny).c_str(), &npcs));
    // Counts that lie: more objects or NPCs than the file holds, a huge or
    // negative N, trailing bytes after the last record.
    SBuiltMap lying(8);
    lying.objects.resize(2);
    std::vector<uint8_t> lb = lying.Bytes();
    lb.resize(lb.size() - 100);
    EXPECT_FALSE(map.Load(WriteBytes("lying.map", lb).c_str(), &npcs));
    for (int32_t n : {-8, 0, 100000, 0x7FFFFFFF}) {
        std::vector<uint8_t> b = SBuiltMap(8).Bytes();
        std::memcpy(b.data() + 56, &n, 4);
        EXPECT_FALSE(map.Load(WriteBytes("size.map", b).c_str(), &npcs)) << n;
    }
    std::vector<uint8_t> npcLie = SBuiltMap(8).Bytes();
    const int32_t manyNpcs = 1 << 30;
    std::memcpy(npcLie.data() + 64, &manyNpcs, 4);
    EXPECT_FALSE(map.Load(WriteBytes("npcs.map", npcLie).c_str(), &npcs));
    std::vector<uint8_t> longer = SBuiltMap(8).Bytes();
    longer.push_back(0);
    EXPECT_FALSE(map.Load(WriteBytes("longer.map", longer).c_str(), &npcs));
    // Every failure kept the good map's header.
    EXPECT_STREQ(map.Header().displayName, "Testvale");
    EXPECT_EQ(map.Header().size, 8);
    EXPECT_TRUE(npcs.empty());

    // A ground-piece count beyond the record is bounded on load.
    SBuiltMap pieces(8);
    SMapObject o{};
    o.pieceCount = 1000;
    pieces.objects.push_back(o);
    ASSERT_TRUE(map.Load(WriteBytes("pieces.map", pieces.Bytes()).c_str(), nullptr));
    EXPECT_EQ(map.Objects()[0].pieceCount, MAX_GROUND_PIECES);
    SetMessageBoxObserver(nullptr);
}
