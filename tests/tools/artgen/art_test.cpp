// The art generator's output checked against the formats the engine and the map
// compiler read: BMP layout, key colour use, tile diamonds, the asset name table,
// tiles.ini (GBK keys, CR LF), the manifests, the animated cursor, and determinism.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "media/cursor_file.h"
#include "resources/bmp.h"
#include "resources/ini.h"
#include "base/gbk.h"

namespace fs = std::filesystem;

namespace {

std::vector<uint8_t> ReadAll(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

uint32_t U32(const uint8_t* p) { return p[0] | p[1] << 8 | p[2] << 16 | uint32_t(p[3]) << 24; }
uint16_t U16(const uint8_t* p) { return uint16_t(p[0] | p[1] << 8); }

struct Bmp {
    int w = 0, h = 0;
    std::vector<uint8_t> rgb;  // top row first
    bool Key(int x, int y) const {
        const uint8_t* p = &rgb[(size_t(y) * w + x) * 3];
        return p[0] == 255 && p[1] == 0 && p[2] == 255;
    }
    bool NearKey(int x, int y) const {
        const uint8_t* p = &rgb[(size_t(y) * w + x) * 3];
        return !Key(x, y) && p[0] >= 200 && p[2] >= 200 && p[1] <= 60;
    }
};

// Strict reader of the layout the engine relies on: 'BM', sizes consistent with the
// file, 40-byte info header, 24 bits, no compression, positive height (bottom-up).
bool ReadBmp(const fs::path& p, Bmp& out, std::string& why) {
    std::vector<uint8_t> b = ReadAll(p);
    if (b.size() < 54) return why = "short file", false;
    if (b[0] != 'B' || b[1] != 'M') return why = "no BM", false;
    if (U32(&b[2]) != b.size()) return why = "file size field", false;
    uint32_t off = U32(&b[10]);
    if (off != 54 || U32(&b[14]) != 40) return why = "header sizes", false;
    int32_t w = int32_t(U32(&b[18])), h = int32_t(U32(&b[22]));
    if (w <= 0 || h <= 0) return why = "dimensions", false;
    if (U16(&b[26]) != 1 || U16(&b[28]) != 24 || U32(&b[30]) != 0) return why = "format", false;
    size_t stride = (size_t(w) * 3 + 3) & ~size_t(3);
    if (b.size() != off + stride * h) return why = "pixel data size", false;
    out.w = w; out.h = h;
    out.rgb.resize(size_t(w) * h * 3);
    for (int y = 0; y < h; ++y) {
        const uint8_t* row = &b[off + stride * (h - 1 - y)];
        for (int x = 0; x < w; ++x) {
            out.rgb[(size_t(y) * w + x) * 3 + 0] = row[x * 3 + 2];
            out.rgb[(size_t(y) * w + x) * 3 + 1] = row[x * 3 + 1];
            out.rgb[(size_t(y) * w + x) * 3 + 2] = row[x * 3 + 0];
        }
    }
    return true;
}

bool InDiamond(int x, int y) { return std::abs(2 * x + 1 - 64) + 2 * std::abs(2 * y + 1 - 32) <= 64; }

std::string Artgen() { return std::string(ASHEN_BIN_DIR) + "/artgen"; }

std::string Recipes() { return std::string(ASHEN_SOURCE_DIR) + "/content/art"; }

// Runs the generator with the project's recipes unless the arguments name others.
int RunArtgen(const std::string& args) {
    std::string rec = args.find("--recipes") == std::string::npos && !args.empty() && args.find("--bogus") == std::string::npos
                          ? " --recipes " + Recipes() : "";
    std::string cmd = Artgen() + rec + " " + args + " > /dev/null 2>&1";
    int rc = std::system(cmd.c_str());
    return WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
}

// The tile types of the recipes: type -> name ("grass", or "grass-dirt" for the
// corner pieces between two full grounds).
std::map<int, std::string> TileTypes() {
    std::ifstream in(Recipes() + "/tiles.txt");
    std::map<int, std::string> types;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream ls(line);
        int type = 0, count = 0;
        std::string prefix, name;
        if (ls >> type >> prefix >> name >> count) types[type] = name;
    }
    return types;
}

std::set<int> PieceTypes() {
    std::set<int> pieces;
    for (const auto& [type, name] : TileTypes())
        if (name.find('-') != std::string::npos) pieces.insert(type);
    return pieces;
}

class ArtOutput : public ::testing::Test {
protected:
    static fs::path stage;
    static void SetUpTestSuite() {
        stage = fs::current_path() / ("artgen_test_" + std::to_string(::getpid()));
        fs::remove_all(stage);
        if (fs::exists(Artgen())) RunArtgen("--stage " + stage.string());
    }
    static void TearDownTestSuite() { fs::remove_all(stage); }
    void SetUp() override {
        if (!fs::exists(Artgen())) GTEST_SKIP() << "artgen not built";
        ASSERT_TRUE(fs::exists(stage / "tiles/obj.bmp")) << "the generator did not run";
    }
};
fs::path ArtOutput::stage;

// Names and sizes from the asset table: pack -> (name -> "WxH").
std::map<std::string, std::map<std::string, std::string>> AssetTable() {
    std::ifstream in(std::string(ASHEN_SOURCE_DIR) + "/content/ASSETS.md");
    std::map<std::string, std::map<std::string, std::string>> t;
    std::string line, pack;
    std::regex name(R"(([a-z0-9_]+?)(\d*)\.bmp)"), size(R"((\d+)x(\d+))");
    while (std::getline(in, line)) {
        if (line.rfind("## ", 0) == 0) {
            pack = line.find("ui pack") != std::string::npos ? "ui"
                 : line.find("items pack") != std::string::npos ? "items"
                 : line.find("skill pack") != std::string::npos ? "skill" : "";
            continue;
        }
        if (pack.empty() || line.empty() || line[0] != '|' || line.find(".bmp") == std::string::npos) continue;
        std::vector<std::string> cells;
        std::stringstream ss(line.substr(1));
        std::string cell;
        while (std::getline(ss, cell, '|')) cells.push_back(cell);
        for (size_t c = 0; c < cells.size(); ++c) {
            if (cells[c].find(".bmp") == std::string::npos) continue;
            std::vector<std::string> names;
            std::string text = cells[c];
            bool range = text.find("..") != std::string::npos;
            std::vector<std::pair<std::string, std::string>> found;
            for (std::sregex_iterator it(text.begin(), text.end(), name), end; it != end; ++it)
                found.push_back({(*it)[1], (*it)[2]});
            if (range && found.size() == 2 && found[0].first == found[1].first) {
                for (int k = std::stoi(found[0].second); k <= std::stoi(found[1].second); ++k)
                    names.push_back(found[0].first + std::to_string(k) + ".bmp");
            } else if (range && found.size() == 1) {  // "lunge_0.bmp .." : eight frames
                for (int k = 0; k < 8; ++k) names.push_back(found[0].first + std::to_string(k) + ".bmp");
            } else {
                for (auto& f : found) names.push_back(f.first + f.second + ".bmp");
            }
            std::vector<std::string> sizes;
            std::string sizeText = pack == "ui" && c + 1 < cells.size() ? cells[c + 1] : "";
            for (std::sregex_iterator it(sizeText.begin(), sizeText.end(), size), end; it != end; ++it)
                sizes.push_back(it->str());
            for (size_t i = 0; i < names.size(); ++i) {
                std::string s = pack == "items" ? "32x32"
                              : pack == "skill" ? (names[i].rfind("ic_", 0) == 0 ? "32x32" : "64x64")
                              : sizes.size() == names.size() ? sizes[i] : (sizes.empty() ? "" : sizes[0]);
                t[pack][names[i]] = s;
            }
        }
    }
    return t;
}

TEST_F(ArtOutput, EveryPictureOfTheAssetTableExistsWithItsSizeAndKeyRules) {
    auto table = AssetTable();
    ASSERT_GE(table["ui"].size(), 40u);
    ASSERT_EQ(table["items"].size(), 26u);
    ASSERT_EQ(table["skill"].size(), 9u * 9u);
    for (auto& [pack, names] : table)
        for (auto& [n, size] : names) {
            Bmp b;
            std::string why;
            fs::path p = stage / pack / n;
            ASSERT_TRUE(ReadBmp(p, b, why)) << p << ": " << why;
            EXPECT_EQ(std::to_string(b.w) + "x" + std::to_string(b.h), size) << p;
            size_t keyed = 0, near = 0;
            for (int y = 0; y < b.h; ++y)
                for (int x = 0; x < b.w; ++x) {
                    keyed += b.Key(x, y);
                    near += b.NearKey(x, y);
                }
            EXPECT_EQ(near, 0u) << p << " has colours next to the key";
            size_t all = size_t(b.w) * b.h;
            bool fullScreen = b.w == 640 && b.h == 480;
            if (fullScreen || n.rfind("ic_", 0) == 0 || (n.find("_bg") != std::string::npos && n != "hud_bg.bmp")) {
                EXPECT_EQ(keyed, 0u) << p << " must be opaque";
            }
            if (pack == "items" || (pack == "skill" && n.rfind("ic_", 0) != 0)) {
                EXPECT_TRUE(b.Key(0, 0) && b.Key(b.w - 1, b.h - 1)) << p << " corners must be transparent";
                if (pack == "items") {
                    EXPECT_GT(all - keyed, all / 16) << p << " is nearly empty";
                }
            }
        }
    // The HUD is keyed above its frame and solid along the bottom.
    Bmp hud;
    std::string why;
    ASSERT_TRUE(ReadBmp(stage / "ui/hud_bg.bmp", hud, why)) << why;
    EXPECT_TRUE(hud.Key(320, 2));
    for (int x = 0; x < 640; x += 7) EXPECT_FALSE(hud.Key(x, 98)) << x;
}

TEST_F(ArtOutput, TilesIniIsGbkCrLfAndNamesEveryDiamond) {
    std::vector<uint8_t> raw = ReadAll(stage / "ini/tiles.ini");
    std::string text(raw.begin(), raw.end());
    ASSERT_FALSE(text.empty());
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] == '\n') {
            ASSERT_TRUE(i > 0 && text[i - 1] == '\r') << "bare LF at " << i;
        }
    EXPECT_NE(text.find(Utf8ToGbk("前缀") + "="), std::string::npos);
    EXPECT_EQ(text.find("前缀"), std::string::npos) << "keys must be GBK, not UTF-8";
    CIni ini;
    ASSERT_TRUE(ini.OpenText(text));
    const std::set<int> pieceTypes = PieceTypes();
    int types = ini.GetInt("typecount", "count");
    ASSERT_GE(types, 6);
    int pictures = 0;
    for (int t = 1; t <= types; ++t) {
        std::string sec = std::to_string(t);
        int count = ini.GetInt(sec.c_str(), "piccount");
        std::string prefix = ini.GetString(sec.c_str(), Utf8ToGbk("前缀").c_str());
        int first = ini.GetInt(sec.c_str(), Utf8ToGbk("起始数").c_str());
        int last = ini.GetInt(sec.c_str(), Utf8ToGbk("末尾数").c_str());
        std::string pad = ini.GetString(sec.c_str(), Utf8ToGbk("补位").c_str());
        ASSERT_FALSE(prefix.empty()) << t;
        ASSERT_GE(count, pieceTypes.count(t) ? 14 : 8) << "type " << t;
        if (pieceTypes.count(t)) {
            ASSERT_EQ(count % 14, 0) << "type " << t << ": corner pieces come in sets of 14";
        }
        ASSERT_LT(count, 100) << "sheet places would repeat";
        // The engine's naming: zero padding to the digit count of the last number.
        int digits = last / 100 >= 1 ? 3 : (last / 10 >= 1 ? 2 : 1);
        for (int k = 0; k < count; ++k) {
            std::string num = std::to_string(first + k);
            if (pad == "true")
                while (int(num.size()) < digits) num = "0" + num;
            fs::path p = stage / "tiles" / sec / (prefix + num + ".bmp");
            Bmp b;
            std::string why;
            ASSERT_TRUE(ReadBmp(p, b, why)) << p << ": " << why;
            ASSERT_EQ(b.w, 64);
            ASSERT_EQ(b.h, 32);
            for (int y = 0; y < 32; ++y)
                for (int x = 0; x < 64; ++x) {
                    ASSERT_EQ(b.Key(x, y), !InDiamond(x, y)) << p << " at " << x << "," << y;
                    ASSERT_FALSE(b.NearKey(x, y)) << p;
                }
            ++pictures;
        }
        // Nothing beyond the catalogued count lies in the folder.
        size_t files = 0;
        for (auto& e : fs::directory_iterator(stage / "tiles" / sec)) files += e.is_regular_file();
        EXPECT_EQ(files, size_t(count)) << "type " << t;
    }
    EXPECT_GE(pictures, 6 * 8);
}

