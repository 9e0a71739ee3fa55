// The pre-rendered map layers: tile pictures onto the ground layer, objects onto
// the object layer with their ground pieces moved to the ground layer.
#include <cstdio>
#include <cstring>
#include <string>

#include "media/graph.h"
#include "resources/ini.h"
#include "base/gbk.h"
#include "base/log.h"
#include "world/map.h"

std::string TileName(int type, const char* prefix, int first, int last, const char* pad, int k) {
    char number[16];
    std::snprintf(number, sizeof number, "%d", first + k);
    std::string digits = number;
    if (pad && std::strcmp(pad, "true") == 0) {
        size_t width = (last / 100 >= 1) ? 3 : (last / 10 >= 1) ? 2 : 1;
        while (digits.size() < width) digits.insert(digits.begin(), '0');
    }
    char name[128];
    std::snprintf(name, sizeof name, "%d\\%s%s.bmp", type, prefix ? prefix : "", digits.c_str());
    return name;
}

void DrawTiles(CGraph* graph, CMap* map, const char* iniPack, CLog* log) {
    if (log) log->Write("start to show tiles");
    CIni ini("tiles.ini", iniPack);
    if (ini.IsFailed()) {
        if (log) log->Write("show tiles end");
        return;
    }
    const int32_t types = ini.GetInt("typecount", "count");
    graph->FillRect(SURF_GROUND, nullptr, 0);
    const std::string keyPrefix = GbkText("前缀");
    const std::string keyFirst = GbkText("起始数");
    const std::string keyLast = GbkText("末尾数");
    const std::string keyPad = GbkText("补位");
    for (int32_t t = 1; t <= types && t <= 255; ++t) {
        char section[16];
        std::snprintf(section, sizeof section, "%d", t);
        int32_t count = ini.GetInt(section, "piccount");
        if (count > 200) count = 200;
        const std::string prefix = ini.GetString(section, keyPrefix.c_str());
        const int32_t first = ini.GetInt(section, keyFirst.c_str());
        const int32_t last = ini.GetInt(section, keyLast.c_str());
        const std::string pad = ini.GetString(section, keyPad.c_str());
        graph->FillRect(SURF_TILE, nullptr, 0);
        for (int32_t k = 0; k < count; ++k) {
            const std::string name = TileName(t, prefix.c_str(), first, last, pad.c_str(), k);
            const SPoint at = TileSheetPos(k);
            graph->LoadBitmapToSurface(PACK_TILES, name.c_str(), SURF_TILE, at.x, at.y, BMP_CACHE_GAME);
        }
        if (map) map->DrawTileType(graph, SURF_GROUND, SURF_TILE, t);
    }
    if (log) log->Write("show tiles end");
}

void CMap::DrawTileType(CGraph* graph, int ground, int sheet, int type) {
    for (const SMapCell& c : m_cells) {
        if (c.tileType != type) continue;
        // The reader keeps every picture on the sheet; nothing else is copied.
        if (c.picX < 0 || c.picY < 0 || c.picX > TILE_SHEET_W - CELL_W || c.picY > TILE_SHEET_H - CELL_H) continue;
        m_rcScratch = SRect{c.picX, c.picY, c.picX + CELL_W, c.picY + CELL_H};
        graph->BltFast(ground, c.x, c.y, sheet, m_rcScratch, BLT_WAIT_SRCKEY);
    }
}

namespace {
// A ground piece's place in the world, or false when it lies so far out that
// int32_t arithmetic on it could overflow (it could never be seen anyway).
bool PiecePlace(const SMapObject& o, int32_t px, int32_t py, int32_t& wx, int32_t& wy) {
    const int64_t x = int64_t(px) - o.sheetX + o.worldX, y = int64_t(py) - o.sheetY + o.worldY;
    constexpr int64_t kFar = int64_t(1) << 30;
    if (x < -kFar || x > kFar || y < -kFar || y > kFar) return false;
    wx = int32_t(x);
    wy = int32_t(y);
    return true;
}
}  // namespace

void CMap::DrawObjects(CGraph* graph, int objectLayer, int objectSheet, int ground, uint32_t colorMask) {
    const uint16_t transparent = colorMask == COLOR_MASK_565 ? 0xF81F : 0x7C1F;
    graph->FillRect(objectLayer, nullptr, transparent);
    for (const SMapObject& o : m_objects) {
        graph->BltClipped(objectLayer, WORLD_W, WORLD_H, objectSheet, BLT_WAIT_SRCKEY, o.worldX, o.worldY, o.sheetX,
                          o.sheetY, o.width, o.height);
        for (int32_t p = 0; p < o.pieceCount && p < MAX_GROUND_PIECES; ++p) {
            const int32_t px = o.pieces[p][0], py = o.pieces[p][1];
            int32_t wx = 0, wy = 0;
            if (!PiecePlace(o, px, py, wx, wy)) continue;
            graph->BltClipped(ground, WORLD_W, WORLD_H, objectSheet, BLT_WAIT_SRCKEY, wx, wy, px, py, CELL_W, CELL_H);
            m_rcScratch = SRect{wx, wy, wx + CELL_W, wy + CELL_H};
            graph->FillRect(objectLayer, &m_rcScratch, transparent);
        }
    }
    m_pLog->Write("draw objects...ok!");
}
