// The map compiler: a small Tiled map through mapc into a map file the game loads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "base/gbk.h"
#include "world/map.h"

namespace fs = std::filesystem;

namespace {

void Write(const fs::path& p, const std::string& text) {
    fs::create_directories(p.parent_path());
    std::ofstream f(p, std::ios::binary | std::ios::trunc);
    f << text;
}

std::string Read(const fs::path& p) {
    std::ifstream f(p, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

struct SMapcRun {
    int status = 0;
    std::string errors;
};

SMapcRun RunMapc(const fs::path& dir, const std::string& inputs) {
    const fs::path err = dir / "mapc.err";
    const std::string cmd = std::string(ASHEN_BIN_DIR) + "/mapc --objects " + (dir / "objects.txt").string() +
                            " --out-maps " + (dir / "out/map").string() + " --out-ini " +
                            (dir / "out/ini").string() + " " + inputs + " 2> " + err.string();
    SMapcRun r;
    r.status = std::system(cmd.c_str());
    r.errors = Read(err);
    return r;
}

const char* kTiles1 =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<tileset version=\"1.10\" name=\"grass\" tilewidth=\"64\" tileheight=\"32\" tilecount=\"100\" columns=\"10\">\n"
    " <properties><property name=\"tiletype\" type=\"int\" value=\"1\"/></properties>\n"
    " <image source=\"sheet_1.png\" width=\"640\" height=\"640\"/>\n</tileset>\n";
const char* kTiles5 =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<tileset name=\"water\" tilewidth=\"64\" tileheight=\"32\" tilecount=\"100\" columns=\"10\">\n"
    " <image source=\"sheet_5.png\" width=\"640\" height=\"640\"/>\n</tileset>\n";
const char* kObjects =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<tileset name=\"objects\" tilewidth=\"128\" tileheight=\"96\" tilecount=\"2\" columns=\"0\">\n"
    " <tile id=\"0\"><image width=\"128\" height=\"96\" source=\"objects/house.png\"/></tile>\n"
    " <tile id=\"1\"><properties><property name=\"name\" value=\"bridge\"/></properties>"
    "<image width=\"128\" height=\"96\" source=\"objects/whatever.png\"/></tile>\n"
    "</tileset>\n";
const char* kManifest =
    "# test objects\n"
    "name=house rect=0,0,128,96 anchor=32,64 block=0,0;1,0 ground=32,64\n"
    "name=bridge rect=128,0,128,96 anchor=32,64 block= walk=0,0\n";

std::string Tmx(const std::string& ground, const std::string& extraObjects, const std::string& props = "") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<map version=\"1.10\" orientation=\"isometric\" renderorder=\"right-down\" width=\"4\" height=\"4\" "
           "tilewidth=\"64\" tileheight=\"32\" infinite=\"0\">\n"
           " <properties>\n"
           "  <property name=\"name\" value=\"Testvale &amp; Co\"/>\n"
           "  <property name=\"music\" value=\"village.ogg\"/>\n"
           "  <property name=\"start_x\" type=\"int\" value=\"0\"/>\n"
           "  <property name=\"start_y\" type=\"int\" value=\"2\"/>\n"
           "  <property name=\"blocking_types\" value=\"5\"/>\n" +
           props +
           " </properties>\n"
           " <tileset firstgid=\"1\" source=\"tilesets/tiles_1.tsx\"/>\n"
           " <tileset firstgid=\"101\" source=\"tilesets/tiles_5.tsx\"/>\n"
           " <tileset firstgid=\"201\" source=\"tilesets/objects.tsx\"/>\n"
           " <layer id=\"1\" name=\"ground\" width=\"4\" height=\"4\"><data encoding=\"csv\">\n" +
           ground +
           "</data></layer>\n"
           " <layer id=\"2\" name=\"block\" width=\"4\" height=\"4\"><data encoding=\"csv\">\n"
           "0,0,0,0,\n0,0,0,0,\n0,0,0,0,\n0,0,0,1\n</data></layer>\n"
           " <objectgroup id=\"3\" name=\"objects\">\n"
           "  <object id=\"1\" gid=\"201\" x=\"64\" y=\"96\" width=\"128\" height=\"96\"/>\n"
           "  <object id=\"2\" name=\"gate\" x=\"0\" y=\"0\" width=\"32\" height=\"64\"><properties>"
           "<property name=\"exit\" type=\"int\" value=\"1\"/><property name=\"target\" value=\"other.map\"/>"
           "<property name=\"label\" value=\"To Other\"/></properties></object>\n"
           "  <object id=\"3\" x=\"96\" y=\"96\" width=\"32\" height=\"32\"><properties>"
           "<property name=\"script\" type=\"int\" value=\"2\"/><property name=\"name\" value=\"well.gsp\"/>"
           "</properties></object>\n"
           "  <object id=\"4\" x=\"80\" y=\"16\"><point/><properties>"
           "<property name=\"npc\" type=\"int\" value=\"4\"/></properties></object>\n" +
           extraObjects +
           " </objectgroup>\n"
           "</map>\n";
}

fs::path Fixture(const char* name) {
    const fs::path dir = fs::current_path() / (std::string("ashen_mapc_") + name);
    fs::remove_all(dir);
    Write(dir / "tilesets/tiles_1.tsx", kTiles1);
    Write(dir / "tilesets/tiles_5.tsx", kTiles5);
    Write(dir / "tilesets/objects.tsx", kObjects);
    Write(dir / "objects.txt", kManifest);
    return dir;
}

const char* kGround = "1,1,1,1,\n1,1,104,1,\n1,1,1,1,\n1,1,1,12\n";

}  // namespace

TEST(Mapc, CompilesATiledMapIntoTheGameFormat) {
    const fs::path dir = Fixture("good");
    Write(dir / "test.tmx", Tmx(kGround, ""));
    const SMapcRun r = RunMapc(dir, (dir / "test.tmx").string());
    ASSERT_EQ(r.status, 0) << r.errors;

    CMap map;
    map.SetRegistries(Read(dir / "out/ini/maps.ini"), Read(dir / "out/ini/scripts.ini"));
    std::vector<SMapNpc> npcs;
    ASSERT_TRUE(map.Load((dir / "out/map/test.map").string().c_str(), &npcs));
    const SMapHeader& h = map.Header();
    EXPECT_STREQ(h.fileName, "test.map");
    EXPECT_STREQ(h.displayName, "Testvale & Co");
    EXPECT_STREQ(h.music, "village.ogg");
    EXPECT_EQ(h.size, 4);
    EXPECT_EQ(h.startX, 0);
    EXPECT_EQ(h.startY, 2);
    auto cell = [&](int i, int j) { return map.Cells()[size_t(i) * 4 + size_t(j)]; };
    // Layer data runs row by row; the column is the first index.
    EXPECT_EQ(cell(2, 1).tileType, 5);
    EXPECT_EQ(cell(2, 1).picX, 192);
    EXPECT_EQ(cell(2, 1).cross, 0);  // water blocks
    EXPECT_EQ(cell(1, 2).tileType, 1);
    EXPECT_EQ(cell(3, 3).picX, 64);  // gid 12: picture 11
    EXPECT_EQ(cell(3, 3).picY, 32);
    EXPECT_EQ(cell(3, 3).cross, 0);  // block layer
    EXPECT_EQ(cell(0, 3).cross, 1);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            EXPECT_EQ(cell(i, j).x, CellBoxOrigin(i, j).x);
            EXPECT_EQ(cell(i, j).y, CellBoxOrigin(i, j).y);
        }
    // The house stands on base cell (1, 2) and blocks it and (2, 2).
    ASSERT_EQ(map.Objects().size(), 1u);
    const SMapObject& o = map.Objects()[0];
    EXPECT_EQ(o.worldX, CellBoxOrigin(1, 2).x - 32);
    EXPECT_EQ(o.worldY, CellBoxOrigin(1, 2).y - 64);
    EXPECT_EQ(o.width, 128);
    EXPECT_EQ(o.pieceCount, 1);
    EXPECT_EQ(o.pieces[0][0], 32);
    EXPECT_EQ(o.pieces[0][1], 64);
    EXPECT_EQ(cell(1, 2).cross, 0);
    EXPECT_EQ(cell(2, 2).cross, 0);
    // Exit rectangle over cells (0, 0) and (0, 1); script on (3, 3); NPC at (2, 0).
    EXPECT_EQ(cell(0, 0).exit, 1);
    EXPECT_EQ(cell(0, 1).exit, 1);
    EXPECT_EQ(cell(1, 0).exit, 0);
    EXPECT_EQ(cell(3, 3).script, 2);
    ASSERT_EQ(npcs.size(), 1u);
    EXPECT_EQ(npcs[0].record, 4u);
    EXPECT_EQ(npcs[0].cellX, 2);
    EXPECT_EQ(npcs[0].cellY, 0);
    std::string out;
    const SPoint c0 = CellBoxOrigin(0, 1);
    ASSERT_TRUE(map.GetCellLabel(out, c0.x + 32, c0.y + 16));
    EXPECT_EQ(out, "To Other");
    ASSERT_TRUE(map.GetCellExit(out, c0.x + 32, c0.y + 16));
    EXPECT_EQ(out, "other.map");
    const SPoint c3 = CellBoxOrigin(3, 3);
    ASSERT_TRUE(map.GetCellScript(out, c3.x + 32, c3.y + 16));
    EXPECT_EQ(out, "well.gsp");
    // The registries are CR LF text.
    const std::string ini = Read(dir / "out/ini/maps.ini");
    EXPECT_NE(ini.find("[count]\r\ncount=1\r\n"), std::string::npos);
    EXPECT_EQ(ini.find("\n\n"), std::string::npos);
}

