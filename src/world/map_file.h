// The map file ("2pam"): a fixed header, one record per cell (tile picture,
// world box, crossing, script and exit numbers), the placed objects (cut from the
// object sheet) and the NPC placements, all little-endian packed records. One
// definition for the engine (CMap) and the map compiler (mapc): the reader checks
// every count against the bytes and every sheet coordinate against its sheet, the
// writer gives back the same bytes for every file the reader accepts.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/types.h"

class CByteReader;

#pragma pack(push, 1)
struct SMapHeader {
    char magic[4];          // "2pam"
    char fileName[20];      // the map's own file name (saved games reload from it)
    char displayName[32];   // shown during play, GBK
    int32_t size;           // N: the map has N x N cells
    int32_t objectCount;
    int32_t npcCount;
    int32_t startX;         // default start cell, first index
    int32_t startY;         // default start cell, second index
    char music[16];         // played as "music\" + name
};

struct SMapCell {
    uint8_t reserved[8];
    int32_t picX, picY;     // the 64 x 32 picture on the tile sheet of its type
    int32_t x, y;           // world box, top-left
    int32_t cross;          // 0 blocked
    uint8_t script;         // 0 none
    uint8_t exit;           // 0 none
    uint8_t tileType;       // 1 .. tiles.ini type count
    uint8_t reserved2;
};

constexpr int MAX_GROUND_PIECES = 30;

struct SMapObject {
    uint8_t reserved[8];
    int32_t pieceCount;                     // 0 .. 30 ground pieces
    int32_t pieces[MAX_GROUND_PIECES][2];   // sheet top-left of each 64 x 32 ground piece
    int32_t sheetX, sheetY;                 // the object's rectangle on the object sheet
    int32_t worldX, worldY;                 // where it is drawn
    int32_t width, height;
};

struct SMapNpc {
    uint32_t record;        // number in "data\npc.npc", from 1
    uint8_t reserved[20];
    int32_t cellX, cellY;
};
#pragma pack(pop)

static_assert(sizeof(SMapHeader) == 92, "map header is 92 bytes");
static_assert(sizeof(SMapCell) == 32, "map cell is 32 bytes");
static_assert(sizeof(SMapObject) == 276, "map object is 276 bytes");
static_assert(sizeof(SMapNpc) == 32, "NPC placement is 32 bytes");
static_assert(offsetof(SMapHeader, music) == 76 && offsetof(SMapHeader, startY) == 72, "header layout");
static_assert(offsetof(SMapObject, sheetX) == 252, "object layout");

constexpr char MAP_FILE_MAGIC[4] = {'2', 'p', 'a', 'm'};

// Geometry of the grid: the top corner of cell (0, 0)'s diamond, and the cell size.
constexpr int32_t MAP_ORIGIN_X = 1568;
constexpr int32_t MAP_ORIGIN_Y = 0;
constexpr int32_t CELL_W = 64;
constexpr int32_t CELL_H = 32;
constexpr int32_t MAP_MAX_SIZE = 200;        // largest N a map file may declare
constexpr int32_t MAP_MAX_OBJECTS = 100000;  // largest object count
constexpr int32_t MAP_MAX_NPCS = 100000;     // largest NPC placement count
// The largest file the counts above allow.
constexpr size_t MAP_FILE_MAX_BYTES = sizeof(SMapHeader) + size_t(MAP_MAX_SIZE) * MAP_MAX_SIZE * sizeof(SMapCell) +
                                      size_t(MAP_MAX_OBJECTS) * sizeof(SMapObject) +
                                      size_t(MAP_MAX_NPCS) * sizeof(SMapNpc);

// The world box of cell (i, j) on a regular grid (what the map compiler writes).
inline SPoint CellBoxOrigin(int32_t i, int32_t j) {
    return SPoint{MAP_ORIGIN_X - CELL_W / 2 + (i - j) * (CELL_W / 2), MAP_ORIGIN_Y + (i + j) * (CELL_H / 2)};
}

// Where picture k of a tile type goes on the tile sheet (what a cell's picX and
// picY point at).
inline SPoint TileSheetPos(int k) { return SPoint{(k % 10) * CELL_W, ((k % 100) / 10) * CELL_H}; }

struct SMapFile {
    SMapHeader header{};
    std::vector<SMapCell> cells;      // N x N, cell (i, j) at i * N + j
    std::vector<SMapObject> objects;  // in file order
    std::vector<SMapNpc> npcs;
};

enum class EMapFileRead {
    Ok,
    NotAMap,  // too short for a header, or the magic differs
    Damaged,  // counts that do not describe the file, coordinates off their sheets
};

// Reads a whole map file image. The counts must describe exactly the bytes given;
// every cell picture must lie on the tile sheet, every object rectangle and
// ground piece on the object sheet (otherwise Damaged, the reader's error naming
// the cell or object and the field). Ground-piece counts beyond the record are
// cut to 30; the three header texts are cut to their fields.
EMapFileRead ReadMapFile(CByteReader& in, SMapFile& out);
// The file image of a map; the header's counts are taken from the vectors.
std::vector<uint8_t> MapFileBytes(const SMapFile& map);
