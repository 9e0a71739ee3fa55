// The game's built maps as a world: every exit of every map leads to a map that
// exists, onto a start cell one can stand on that is no exit itself; the exits of a
// map can be reached on foot from its start cell; every map can be reached from
// Ashvale and Ashvale from every map. The map sources place the people of the story on
// cells one can walk to, and their tile objects show the pictures they are named after.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "world/map.h"

namespace fs = std::filesystem;

namespace {

const fs::path kGame = ASHEN_GAME_DIR;
const fs::path kSources = fs::path(ASHEN_SOURCE_DIR) / "content/maps";
const char* const kMaps[] = {"main.map", "greywood.map", "ford.map", "mine.map", "shrine.map", "keep.map"};

std::string ReadText(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

// One built map, loaded by the engine's reader, with the registries of the game.
struct SWorldMap {
    CMap map;
    std::vector<SMapNpc> npcs;
    int32_t n = 0;

    bool Load(const std::string& name) {
        map.LoadRegistries((kGame / "data/ini.vrn").string().c_str());
        if (!map.Load((kGame / "map" / name).string().c_str(), &npcs)) return false;
        n = map.Size();
        return n > 0;
    }
    const SMapCell& Cell(int32_t i, int32_t j) const { return map.Cells()[size_t(i) * size_t(n) + size_t(j)]; }
    bool Walkable(int32_t i, int32_t j) const { return i >= 0 && j >= 0 && i < n && j < n && Cell(i, j).cross != 0; }
    // The middle of a cell's diamond, the point the cell questions are asked with.
    SPoint Centre(int32_t i, int32_t j) const {
        const SPoint p = map.GetCellPoint(i, j);
        return SPoint{p.x + CELL_W / 2, p.y + CELL_H / 2};
    }
    // Cells reachable on foot from the start cell, stepping to edge neighbours.
    std::set<std::pair<int32_t, int32_t>> Reachable() const {
        const int32_t si = map.Header().startX, sj = map.Header().startY;
        std::set<std::pair<int32_t, int32_t>> seen;
        if (!Walkable(si, sj)) return seen;
        std::deque<std::pair<int32_t, int32_t>> queue{{si, sj}};
        seen.insert({si, sj});
        while (!queue.empty()) {
            auto [i, j] = queue.front();
            queue.pop_front();
            const int32_t step[4][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
            for (const auto& d : step) {
                const std::pair<int32_t, int32_t> c{i + d[0], j + d[1]};
                if (Walkable(c.first, c.second) && seen.insert(c).second) queue.push_back(c);
            }
        }
        return seen;
    }
};

struct SExit {
    std::string target, label;
    bool reachable = false;
    int cells = 0;
};

TEST(WorldMaps, EveryExitLeadsToAStartCellAndEveryMapIsReachableBothWays) {
    std::map<std::string, std::map<int, SExit>> exits;  // map -> exit number -> exit
    for (const char* name : kMaps) {
        SCOPED_TRACE(name);
        SWorldMap w;
        ASSERT_TRUE(w.Load(name)) << "built map missing: " << (kGame / "map" / name);
        const SMapHeader& h = w.map.Header();
        EXPECT_STREQ(h.fileName, name);
        EXPECT_GT(std::strlen(h.displayName), 0u);
        EXPECT_TRUE(fs::exists(kGame / "music" / h.music)) << "music " << h.music;
        // The start cell: walkable, no exit, no script.
        const SPoint start = w.Centre(h.startX, h.startY);
        std::string out;
        EXPECT_TRUE(w.Walkable(h.startX, h.startY));
        EXPECT_FALSE(w.map.GetCellExit(out, start.x, start.y)) << "the start cell leads away to " << out;
        EXPECT_FALSE(w.map.GetCellScript(out, start.x, start.y)) << "the start cell runs " << out;
        const auto reach = w.Reachable();
        EXPECT_GT(reach.size(), 200u);
        for (int32_t i = 0; i < w.n; ++i)
            for (int32_t j = 0; j < w.n; ++j) {
                const int number = w.Cell(i, j).exit;
                if (number == 0) continue;
                const SPoint p = w.Centre(i, j);
                std::string target, label;
                ASSERT_TRUE(w.map.GetCellExit(target, p.x, p.y)) << "exit " << number << " has no target";
                ASSERT_TRUE(w.map.GetCellLabel(label, p.x, p.y)) << "exit " << number << " has no label";
                EXPECT_TRUE(w.Walkable(i, j)) << "exit cell (" << i << "," << j << ") is blocked";
                EXPECT_EQ(label.rfind("To ", 0), 0u) << label;
                SExit& e = exits[name][number];
                EXPECT_TRUE(e.target.empty() || e.target == target);
                e.target = target;
                e.label = label;
                e.reachable |= reach.count({i, j}) != 0;
                ++e.cells;
            }
        EXPECT_FALSE(exits[name].empty()) << "a map without a way out";
    }
    // Targets exist, arrive on a cell one can stand on, and the display name of the
    // target is what the label promises.
    std::map<std::string, std::string> names;
    for (const char* name : kMaps) {
        SWorldMap w;
        ASSERT_TRUE(w.Load(name));
        names[name] = w.map.Header().displayName;
    }
    for (const auto& [from, list] : exits)
        for (const auto& [number, e] : list) {
            SCOPED_TRACE(from + " exit " + std::to_string(number));
            EXPECT_TRUE(e.reachable) << "no cell of the exit can be reached from the start";
            ASSERT_TRUE(names.count(e.target)) << "target " << e.target << " is not a built map";
            EXPECT_EQ(e.label, "To " + names[e.target]);
            EXPECT_NE(e.target, from);
            // Every way out has its way back.
            bool back = false;
            for (const auto& [k, r] : exits[e.target]) back |= r.target == from;
            EXPECT_TRUE(back) << e.target << " has no exit back to " << from;
        }
    // Every map from Ashvale, and Ashvale from every map, through reachable exits.
    auto closure = [&](const std::string& from, bool forward) {
        std::set<std::string> seen{from};
        std::deque<std::string> queue{from};
        while (!queue.empty()) {
            const std::string at = queue.front();
            queue.pop_front();
            for (const auto& [m, list] : exits)
                for (const auto& [k, e] : list) {
                    if (!e.reachable) continue;
                    const std::string next = forward ? (m == at ? e.target : "") : (e.target == at ? m : "");
                    if (!next.empty() && seen.insert(next).second) queue.push_back(next);
                }
        }
        return seen;
    };
    EXPECT_EQ(closure("main.map", true).size(), std::size(kMaps));
    EXPECT_EQ(closure("main.map", false).size(), std::size(kMaps));
}

// ---------------------------------------------------------------- the sources

using SAttrs = std::map<std::string, std::string>;

SAttrs Attributes(const std::string& tag) {
    SAttrs a;
    static const std::regex kAttr(R"re(([A-Za-z_]+)="([^"]*)")re");
    for (auto it = std::sregex_iterator(tag.begin(), tag.end(), kAttr); it != std::sregex_iterator(); ++it)
        a[(*it)[1]] = (*it)[2];
    return a;
}

// Tile id -> object name of the objects tileset, from its "name" tile properties.
std::map<int, std::string> ObjectTileNames() {
    const std::string tsx = ReadText(kSources / "tilesets/objects.tsx");
    std::map<int, std::string> names;
    static const std::regex kTile(R"re(<tile id="(\d+)">\s*<properties>\s*<property name="name" value="([^"]+)")re");
    for (auto it = std::sregex_iterator(tsx.begin(), tsx.end(), kTile); it != std::sregex_iterator(); ++it)
        names[std::stoi((*it)[1])] = (*it)[2];
    return names;
}

struct SPerson {
    std::string who;
    int32_t i, j;
};

// The people of a map source: point objects of the layer "people" with a "person".
std::vector<SPerson> People(const std::string& tmx) {
    std::vector<SPerson> people;
    const size_t layer = tmx.find("name=\"people\"");
    if (layer == std::string::npos) return people;
    const size_t end = tmx.find("</objectgroup>", layer);
    const std::string body = tmx.substr(layer, end - layer);
    static const std::regex kObject(R"re(<object ([^>]*)>([\s\S]*?)</object>)re");
    static const std::regex kPerson(R"re(<property name="person" value="([^"]*)")re");
    for (auto it = std::sregex_iterator(body.begin(), body.end(), kObject); it != std::sregex_iterator(); ++it) {
        const SAttrs a = Attributes((*it)[1]);
        const std::string inner = (*it)[2];
        std::smatch m;
        if (!std::regex_search(inner, m, kPerson)) continue;
        people.push_back({m[1], int32_t(std::floor(std::stod(a.at("x")) / CELL_H)),
                          int32_t(std::floor(std::stod(a.at("y")) / CELL_H))});
    }
    return people;
}

TEST(MapSources, TileObjectsShowThePicturesTheyAreNamedAfter) {
    // A tile object refers to its picture by number; when the tileset gains or loses
    // a picture before it, the number shows another object. The name Tiled keeps
    // beside the number catches that.
    const auto tiles = ObjectTileNames();
    ASSERT_GT(tiles.size(), 60u);
    static const std::regex kTileset(R"re(<tileset firstgid="(\d+)" source="tilesets/objects.tsx")re");
    static const std::regex kObject(R"re(<object ([^>]*gid="[^>]*)/?>)re");
    for (const char* name : kMaps) {
        const std::string stem = fs::path(name).stem().string();
        const std::string tmx = ReadText(kSources / (stem + ".tmx"));
        SCOPED_TRACE(stem);
        std::smatch m;
        ASSERT_TRUE(std::regex_search(tmx, m, kTileset));
        const int first = std::stoi(m[1]);
        int objects = 0;
        for (auto it = std::sregex_iterator(tmx.begin(), tmx.end(), kObject); it != std::sregex_iterator(); ++it) {
            const SAttrs a = Attributes((*it)[1]);
            if (!a.count("name") || a.at("name").empty()) continue;
            const int id = int((std::stoul(a.at("gid")) & 0x0FFFFFFFu) - unsigned(first));
            ASSERT_TRUE(tiles.count(id)) << "object " << a.at("id") << " shows no picture of the tileset";
            EXPECT_EQ(tiles.at(id), a.at("name")) << "object " << a.at("id");
            ++objects;
        }
        EXPECT_GT(objects, 40);
    }
}

TEST(MapSources, ThePeopleOfTheStoryStandWhereOneCanWalkToThem) {
    const std::set<std::string> known = {"elder_maren", "brannoc", "lisse", "oda", "fen", "brother_ivo", "pell",
                                         "villager_m", "villager_f", "child", "guard", "wolf", "skeleton",
                                         "bandit", "captain_vey", "ash_knight"};
    std::map<std::string, std::map<std::string, int>> count;  // map -> person -> count
    for (const char* name : kMaps) {
        const std::string stem = fs::path(name).stem().string();
        SCOPED_TRACE(stem);
        SWorldMap w;
        ASSERT_TRUE(w.Load(name));
        const auto reach = w.Reachable();
        for (const SPerson& p : People(ReadText(kSources / (stem + ".tmx")))) {
            EXPECT_TRUE(known.count(p.who)) << "unknown person " << p.who;
            ASSERT_TRUE(p.i >= 0 && p.j >= 0 && p.i < w.n && p.j < w.n) << p.who;
            EXPECT_TRUE(reach.count({p.i, p.j})) << p.who << " at (" << p.i << "," << p.j << ") cannot be reached";
            EXPECT_EQ(w.Cell(p.i, p.j).exit, 0) << p.who << " stands on an exit";
            EXPECT_EQ(w.Cell(p.i, p.j).script, 0) << p.who << " stands on a script cell";
            ++count[name][p.who];
        }
    }
    // The named people once each, where the story puts them; enemies in numbers.
    const std::pair<const char*, const char*> once[] = {
        {"main.map", "elder_maren"}, {"main.map", "brannoc"}, {"main.map", "oda"},
        {"main.map", "fen"},         {"main.map", "pell"},    {"greywood.map", "lisse"},
        {"shrine.map", "brother_ivo"}, {"ford.map", "captain_vey"}, {"keep.map", "ash_knight"}};
    for (const auto& [map, who] : once) {
        int total = 0;
        for (const auto& [m, c] : count) total += c.count(who) ? c.at(who) : 0;
        EXPECT_EQ(count[map][who], 1) << who << " in " << map;
        EXPECT_EQ(total, 1) << who;
    }
    EXPECT_GE(count["main.map"]["guard"], 2);
    EXPECT_GE(count["main.map"]["villager_m"] + count["main.map"]["villager_f"] + count["main.map"]["child"], 3);
    EXPECT_GE(count["greywood.map"]["wolf"], 6);
    EXPECT_LE(count["greywood.map"]["wolf"], 10);
    EXPECT_GE(count["ford.map"]["bandit"], 5);
    EXPECT_LE(count["ford.map"]["bandit"], 7);
    EXPECT_GE(count["mine.map"]["skeleton"], 8);
    EXPECT_LE(count["mine.map"]["skeleton"], 12);
    EXPECT_GE(count["keep.map"]["skeleton"] + count["keep.map"]["bandit"], 3);
}

}  // namespace
