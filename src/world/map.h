// CMap: one isometric map at a time, read from a map file (world/map_file.h). The
// map answers the world's questions about a pixel: which cell, can it be
// crossed, which script or exit does it carry. "maps.ini" and "scripts.ini" turn
// the small exit and script numbers into file names and labels.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/state_json.h"
#include "base/types.h"
#include "world/map_file.h"

class CIni;
class CLog;
class CGraph;

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

    // Reads a map file (host path). The NPC placements replace the contents of
    // npcs. A missing file fails quietly; a file that is not a map shows the
    // message; a damaged one is refused with a log line naming the file, the cell
    // or object and the field. Every failure keeps the map loaded before.
    bool Load(const char* path, std::vector<SMapNpc>* npcs);
    // The same over a file image in memory; name stands for the file in messages.
    bool LoadBytes(const uint8_t* data, size_t size, const char* name, std::vector<SMapNpc>* npcs);
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

// Reads "tiles.ini" from the ini archive and draws every tile type of the map
// onto the ground layer (the game's DrawTiles).
void DrawTiles(CGraph* graph, CMap* map, const char* iniPack, CLog* log);