// Mean colour difference across the joint where picture b sits at (+32, +16) from a:
// a's pixels along its lower-right edge against b's pixels just across it.
double EdgeDifference(const Bmp& a, const Bmp& b) {
    double sum = 0;
    int n = 0;
    for (int y = 16; y < 32; ++y)
        for (int x = 32; x < 64; ++x) {
            if (!InDiamond(x, y) || InDiamond(x + 1, y + 1)) continue;
            int bx = x + 1 - 32, by = y + 1 - 16;
            if (bx < 0 || by < 0 || bx >= 64 || by >= 32 || !InDiamond(bx, by)) continue;
            const uint8_t* pa = &a.rgb[(size_t(y) * 64 + x) * 3];
            const uint8_t* pb = &b.rgb[(size_t(by) * 64 + bx) * 3];
            sum += std::abs(pa[0] - pb[0]) + std::abs(pa[1] - pb[1]) + std::abs(pa[2] - pb[2]);
            ++n;
        }
    return n ? sum / n : 1e9;
}

TEST_F(ArtOutput, DiamondsOfAGroundTypeJoinWithoutSeams) {
    // The ground texture repeats with the cell, so a picture joins its own copy
    // seamlessly; any other variant must join it just as well, or the map shows
    // a line wherever two different variants meet.
    const auto types = TileTypes();
    const std::set<int> pieceTypes = PieceTypes();
    std::map<std::string, int> fullType;  // ground name -> its full type
    for (const auto& [type, name] : types)
        if (!pieceTypes.count(type)) fullType[name] = type;
    ASSERT_GE(fullType.size(), 6u);
    for (const auto& [ground, type] : fullType) {
        const std::string dir = std::to_string(type);
        std::vector<Bmp> tiles;
        for (auto& e : fs::directory_iterator(stage / "tiles" / dir)) {
            Bmp b;
            std::string why;
            ASSERT_TRUE(ReadBmp(e.path(), b, why));
            tiles.push_back(b);
        }
        ASSERT_GE(tiles.size(), 8u);
        double worst = 0;
        for (const Bmp& a : tiles)
            for (const Bmp& b : tiles) {
                double self = std::max(EdgeDifference(a, a), EdgeDifference(b, b));
                worst = std::max(worst, EdgeDifference(a, b) - self);
            }
        EXPECT_LT(worst, 12.0) << "type " << dir << " shows a seam between variants";
    }
    // Corner pieces against full tiles: a piece whose lower-right edge corners (E and
    // S) are its base ground must join a full tile of that ground placed there.
    for (int type : pieceTypes) {
        const std::string name = types.at(type);
        const std::string base = name.substr(0, name.find('-'));
        ASSERT_TRUE(fullType.count(base)) << name;
        std::vector<fs::path> files;
        for (auto& e : fs::directory_iterator(stage / "tiles" / std::to_string(fullType[base]))) files.push_back(e.path());
        ASSERT_FALSE(files.empty()) << base;
        std::sort(files.begin(), files.end());
        std::vector<Bmp> full(1);
        std::string readWhy;
        ASSERT_TRUE(ReadBmp(files[0], full[0], readWhy)) << readWhy;
        std::ifstream in(stage / "manifest/tiles.txt");
        std::string line;
        while (std::getline(in, line)) {
            std::istringstream ls(line);
            int t, k, sx, sy;
            std::string file, role;
            if (!(ls >> t >> k >> sx >> sy >> file) || t != type) continue;
            std::getline(ls, role);
            size_t m = role.find("NESW=");
            ASSERT_NE(m, std::string::npos) << line;
            if (role[m + 5 + 1] != '0' || role[m + 5 + 2] != '0') continue;  // E and S must be the base
            Bmp piece;
            std::string why;
            ASSERT_TRUE(ReadBmp(stage / "tiles" / std::to_string(type) / file, piece, why));
            double self = EdgeDifference(full[0], full[0]);
            EXPECT_LT(EdgeDifference(piece, full[0]) - self, 12.0) << line;
        }
    }
}