TEST(Mapc, ErrorsNameTheMapAndThePlaceAtFault) {
    const fs::path dir = Fixture("bad");
    // Unknown tile in cell (1, 3); an object missing from the manifest.
    Write(dir / "bad.tmx", Tmx("1,1,1,1,\n1,1,1,1,\n1,1,1,1,\n1,999,1,1\n",
                               "  <object id=\"9\" name=\"ghost\" gid=\"202\" x=\"300\" y=\"300\"/>\n"));
    // Wrong number of cells.
    Write(dir / "short.tmx", Tmx("1,1,1,1,\n1,1,1\n", ""));
    SMapcRun r = RunMapc(dir, (dir / "bad.tmx").string() + " " + (dir / "short.tmx").string());
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.errors.find("bad.tmx: cell (1,3): tile 999"), std::string::npos) << r.errors;
    EXPECT_NE(r.errors.find("bad.tmx: object 9 'ghost'"), std::string::npos) << r.errors;
    EXPECT_NE(r.errors.find("short.tmx: layer ground holds 7 cells"), std::string::npos) << r.errors;
    EXPECT_FALSE(fs::exists(dir / "out/map/bad.map"));

    // One exit number meaning two places across maps; a blocked start; a missing
    // display name.
    const fs::path dir2 = Fixture("conflict");
    Write(dir2 / "a.tmx", Tmx(kGround, ""));
    std::string other = Tmx(kGround, "");
    const std::string from = "value=\"other.map\"", to = "value=\"elsewhere.map\"";
    other.replace(other.find(from), from.size(), to);
    auto swap = [&other](const std::string& a, const std::string& b) { other.replace(other.find(a), a.size(), b); };
    swap("name=\"start_y\" type=\"int\" value=\"2\"", "name=\"start_y\" type=\"int\" value=\"3\"");
    swap("name=\"start_x\" type=\"int\" value=\"0\"", "name=\"start_x\" type=\"int\" value=\"3\"");
    Write(dir2 / "b.tmx", other);
    r = RunMapc(dir2, (dir2 / "a.tmx").string() + " " + (dir2 / "b.tmx").string());
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.errors.find("b.tmx: object 2 'gate': exit 1 already means other.map"), std::string::npos) << r.errors;
    EXPECT_NE(r.errors.find("b.tmx: the start cell (3,3) is blocked"), std::string::npos) << r.errors;

    // Broken XML is reported with its line.
    const fs::path dir3 = Fixture("xml");
    Write(dir3 / "broken.tmx", "<?xml version=\"1.0\"?>\n<map orientation=\"isometric\">\n<layer>\n</map>\n");
    r = RunMapc(dir3, (dir3 / "broken.tmx").string());
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.errors.find("broken.tmx: line 4: </map> closes <layer>"), std::string::npos) << r.errors;
}
