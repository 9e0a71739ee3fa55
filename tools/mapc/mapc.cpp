#include "mapc.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>

#include "base/byte_reader.h"
#include "base/gbk.h"
#include "tmx_xml.h"

namespace {

bool ReadFile(const std::string& path, std::string& out) {
    std::ifstream f(path, std::ios::binary);
    if (!f) return false;
    std::ostringstream s;
    s << f.rdbuf();
    out = s.str();
    return true;
}

std::string DirOf(const std::string& path) {
    size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string BaseName(const std::string& path) {
    size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool ParseInt(const std::string& s, int32_t& out) {
    if (s.empty()) return false;
    char* end = nullptr;
    long v = std::strtol(s.c_str(), &end, 10);
    if (*end != 0 || v < INT32_MIN || v > INT32_MAX) return false;
    out = int32_t(v);
    return true;
}

bool ParseDouble(const std::string& s, double& out) {
    if (s.empty()) return false;
    char* end = nullptr;
    out = std::strtod(s.c_str(), &end);
    return *end == 0 && std::isfinite(out);
}

// "a,b;c,d" -> pairs.
bool ParsePairs(const std::string& s, std::vector<std::pair<int32_t, int32_t>>& out) {
    out.clear();
    std::stringstream ss(s);
    std::string item;
    while (std::getline(ss, item, ';')) {
        if (item.empty()) continue;
        size_t comma = item.find(',');
        int32_t a = 0, b = 0;
        if (comma == std::string::npos || !ParseInt(item.substr(0, comma), a) || !ParseInt(item.substr(comma + 1), b))
            return false;
        out.emplace_back(a, b);
    }
    return true;
}

bool ParseInts(const std::string& s, std::vector<int32_t>& out) {
    out.clear();
    std::stringstream ss(s);
    std::string item;
    while (std::getline(ss, item, ',')) {
        int32_t v = 0;
        if (!ParseInt(item, v)) return false;
        out.push_back(v);
    }
    return true;
}

}  // namespace

namespace {

// Calls each(fields, number) for every manifest line that is neither empty nor a
// comment; stops with false as soon as a call does.
template <class F>
bool ForEachManifestLine(const std::string& path, std::string& error, F each) {
    std::string text;
    if (!ReadFile(path, text)) {
        error = path + ": cannot be read";
        return false;
    }
    std::stringstream lines(text);
    std::string line;
    int number = 0;
    while (std::getline(lines, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        std::stringstream fields(line);
        if (!each(fields, number)) return false;
    }
    return true;
}

}  // namespace

bool ReadObjectManifest(const std::string& path, SManifest& m, std::string& error) {
    return ForEachManifestLine(path, error, [&](std::stringstream& fields, int number) {
        std::string field;
        SManifestObject o;
        bool hasRect = false;
        const std::string where = path + ":" + std::to_string(number) + ": ";
        while (fields >> field) {
            size_t eq = field.find('=');
            if (eq == std::string::npos) {
                error = where + "field without '=': " + field;
                return false;
            }
            const std::string key = field.substr(0, eq), value = field.substr(eq + 1);
            std::vector<int32_t> v;
            if (key == "name") {
                o.name = value;
            } else if (key == "rect") {
                if (!ParseInts(value, v) || v.size() != 4) {
                    error = where + "bad rect " + value;
                    return false;
                }
                o.x = v[0], o.y = v[1], o.w = v[2], o.h = v[3];
                hasRect = true;
            } else if (key == "anchor") {
                if (!ParseInts(value, v) || v.size() != 2) {
                    error = where + "bad anchor " + value;
                    return false;
                }
                o.ax = v[0], o.ay = v[1];
            } else if (key == "block" || key == "walk" || key == "ground") {
                auto& list = key == "block" ? o.block : key == "walk" ? o.walk : o.ground;
                if (!ParsePairs(value, list)) {
                    error = where + "bad " + key + " list " + value;
                    return false;
                }
            }
        }
        if (o.name.empty() || !hasRect) {
            error = where + "object needs name= and rect=";
            return false;
        }
        if (o.ground.size() > size_t(MAX_GROUND_PIECES)) {
            error = where + "object " + o.name + " has more than 30 ground pieces";
            return false;
        }
        m.objects[o.name] = o;
        return true;
    });
}

bool ReadTileManifest(const std::string& path, SManifest& m, std::string& error) {
    return ForEachManifestLine(path, error, [&](std::stringstream& fields, int number) {
        int type = 0, k = 0, sx = 0, sy = 0;
        if (!(fields >> type >> k >> sx >> sy)) {
            error = path + ":" + std::to_string(number) + ": expected <type> <k> <sheet x> <sheet y> ...";
            return false;
        }
        m.tiles[{type, k}] = {sx, sy};
        return true;
    });
}

namespace {

struct STileset {
    uint32_t firstGid = 0;
    std::string source;
    int tileType = 0;                       // ground tiles: the tile type
    std::map<int, std::string> objectNames; // object tilesets: tile id -> manifest name
    bool isObjects = false;
};

struct SContext {
    std::string file;  // for messages
    std::vector<std::string>& errors;
    void Error(const std::string& what) { errors.push_back(file + ": " + what); }
};

constexpr uint32_t kGidMask = 0x0FFFFFFFu;  // flip flags live in the top bits

const STileset* FindTileset(const std::vector<STileset>& sets, uint32_t gid) {
    const STileset* best = nullptr;
    for (const STileset& t : sets)
        if (t.firstGid <= gid && (!best || t.firstGid > best->firstGid)) best = &t;
    return best;
}

bool LoadTileset(const std::string& baseDir, STileset& ts, SContext& ctx) {
    std::string text, error;
    const std::string path = baseDir + ts.source;
    if (!ReadFile(path, text)) {
        ctx.Error("tileset " + ts.source + " cannot be read");
        return false;
    }
    pugi::xml_document doc;
    CXml root;
    const bool parsed = ParseXml(doc, text, root, error);
    if (!parsed || root.Name() != "tileset") {
        ctx.Error("tileset " + ts.source + ": " + (parsed ? "not a tileset" : error));
        return false;
    }
    if (const std::optional<std::string> t = root.Property("objects"); t && *t == "true") ts.isObjects = true;
    const std::string base = BaseName(ts.source);
    if (base == "objects.tsx") ts.isObjects = true;
    if (ts.isObjects) {
        for (const CXml tile : root.Children("tile")) {
            int32_t id = 0;
            if (!ParseInt(tile.AttrOr("id", ""), id)) continue;
            std::string name;
            if (const std::optional<std::string> n = tile.Property("name")) name = *n;
            if (name.empty()) {
                if (const CXml img = tile.Child("image")) {
                    name = BaseName(img.AttrOr("source", ""));
                    size_t dot = name.rfind('.');
                    if (dot != std::string::npos) name.resize(dot);
                }
            }
            ts.objectNames[id] = name;
        }
        return true;
    }
    int32_t type = 0;
    if (const std::optional<std::string> t = root.Property("tiletype")) ParseInt(*t, type);
    else if (const std::optional<std::string> t2 = root.Property("type")) ParseInt(*t2, type);
    if (type == 0 && std::sscanf(base.c_str(), "tiles_%d.tsx", &type) != 1) type = 0;
    if (type < 1 || type > 255) {
        ctx.Error("tileset " + ts.source + ": no tile type (name it tiles_<type>.tsx or give it a property type)");
        return false;
    }
    ts.tileType = type;
    return true;
}

bool ReadCsvLayer(const CXml& layer, int32_t n, std::vector<uint32_t>& gids, SContext& ctx) {
    const std::string name = layer.AttrOr("name", "?");
    const CXml data = layer.Child("data");
    if (!data) {
        ctx.Error("layer " + name + " has no data");
        return false;
    }
    if (data.AttrOr("encoding", "") != "csv" || data.Attr("compression")) {
        ctx.Error("layer " + name + ": save layers in CSV format (Map > Map Properties > Tile Layer Format)");
        return false;
    }
    gids.clear();
    std::stringstream ss(data.Text());
    std::string item;
    while (std::getline(ss, item, ',')) {
        size_t a = item.find_first_not_of(" \t\r\n"), b = item.find_last_not_of(" \t\r\n");
        if (a == std::string::npos) continue;
        item = item.substr(a, b - a + 1);
        char* end = nullptr;
        unsigned long v = std::strtoul(item.c_str(), &end, 10);
        if (*end != 0) {
            ctx.Error("layer " + name + ": bad tile number '" + item + "'");
            return false;
        }
        gids.push_back(uint32_t(v));
    }
    if (gids.size() != size_t(n) * size_t(n)) {
        ctx.Error("layer " + name + " holds " + std::to_string(gids.size()) + " cells, the map needs " +
                  std::to_string(n * n));
        return false;
    }
    return true;
}

std::string CellName(int32_t i, int32_t j) { return "cell (" + std::to_string(i) + "," + std::to_string(j) + ")"; }

bool CopyText(char* dst, size_t size, const std::string& utf8, const char* what, SContext& ctx) {
    const std::string gbk = Utf8ToGbk(utf8);
    if (gbk.size() >= size) {
        ctx.Error(std::string(what) + " '" + utf8 + "' is longer than " + std::to_string(size - 1) + " bytes");
        return false;
    }
    std::memset(dst, 0, size);
    std::memcpy(dst, gbk.data(), gbk.size());
    return true;
}

}  // namespace

bool CompileTmx(const std::string& tmxPath, const std::string& outName, const SManifest& manifest,
                SRegistries& registries, SMapFile& out, std::vector<std::string>& errors) {
    const size_t errorsBefore = errors.size();
    SContext ctx{BaseName(tmxPath), errors};
    std::string text, error;
    if (!ReadFile(tmxPath, text)) {
        ctx.Error("cannot be read");
        return false;
    }
    pugi::xml_document doc;
    CXml root;
    if (!ParseXml(doc, text, root, error)) {
        ctx.Error(error);
        return false;
    }
    if (root.Name() != "map" || root.AttrOr("orientation", "") != "isometric" ||
        root.AttrOr("tilewidth", "") != "64" || root.AttrOr("tileheight", "") != "32") {
        ctx.Error("must be an isometric map with 64 x 32 tiles");
        return false;
    }
    int32_t n = 0, height = 0;
    if (!ParseInt(root.AttrOr("width", ""), n) || !ParseInt(root.AttrOr("height", ""), height) || n != height ||
        n < 1 || n > MAP_MAX_SIZE) {
        ctx.Error("width and height must be equal, 1 to " + std::to_string(MAP_MAX_SIZE));
        return false;
    }

    // Header from the map's properties.
    SMapHeader& h = out.header;
    h = SMapHeader{};
    std::memcpy(h.magic, "2pam", 4);
    h.size = n;
    CopyText(h.fileName, sizeof h.fileName, outName, "file name", ctx);
    const std::optional<std::string> display = root.Property("name");
    const std::optional<std::string> music = root.Property("music");
    if (!display) ctx.Error("map property 'name' (display name) is missing");
    if (!music) ctx.Error("map property 'music' is missing");
    if (display) CopyText(h.displayName, sizeof h.displayName, *display, "display name", ctx);
    if (music) CopyText(h.music, sizeof h.music, *music, "music name", ctx);
    const std::optional<std::string> sx = root.Property("start_x");
    const std::optional<std::string> sy = root.Property("start_y");
    const bool startValid = sx && sy && ParseInt(*sx, h.startX) && ParseInt(*sy, h.startY) && h.startX >= 0 &&
                            h.startY >= 0 && h.startX < n && h.startY < n;
    if (!startValid) ctx.Error("map properties start_x and start_y must name a cell of the map");
    std::set<int> blockingTypes;
    if (const std::optional<std::string> bt = root.Property("blocking_types")) {
        std::vector<int32_t> v;
        if (!ParseInts(*bt, v)) ctx.Error("map property blocking_types must be a comma list of tile types");
        blockingTypes.insert(v.begin(), v.end());
    }

    // Tilesets.
    std::vector<STileset> tilesets;
    const std::string baseDir = DirOf(tmxPath);
    for (const CXml t : root.Children("tileset")) {
        STileset ts;
        int32_t first = 0;
        if (!ParseInt(t.AttrOr("firstgid", ""), first) || first < 1 || !t.Attr("source")) {
            ctx.Error("tilesets must be external .tsx files with a firstgid");
            continue;
        }
        ts.firstGid = uint32_t(first);
        ts.source = *t.Attr("source");
        if (LoadTileset(baseDir, ts, ctx)) tilesets.push_back(ts);
    }

    // Cells: geometry, ground tiles, crossing.
    out.cells.assign(size_t(n) * size_t(n), SMapCell{});
    for (int32_t i = 0; i < n; ++i)
        for (int32_t j = 0; j < n; ++j) {
            SMapCell& c = out.cells[size_t(i) * size_t(n) + size_t(j)];
            const SPoint box = CellBoxOrigin(i, j);
            c.x = box.x;
            c.y = box.y;
            c.cross = 1;
        }
    bool haveGround = false;
    for (const CXml layer : root.Children("layer")) {
        const std::string lname = layer.AttrOr("name", "");
        std::vector<uint32_t> gids;
        if (lname != "ground" && lname != "block") continue;
        if (!ReadCsvLayer(layer, n, gids, ctx)) continue;
        // Layer data runs row by row: index = row * n + column, column = first index.
        for (int32_t row = 0; row < n; ++row)
            for (int32_t col = 0; col < n; ++col) {
                const uint32_t gid = gids[size_t(row) * size_t(n) + size_t(col)] & kGidMask;
                SMapCell& c = out.cells[size_t(col) * size_t(n) + size_t(row)];
                if (lname == "block") {
                    if (gid != 0) c.cross = 0;
                    continue;
                }
                if (gid == 0) {
                    c.cross = 0;  // no ground: nobody stands there
                    continue;
                }
                const STileset* ts = FindTileset(tilesets, gid);
                if (!ts || ts->isObjects) {
                    ctx.Error(CellName(col, row) + ": tile " + std::to_string(gid) + " is not a ground tile");
                    continue;
                }
                const int k = int(gid - ts->firstGid);
                if (k >= 200) {
                    ctx.Error(CellName(col, row) + ": picture " + std::to_string(k) + " beyond a type's 200");
                    continue;
                }
                SPoint sheet = TileSheetPos(k);
                if (!manifest.tiles.empty()) {
                    auto it = manifest.tiles.find({ts->tileType, k});
                    if (it == manifest.tiles.end()) {
                        ctx.Error(CellName(col, row) + ": type " + std::to_string(ts->tileType) + " has no picture " +
                                  std::to_string(k));
                        continue;
                    }
                    sheet = SPoint{it->second.first, it->second.second};
                }
                c.tileType = uint8_t(ts->tileType);
                c.picX = sheet.x;
                c.picY = sheet.y;
                if (blockingTypes.count(ts->tileType)) c.cross = 0;
            }
        if (lname == "ground") haveGround = true;
    }
    if (!haveGround) ctx.Error("needs a tile layer named 'ground'");

    // Objects, exits, scripts and NPC placements from the object layers.
    std::vector<std::pair<int32_t, int32_t>> walkCells;
    for (const CXml group : root.Children("objectgroup")) {
        for (const CXml obj : group.Children("object")) {
            const std::string id = obj.AttrOr("id", "?");
            const std::string oname = obj.AttrOr("name", "");
            const std::string what = "object " + id + (oname.empty() ? "" : " '" + oname + "'");
            double ox = 0, oy = 0, ow = 0, oh = 0;
            if (!ParseDouble(obj.AttrOr("x", "0"), ox) || !ParseDouble(obj.AttrOr("y", "0"), oy) ||
                !ParseDouble(obj.AttrOr("width", "0"), ow) || !ParseDouble(obj.AttrOr("height", "0"), oh)) {
                ctx.Error(what + ": bad position or size");
                continue;
            }
            if (const std::optional<std::string> gidText = obj.Attr("gid")) {
                int32_t gidValue = 0;
                ParseInt(*gidText, gidValue);
                const uint32_t gid = uint32_t(gidValue) & kGidMask;
                const STileset* ts = FindTileset(tilesets, gid);
                if (!ts || !ts->isObjects) {
                    ctx.Error(what + ": tile " + std::to_string(gid) + " is not from the objects tileset");
                    continue;
                }
                auto nameIt = ts->objectNames.find(int(gid - ts->firstGid));
                const std::string objName = nameIt == ts->objectNames.end() ? "" : nameIt->second;
                auto mit = manifest.objects.find(objName);
                if (mit == manifest.objects.end()) {
                    ctx.Error(what + ": '" + objName + "' is not in the object manifest");
                    continue;
                }
                const SManifestObject& mo = mit->second;
                // Tiled draws a tile object with its bottom centre at the projected point
                // (the editor puts the grid's top corner at x = N * 32, the world at 1568).
                const double px = (ox - oy) + MAP_ORIGIN_X;
                const double py = (ox + oy) / 2.0;
                const double left = px - mo.w / 2.0, top = py - mo.h;
                const double bx = left + mo.ax + CELL_W / 2.0, by = top + mo.ay + CELL_H / 2.0;
                const double u = (bx - MAP_ORIGIN_X) / 32.0, v = (by - MAP_ORIGIN_Y) / 16.0;
                const int32_t bi = int32_t(std::floor((v + u) / 2.0)), bj = int32_t(std::floor((v - u) / 2.0));
                if (bi < 0 || bj < 0 || bi >= n || bj >= n) {
                    ctx.Error(what + ": base " + CellName(bi, bj) + " is outside the map");
                    continue;
                }
                const SPoint box = CellBoxOrigin(bi, bj);
                SMapObject rec{};
                rec.sheetX = mo.x;
                rec.sheetY = mo.y;
                rec.width = mo.w;
                rec.height = mo.h;
                rec.worldX = box.x - mo.ax;
                rec.worldY = box.y - mo.ay;
                rec.pieceCount = int32_t(mo.ground.size());
                for (size_t p = 0; p < mo.ground.size(); ++p) {
                    rec.pieces[p][0] = mo.ground[p].first;
                    rec.pieces[p][1] = mo.ground[p].second;
                }
                out.objects.push_back(rec);
                for (auto [di, dj] : mo.block) {
                    const int32_t ci = bi + di, cj = bj + dj;
                    if (ci >= 0 && cj >= 0 && ci < n && cj < n) out.cells[size_t(ci) * size_t(n) + size_t(cj)].cross = 0;
                }
                for (auto [di, dj] : mo.walk) walkCells.emplace_back(bi + di, bj + dj);
                continue;
            }
            const std::optional<std::string> exitText = obj.Property("exit");
            const std::optional<std::string> scriptText = obj.Property("script");
            const std::optional<std::string> npcText = obj.Property("npc");
            if (npcText) {
                int32_t record = 0;
                if (!ParseInt(*npcText, record) || record < 1) {
                    ctx.Error(what + ": property npc must be a record number from 1");
                    continue;
                }
                const int32_t ci = int32_t(std::floor(ox / CELL_H)), cj = int32_t(std::floor(oy / CELL_H));
                if (ci < 0 || cj < 0 || ci >= n || cj >= n) {
                    ctx.Error(what + ": NPC placed outside the map at " + CellName(ci, cj));
                    continue;
                }
                SMapNpc rec{};
                rec.record = uint32_t(record);
                rec.cellX = ci;
                rec.cellY = cj;
                out.npcs.push_back(rec);
                continue;
            }
            if (!exitText && !scriptText) continue;  // notes and other shapes are ignored
            int32_t exitNo = 0, scriptNo = 0;
            if (exitText) {
                const std::optional<std::string> target = obj.Property("target");
                const std::optional<std::string> label = obj.Property("label");
                if (!ParseInt(*exitText, exitNo) || exitNo < 1 || exitNo > 255 || !target) {
                    ctx.Error(what + ": an exit needs exit=1..255 and target=<map file>");
                    continue;
                }
                SExitEntry e{*target, label ? *label : "", ctx.file + " " + what};
                auto [it, fresh] = registries.exits.emplace(exitNo, e);
                if (!fresh && (it->second.target != e.target || it->second.label != e.label)) {
                    ctx.Error(what + ": exit " + std::to_string(exitNo) + " already means " + it->second.target +
                              " (" + it->second.where + ")");
                    continue;
                }
            }
            if (scriptText) {
                const std::optional<std::string> sname = obj.Property("name");
                if (!ParseInt(*scriptText, scriptNo) || scriptNo < 1 || scriptNo > 255 || !sname) {
                    ctx.Error(what + ": a script needs script=1..255 and name=<script file>");
                    continue;
                }
                SScriptEntry e{*sname, ctx.file + " " + what};
                auto [it, fresh] = registries.scripts.emplace(scriptNo, e);
                if (!fresh && it->second.name != e.name) {
                    ctx.Error(what + ": script " + std::to_string(scriptNo) + " already means " + it->second.name +
                              " (" + it->second.where + ")");
                    continue;
                }
            }
            if (ow <= 0 || oh <= 0) {
                ctx.Error(what + ": exits and scripts must be rectangles");
                continue;
            }
            const int32_t i0 = int32_t(std::floor(ox / CELL_H)), j0 = int32_t(std::floor(oy / CELL_H));
            const int32_t i1 = int32_t(std::ceil((ox + ow) / CELL_H)), j1 = int32_t(std::ceil((oy + oh) / CELL_H));
            if (i0 < 0 || j0 < 0 || i1 > n || j1 > n) {
                ctx.Error(what + ": rectangle reaches outside the map");
                continue;
            }
            for (int32_t i = i0; i < i1; ++i)
                for (int32_t j = j0; j < j1; ++j) {
                    SMapCell& c = out.cells[size_t(i) * size_t(n) + size_t(j)];
                    if (exitNo) c.exit = uint8_t(exitNo);
                    if (scriptNo) c.script = uint8_t(scriptNo);
                }
        }
    }
    for (auto [i, j] : walkCells)
        if (i >= 0 && j >= 0 && i < n && j < n) out.cells[size_t(i) * size_t(n) + size_t(j)].cross = 1;
    h.objectCount = int32_t(out.objects.size());
    h.npcCount = int32_t(out.npcs.size());
    if (startValid && out.cells[size_t(h.startX) * size_t(n) + size_t(h.startY)].cross == 0)
        ctx.Error("the start " + CellName(h.startX, h.startY) + " is blocked");
    if (errors.size() != errorsBefore) return false;
    // The game's own reader must take what was compiled (sheet coordinates from
    // the manifests included).
    const std::vector<uint8_t> bytes = MapFileBytes(out);
    CByteReader check(bytes, outName);
    SMapFile back;
    if (ReadMapFile(check, back) != EMapFileRead::Ok) ctx.Error("the game would refuse the compiled map: " + check.Reason());
    return errors.size() == errorsBefore;
}

namespace {
std::string ToIni(const std::string& utf8) {
    std::string gbk = Utf8ToGbk(utf8), out;
    for (char c : gbk) {
        if (c == '\n') out += '\r';
        out += c;
    }
    return out;
}
}  // namespace

std::string MapsIniText(const SRegistries& r) {
    const int count = r.exits.empty() ? 0 : r.exits.rbegin()->first;
    std::string s = "[count]\ncount=" + std::to_string(count) + "\n\n[comment]\n";
    for (const auto& [k, e] : r.exits) s += std::to_string(k) + "=" + e.label + "\n";
    s += "\n[name]\n";
    for (const auto& [k, e] : r.exits) s += std::to_string(k) + "=" + e.target + "\n";
    return ToIni(s);
}

std::string ScriptsIniText(const SRegistries& r) {
    std::string s = "[name]\n";
    for (const auto& [k, e] : r.scripts) s += std::to_string(k) + "=" + e.name + "\n";
    return ToIni(s);
}