TEST_F(ArtOutput, TileManifestMatchesTheSheetPlacementAndCoversEveryCornerMask) {
    std::ifstream in(stage / "manifest/tiles.txt");
    std::string line;
    std::map<int, std::set<std::string>> masks;
    int lines = 0;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream ls(line);
        int type, k, sx, sy;
        std::string file, role;
        ASSERT_TRUE(ls >> type >> k >> sx >> sy >> file) << line;
        std::getline(ls, role);
        EXPECT_EQ(sx, k % 10 * 64) << line;
        EXPECT_EQ(sy, (k % 100) / 10 * 32) << line;
        EXPECT_TRUE(fs::exists(stage / "tiles" / std::to_string(type) / file)) << line;
        size_t m = role.find("NESW=");
        if (m != std::string::npos) masks[type].insert(role.substr(m + 5, 4));
        ++lines;
    }
    EXPECT_GT(lines, 100);
    ASSERT_EQ(masks.size(), PieceTypes().size()) << "one corner-piece type per pair of grounds of the recipes";
    for (auto& [type, set] : masks) {
        EXPECT_EQ(set.size(), 14u) << "type " << type;
        EXPECT_FALSE(set.count("0000") || set.count("1111")) << "type " << type;
    }
}

TEST_F(ArtOutput, ObjectSheetAndManifestAgree) {
    Bmp sheet;
    std::string why;
    ASSERT_TRUE(ReadBmp(stage / "tiles/obj.bmp", sheet, why)) << why;
    ASSERT_EQ(sheet.w, 2048);
    ASSERT_EQ(sheet.h, 1600);
    std::ifstream in(stage / "manifest/objects.txt");
    std::string line;
    std::set<std::string> names;
    struct R { int x, y, w, h; };
    std::vector<R> rects;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::map<std::string, std::string> f;
        std::istringstream ls(line);
        std::string tok;
        while (ls >> tok) {
            size_t eq = tok.find('=');
            ASSERT_NE(eq, std::string::npos) << line;
            f[tok.substr(0, eq)] = tok.substr(eq + 1);
        }
        for (const char* key : {"name", "rect", "anchor", "block", "ground", "walk"})
            ASSERT_TRUE(f.count(key)) << key << " missing: " << line;
        names.insert(f["name"]);
        R r{};
        ASSERT_EQ(std::sscanf(f["rect"].c_str(), "%d,%d,%d,%d", &r.x, &r.y, &r.w, &r.h), 4);
        int ax, ay;
        ASSERT_EQ(std::sscanf(f["anchor"].c_str(), "%d,%d", &ax, &ay), 2);
        EXPECT_TRUE(r.x >= 0 && r.y >= 0 && r.x + r.w <= 2048 && r.y + r.h <= 1600) << line;
        for (const R& o : rects)
            EXPECT_FALSE(r.x < o.x + o.w && o.x < r.x + r.w && r.y < o.y + o.h && o.y < r.y + r.h) << "overlap: " << line;
        rects.push_back(r);
        size_t solid = 0;
        for (int y = r.y; y < r.y + r.h; ++y)
            for (int x = r.x; x < r.x + r.w; ++x) {
                solid += !sheet.Key(x, y);
                ASSERT_FALSE(sheet.NearKey(x, y));
            }
        EXPECT_GT(solid, size_t(r.w * r.h / 20)) << f["name"] << " is empty";
        // Ground pieces: inside the rectangle and on the cell lattice of the anchor.
        std::stringstream gs(f["ground"]);
        std::string g;
        int pieces = 0;
        while (std::getline(gs, g, ';')) {
            int px, py;
            ASSERT_EQ(std::sscanf(g.c_str(), "%d,%d", &px, &py), 2) << line;
            EXPECT_TRUE(px >= r.x && py >= r.y && px + 64 <= r.x + r.w && py + 32 <= r.y + r.h) << line;
            int a = px - r.x - ax, b = py - r.y - ay;
            EXPECT_TRUE(a % 32 == 0 && b % 16 == 0 && ((a / 32 + b / 16) % 2 == 0)) << "off the lattice: " << line;
            ++pieces;
        }
        EXPECT_LE(pieces, 30);
    }
    for (const char* need : {"oak", "pine", "deadtree", "bush", "rocks", "cottage", "stonehouse", "fence_u",
                             "wall_u", "well", "barrels", "crates", "signpost", "cave", "bridge_u", "stall"})
        EXPECT_TRUE(names.count(need)) << need;
    // Nothing painted outside the listed rectangles.
    for (int y = 0; y < 1600; y += 3)
        for (int x = 0; x < 2048; x += 3) {
            bool inside = false;
            for (const R& r : rects) inside |= x >= r.x && y >= r.y && x < r.x + r.w && y < r.y + r.h;
            if (!inside) {
                ASSERT_TRUE(sheet.Key(x, y)) << x << "," << y;
            }
        }
}

