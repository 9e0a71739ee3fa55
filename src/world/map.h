// CMap: one isometric map at a time. A map file holds a fixed header, one record
// per cell (tile picture, world box, crossing, script and exit numbers), the
// placed objects (cut from the object sheet) and the NPC placements. The map
// answers the world's questions about a pixel: which cell, can it be crossed,
// which script or exit does it carry. "maps.ini" and "scripts.ini" turn the
// small exit and script numbers into file names and labels.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/state_json.h"
#include "base/types.h"

class CIni;
class CLog;
class CGraph;

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

// Geometry of the grid: the top corner of cell (0, 0)'s diamond, and the cell size.
constexpr int32_t MAP_ORIGIN_X = 1568;
constexpr int32_t MAP_ORIGIN_Y = 0;
constexpr int32_t CELL_W = 64;
constexpr int32_t CELL_H = 32;
constexpr int32_t MAP_MAX_SIZE = 200;  // largest N a map file may declare

// The world box of cell (i, j) on a regular grid (what the map compiler writes).
inline SPoint CellBoxOrigin(int32_t i, int32_t j) {
    return SPoint{MAP_ORIGIN_X - CELL_W / 2 + (i - j) * (CELL_W / 2), MAP_ORIGIN_Y + (i + j) * (CELL_H / 2)};
}

class CMap {
public:
    CMap();
    virtual ~CMap();
    CMap(const CMap&) = delete;
    CMap& operator=(const CMap&) = delete;

    // Opens "scripts.ini" and "maps.ini" from the archive and reads the label list.
    void LoadRegistries(const char* archivePath);
    // Registries from texts (tests and tools); an empty text means "missing".
    void SetRegistries(const std::string& mapsIni, const std::string& scriptsIni);

    // Reads a map file. The NPC placements are appended to npcs after clearing it.
    bool Load(const char* path, std::vector<SMapNpc>* npcs);
    void Unload();
    bool IsLoaded() const { return !m_cells.empty(); }

    void GetHeader(uint32_t out[23]) const;
    const SMapHeader& Header() const { return m_header; }
    // The dump's map part: "map" (file name) and "map_name" (display name).
    void WriteState(StateJson& out) const;
    int32_t Size() const { return m_header.size; }

    SPoint GetCellPoint(int32_t i, int32_t j) const;
    SPoint PointToCell(int32_t x, int32_t y) const;
    int32_t GetCross(int32_t x, int32_t y) const;
    bool GetCellScript(std::string& out, int32_t x, int32_t y) const;
    bool GetCellExit(std::string& out, int32_t x, int32_t y) const;
    bool GetCellLabel(std::string& out, int32_t x, int32_t y) const;

    // Drawing the pre-rendered layers (tiles.cpp).
    void DrawTileType(CGraph* graph, int ground, int sheet, int type);
    void DrawObjects(CGraph* graph, int objectLayer, int objectSheet, int ground, uint32_t colorMask);

    const std::vector<SMapCell>& Cells() const { return m_cells; }
    const std::vector<SMapObject>& Objects() const { return m_objects; }
    const std::vector<std::string>& Labels() const { return m_labels; }

private:
    const SMapCell* CellAtPoint(int32_t x, int32_t y) const;

    std::vector<std::string> m_labels;
    std::unique_ptr<CIni> m_pMapIni;
    std::unique_ptr<CIni> m_pScriptIni;
    SMapHeader m_header{};
    std::vector<SMapCell> m_cells;
    std::unique_ptr<CLog> m_pLog;
    SRect m_rcScratch{};
    SPoint m_ptOrigin{MAP_ORIGIN_X, MAP_ORIGIN_Y};
    std::vector<SMapObject> m_objects;  // in file order
};

// Picture name of picture k of a tile type, as catalogued by "tiles.ini":
// "%d\%s%s.bmp" with the number first + k, zero-padded to the digit count of
// the last number when pad is exactly "true".
std::string TileName(int type, const char* prefix, int first, int last, const char* pad, int k);
// Where picture k of a type goes on the tile sheet.
inline SPoint TileSheetPos(int k) { return SPoint{(k % 10) * CELL_W, ((k % 100) / 10) * CELL_H}; }

// Reads "tiles.ini" from the ini archive and draws every tile type of the map
// onto the ground layer (the game's DrawTiles).
void DrawTiles(CGraph* graph, CMap* map, const char* iniPack, CLog* log);