TEST_F(ArtOutput, CursorIsAValidAnimatedCursor) {
    std::vector<uint8_t> b = ReadAll(stage / "loose/data/cursor.ani");
    ASSERT_GT(b.size(), 12u);
    EXPECT_EQ(std::string(b.begin(), b.begin() + 4), "RIFF");
    EXPECT_EQ(U32(&b[4]), b.size() - 8);
    EXPECT_EQ(std::string(b.begin() + 8, b.begin() + 12), "ACON");
    SAniCursor ani;
    std::string err;
    ASSERT_TRUE(ParseAniCursor(b.data(), b.size(), ani, err)) << err;
    ASSERT_GE(ani.images.size(), 4u);
    for (const SCursorImage& im : ani.images) {
        EXPECT_EQ(im.width, 32);
        EXPECT_EQ(im.height, 32);
        EXPECT_EQ(im.hotX, 1);
        EXPECT_EQ(im.hotY, 1);
        EXPECT_NE(im.argb[1 * 32 + 1] >> 24, 0u) << "the hot spot lies on the arrow";
        EXPECT_EQ(im.argb[31 * 32 + 31] >> 24, 0u) << "the far corner is clear";
    }
    EXPECT_GT(ani.TotalJiffies(), 0u);
    // The ember flickers: not every frame is the same picture.
    EXPECT_NE(ani.images.front().argb, ani.images[ani.images.size() / 2].argb);
    // A truncated copy must be refused by the same reader.
    SAniCursor cut;
    EXPECT_FALSE(ParseAniCursor(b.data(), b.size() - 100, cut, err));
}

TEST_F(ArtOutput, HudAndPackManifestsPointAtPaintedSlots) {
    Bmp hud, pack;
    std::string why;
    ASSERT_TRUE(ReadBmp(stage / "ui/hud_bg.bmp", hud, why));
    std::ifstream in(stage / "manifest/hud.txt");
    std::string all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    int x, y;
    size_t p = all.find("itemButtons");
    ASSERT_NE(p, std::string::npos);
    ASSERT_EQ(std::sscanf(all.c_str() + p, "itemButtons lines=1 firstBtnX=%d firstBtnY=%d", &x, &y), 2);
    // Nine 32 x 32 slots, one pixel apart, all inside the picture on solid pixels.
    for (int k = 0; k < 9; ++k) {
        int sx = x + k * 33;
        ASSERT_LE(sx + 32, 640);
        for (int yy = y; yy < y + 32; ++yy)
            for (int xx = sx; xx < sx + 32; ++xx) ASSERT_FALSE(hud.Key(xx, yy));
    }
    std::ifstream pin(stage / "manifest/packs.txt");
    std::string line;
    int seen = 0;
    while (std::getline(pin, line)) {
        int n, n2, w, h, fx, fy, dx, dy;
        char name[64];
        if (std::sscanf(line.c_str(), "%63s %dx%d picWidth=%d picHeight=%d firstBtnX=%d firstBtnY=%d xDis=%d yDis=%d",
                        name, &n, &n2, &w, &h, &fx, &fy, &dx, &dy) != 9)
            continue;
        ASSERT_TRUE(ReadBmp(stage / "ui" / name, pack, why)) << name;
        EXPECT_EQ(pack.w, w);
        EXPECT_EQ(pack.h, h);
        int right = fx + n * 32 + (n - 1) * dx, bottom = fy + n * 32 + (n - 1) * dy;
        EXPECT_LE(right, w - 8) << name;
        EXPECT_LE(bottom, h - 8) << name;
        ++seen;
    }
    EXPECT_EQ(seen, 3);
}

TEST_F(ArtOutput, KeyPixelsAndOnlyKeyPixelsBecomeTransparentInTheEngine) {
    // Every picture goes through the engine's decoder into 5-6-5 pixels, where the
    // surfaces' colour key is 0xF81F: exactly the magenta pixels may land on it.
    size_t checked = 0;
    for (auto& e : fs::recursive_directory_iterator(stage)) {
        if (!e.is_regular_file() || e.path().extension() != ".bmp") continue;
        std::vector<uint8_t> raw = ReadAll(e.path());
        Bmp b;
        std::string why;
        ASSERT_TRUE(ReadBmp(e.path(), b, why)) << e.path() << ": " << why;
        std::vector<uint16_t> px(size_t(b.w) * b.h, 0);
        ASSERT_TRUE(BmpDecodeTo565(raw.data(), raw.size(), px.data(), b.w, b.h, b.w, 0, 0)) << e.path();
        size_t mismatched = 0;
        for (int y = 0; y < b.h; ++y)
            for (int x = 0; x < b.w; ++x) {
                const uint8_t* c = &b.rgb[(size_t(y) * b.w + x) * 3];
                bool key565 = px[size_t(y) * b.w + x] == 0xF81F;
                bool key555 = ((c[0] >> 3) << 10 | (c[1] >> 3) << 5 | c[2] >> 3) == 0x7C1F;
                mismatched += key565 != b.Key(x, y) || key555 != b.Key(x, y);
            }
        EXPECT_EQ(mismatched, 0u) << e.path();
        ++checked;
    }
    EXPECT_GT(checked, 300u);
}

TEST_F(ArtOutput, VariantsAndFramesAreReallyDifferent) {
    // Pictures that should vary must not be copies of each other: ground variants,
    // water (which must look alive), and the eight frames of every strike.
    auto load = [&](const fs::path& p) {
        Bmp b;
        std::string why;
        EXPECT_TRUE(ReadBmp(p, b, why)) << p << ": " << why;
        return b;
    };
    auto differing = [](const Bmp& a, const Bmp& b) {
        size_t n = 0;
        for (size_t i = 0; i < a.rgb.size(); i += 3)
            n += std::abs(a.rgb[i] - b.rgb[i]) + std::abs(a.rgb[i + 1] - b.rgb[i + 1]) + std::abs(a.rgb[i + 2] - b.rgb[i + 2]) > 24;
        return n;
    };
    for (const auto& [t, typeName] : TileTypes()) {
        std::vector<Bmp> v;
        std::vector<fs::path> names;
        for (auto& e : fs::directory_iterator(stage / "tiles" / std::to_string(t))) names.push_back(e.path());
        std::sort(names.begin(), names.end());
        for (auto& n : names) v.push_back(load(n));
        for (size_t i = 0; i < v.size(); ++i)
            for (size_t j = i + 1; j < v.size(); ++j)
                EXPECT_GT(differing(v[i], v[j]), t == 5 ? 40u : 8u) << names[i] << " vs " << names[j];
    }
    const char* strikes[] = {"strike", "cleave", "lunge", "ward", "lash", "bash", "bite", "claw", "sweep"};
    for (const char* s : strikes) {
        size_t nonEmpty = 0;
        Bmp prev;
        for (int f = 0; f < 8; ++f) {
            Bmp b = load(stage / "skill" / (std::string(s) + "_" + std::to_string(f) + ".bmp"));
            size_t ink = 0;
            for (int y = 0; y < b.h; ++y)
                for (int x = 0; x < b.w; ++x) ink += !b.Key(x, y);
            nonEmpty += ink > 20;
            if (f > 0) {
                EXPECT_GT(differing(prev, b), 10u) << s << " frame " << f << " repeats the previous one";
            }
            prev = b;
        }
        EXPECT_GE(nonEmpty, 6u) << s;
    }
}

TEST_F(ArtOutput, EveryHudRectangleLiesOnThePaintedFrame) {
    Bmp hud;
    std::string why;
    ASSERT_TRUE(ReadBmp(stage / "ui/hud_bg.bmp", hud, why)) << why;
    std::ifstream in(stage / "manifest/hud.txt");
    std::string line;
    int rects = 0;
    std::regex rx(R"(^(\w+) x=(-?\d+) y=(-?\d+) w=(\d+) h=(\d+))");
    while (std::getline(in, line)) {
        std::smatch m;
        if (!std::regex_search(line, m, rx) || m[1] == "panel") continue;
        int x = std::stoi(m[2]), y = std::stoi(m[3]), w = std::stoi(m[4]), h = std::stoi(m[5]);
        ASSERT_TRUE(x >= 0 && y >= 0 && x + w <= 640 && y + h <= 100) << line;
        for (int yy = y; yy < y + h; ++yy)
            for (int xx = x; xx < x + w; ++xx) ASSERT_FALSE(hud.Key(xx, yy)) << line;
        ++rects;
    }
    EXPECT_EQ(rects, 11) << "three bars, the skill slot, five buttons, two labels";
    // The equipment slots named by the weaponButtons line.
    std::ifstream again(stage / "manifest/hud.txt");
    std::string all((std::istreambuf_iterator<char>(again)), std::istreambuf_iterator<char>());
    std::smatch m;
    std::regex eq(R"(WuX=(\d+) WuY=(\d+) JiaX=(\d+) JiaY=(\d+) Shi1X=(\d+) Shi1Y=(\d+) Shi2X=(\d+) Shi2Y=(\d+))");
    ASSERT_TRUE(std::regex_search(all, m, eq));
    for (int k = 0; k < 4; ++k) {
        int x = std::stoi(m[1 + 2 * k]), y = std::stoi(m[2 + 2 * k]);
        ASSERT_LE(x + 32, 640);
        ASSERT_LE(y + 32, 100);
        for (int yy = y; yy < y + 32; ++yy)
            for (int xx = x; xx < x + 32; ++xx) ASSERT_FALSE(hud.Key(xx, yy));
    }
}

TEST(ArtGenerator, SameBytesOnEveryRunAndFailuresAreReported) {
    if (!fs::exists(Artgen())) GTEST_SKIP() << "artgen not built";
    fs::path a = fs::current_path() / ("artgen_a_" + std::to_string(::getpid()));
    fs::path b = fs::current_path() / ("artgen_b_" + std::to_string(::getpid()));
    fs::remove_all(a);
    fs::remove_all(b);
    ASSERT_EQ(RunArtgen("--stage " + a.string()), 0);
    ASSERT_EQ(RunArtgen("--stage " + b.string()), 0);
    size_t files = 0;
    for (auto& e : fs::recursive_directory_iterator(a)) {
        if (!e.is_regular_file()) continue;
        fs::path rel = fs::relative(e.path(), a);
        ASSERT_TRUE(fs::exists(b / rel)) << rel;
        ASSERT_TRUE(ReadAll(e.path()) == ReadAll(b / rel)) << rel << " differs between runs";
        ++files;
    }
    size_t filesB = 0;
    for (auto& e : fs::recursive_directory_iterator(b)) filesB += e.is_regular_file();
    EXPECT_EQ(files, filesB);
    EXPECT_GT(files, 300u);
    fs::remove_all(a);
    fs::remove_all(b);
    // Usage errors and unwritable output are failures, not silent successes.
    EXPECT_EQ(RunArtgen(""), 2);
    EXPECT_EQ(RunArtgen("--bogus x"), 2);
    EXPECT_EQ(RunArtgen("--stage /proc/artgen_cannot_write_here"), 1);
}

TEST(ArtGenerator, BrokenRecipesStopTheGeneratorBeforeItWrites) {
    if (!fs::exists(Artgen())) GTEST_SKIP() << "artgen not built";
    fs::path dir = fs::current_path() / ("artgen_recipes_" + std::to_string(::getpid()));
    fs::path out = fs::current_path() / ("artgen_out_" + std::to_string(::getpid()));
    auto write = [&](const std::string& captions, const std::string& tiles) {
        fs::remove_all(dir);
        fs::remove_all(out);
        fs::create_directories(dir);
        std::ofstream(dir / "captions.txt") << captions;
        std::ofstream(dir / "tiles.txt") << tiles;
    };
    std::ifstream c(Recipes() + "/captions.txt"), t(Recipes() + "/tiles.txt");
    std::string captions((std::istreambuf_iterator<char>(c)), std::istreambuf_iterator<char>());
    std::string tiles((std::istreambuf_iterator<char>(t)), std::istreambuf_iterator<char>());
    auto run = [&]() { return RunArtgen("--recipes " + dir.string() + " --stage " + out.string()); };
    // The project's recipes copied as they are work.
    write(captions, tiles);
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(fs::exists(out / "ui/mm_quit.bmp"));
    // A caption the pictures need is missing.
    std::string noQuit = captions;
    noQuit.erase(noQuit.find("mm_quit"), noQuit.find('\n', noQuit.find("mm_quit")) - noQuit.find("mm_quit") + 1);
    write(noQuit, tiles);
    EXPECT_EQ(run(), 1);
    EXPECT_FALSE(fs::exists(out / "ui")) << "nothing is written from broken recipes";
    // A tile type with 100 pictures would repeat sheet places.
    std::string tooMany = tiles;
    tooMany.replace(tooMany.find("1 grass grass 12"), 16, "1 grass grass 100");
    write(captions, tooMany);
    EXPECT_EQ(run(), 1);
    // Corner pieces must come in whole sets of 14; types must be in order.
    std::string partial = tiles;
    partial.replace(partial.find("7 gd grass-dirt 28"), 18, "7 gd grass-dirt 20");
    write(captions, partial);
    EXPECT_EQ(run(), 1);
    std::string swapped = tiles;
    swapped.replace(swapped.find("2 dirt"), 6, "3 dirt");
    write(captions, swapped);
    EXPECT_EQ(run(), 1);
    // A changed caption changes the painted button and nothing else in the tiles.
    std::string renamed = captions;
    renamed.replace(renamed.find("mm_quit = Quit"), 14, "mm_quit = Leave");
    write(renamed, tiles);
    ASSERT_EQ(run(), 0);
    fs::path ref = fs::current_path() / ("artgen_ref_" + std::to_string(::getpid()));
    fs::remove_all(ref);
    ASSERT_EQ(RunArtgen("--stage " + ref.string()), 0);
    EXPECT_FALSE(ReadAll(out / "ui/mm_quit.bmp") == ReadAll(ref / "ui/mm_quit.bmp"));
    EXPECT_TRUE(ReadAll(out / "ui/mm_start.bmp") == ReadAll(ref / "ui/mm_start.bmp"));
    EXPECT_TRUE(ReadAll(out / "tiles/obj.bmp") == ReadAll(ref / "tiles/obj.bmp"));
    fs::remove_all(dir);
    fs::remove_all(out);
    fs::remove_all(ref);
}

}  // namespace
