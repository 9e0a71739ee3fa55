// The map file: reading with every count and sheet coordinate checked, writing.
#include "world/map_file.h"

#include <cstring>
#include <utility>

#include "base/byte_reader.h"

namespace {

// True when a w x h rectangle at (x, y) lies on a sheetW x sheetH sheet; in
// 64-bit so that no coordinate a file holds can overflow the test.
bool OnSheet(int64_t x, int64_t y, int64_t w, int64_t h, int64_t sheetW, int64_t sheetH) {
    return x >= 0 && y >= 0 && w >= 0 && h >= 0 && x + w <= sheetW && y + h <= sheetH;
}

bool CheckCells(CByteReader& in, const SMapFile& map, size_t cellsAt) {
    const int32_t n = map.header.size;
    for (size_t k = 0; k < map.cells.size(); ++k) {
        const SMapCell& c = map.cells[k];
        if (OnSheet(c.picX, c.picY, CELL_W, CELL_H, TILE_SHEET_W, TILE_SHEET_H)) continue;
        const bool xBad = c.picX < 0 || int64_t(c.picX) + CELL_W > TILE_SHEET_W;
        return in.FailAt(cellsAt + k * sizeof(SMapCell) + (xBad ? offsetof(SMapCell, picX) : offsetof(SMapCell, picY)),
                         "cell (%d,%d) %s %d puts its picture outside the %d x %d tile sheet", int(k / size_t(n)),
                         int(k % size_t(n)), xBad ? "picX" : "picY", xBad ? c.picX : c.picY, TILE_SHEET_W,
                         TILE_SHEET_H);
    }
    return true;
}

bool CheckObjects(CByteReader& in, const SMapFile& map, size_t objectsAt) {
    for (size_t k = 0; k < map.objects.size(); ++k) {
        const SMapObject& o = map.objects[k];
        const size_t at = objectsAt + k * sizeof(SMapObject);
        if (!OnSheet(o.sheetX, o.sheetY, o.width, o.height, OBJECT_SHEET_W, OBJECT_SHEET_H)) {
            // Name the first field that puts the rectangle off the sheet.
            const char* field = "sheetX";
            int32_t value = o.sheetX;
            size_t fieldAt = offsetof(SMapObject, sheetX);
            if (o.sheetX < 0 || o.sheetX > OBJECT_SHEET_W) {
            } else if (o.sheetY < 0 || o.sheetY > OBJECT_SHEET_H) {
                field = "sheetY", value = o.sheetY, fieldAt = offsetof(SMapObject, sheetY);
            } else if (o.width < 0 || int64_t(o.sheetX) + o.width > OBJECT_SHEET_W) {
                field = "width", value = o.width, fieldAt = offsetof(SMapObject, width);
            } else {
                field = "height", value = o.height, fieldAt = offsetof(SMapObject, height);
            }
            return in.FailAt(at + fieldAt,
                             "object %zu %s %d puts its rectangle (%d,%d %dx%d) outside the %d x %d object sheet", k,
                             field, value, o.sheetX, o.sheetY, o.width, o.height, OBJECT_SHEET_W, OBJECT_SHEET_H);
        }
        for (int32_t p = 0; p < o.pieceCount; ++p) {
            const int32_t px = o.pieces[p][0], py = o.pieces[p][1];
            if (OnSheet(px, py, CELL_W, CELL_H, OBJECT_SHEET_W, OBJECT_SHEET_H)) continue;
            const bool xBad = px < 0 || int64_t(px) + CELL_W > OBJECT_SHEET_W;
            return in.FailAt(at + offsetof(SMapObject, pieces) + size_t(p) * 8 + (xBad ? 0 : 4),
                             "object %zu ground piece %d %s %d lies outside the %d x %d object sheet", k, p,
                             xBad ? "x" : "y", xBad ? px : py, OBJECT_SHEET_W, OBJECT_SHEET_H);
        }
    }
    return true;
}

}  // namespace

EMapFileRead ReadMapFile(CByteReader& in, SMapFile& out) {
    SMapHeader header{};
    if (in.Remaining() < sizeof header) {
        in.Fail("shorter than the %zu-byte header", sizeof header);
        return EMapFileRead::NotAMap;
    }
    in.ReadRecord(header, "header");
    if (std::memcmp(header.magic, MAP_FILE_MAGIC, 4) != 0) {
        in.FailAt(0, "not a map file (wrong magic)");
        return EMapFileRead::NotAMap;
    }
    // The counts must describe exactly what the file holds: a lying or truncated
    // file is refused before anything is allocated from its numbers.
    const int64_t n = header.size;
    bool countsOk = n > 0 && n <= MAP_MAX_SIZE && header.objectCount >= 0 && header.npcCount >= 0 &&
                    header.objectCount <= MAP_MAX_OBJECTS && header.npcCount <= MAP_MAX_NPCS;
    if (countsOk) {
        const uint64_t expected = uint64_t(n * n) * sizeof(SMapCell) +
                                  uint64_t(header.objectCount) * sizeof(SMapObject) +
                                  uint64_t(header.npcCount) * sizeof(SMapNpc);
        countsOk = expected == in.Remaining();
    }
    if (!countsOk) {
        in.FailAt(offsetof(SMapHeader, size), "counts do not match its length (N %d, %d objects, %d NPCs)",
                  header.size, header.objectCount, header.npcCount);
        return EMapFileRead::Damaged;
    }
    SMapFile map;
    const size_t cellsAt = in.Offset();
    in.ReadRecords(map.cells, uint64_t(n * n), "cells");
    const size_t objectsAt = in.Offset();
    in.ReadRecords(map.objects, uint64_t(header.objectCount), "objects");
    in.ReadRecords(map.npcs, uint64_t(header.npcCount), "NPC placements");
    if (!in.Ok()) return EMapFileRead::Damaged;
    // A ground-piece count beyond the record's 30 pairs would read past it.
    for (SMapObject& o : map.objects) {
        if (o.pieceCount < 0) o.pieceCount = 0;
        if (o.pieceCount > MAX_GROUND_PIECES) o.pieceCount = MAX_GROUND_PIECES;
    }
    // Unterminated texts are cut to their fields; terminated ones keep every byte.
    for (auto [text, size] : {std::pair<char*, size_t>{header.fileName, sizeof header.fileName},
                              {header.displayName, sizeof header.displayName}, {header.music, sizeof header.music}})
        if (!std::memchr(text, 0, size)) text[size - 1] = 0;
    map.header = header;
    if (!CheckCells(in, map, cellsAt) || !CheckObjects(in, map, objectsAt)) return EMapFileRead::Damaged;
    out = std::move(map);
    return EMapFileRead::Ok;
}

std::vector<uint8_t> MapFileBytes(const SMapFile& map) {
    SMapHeader header = map.header;
    header.objectCount = int32_t(map.objects.size());
    header.npcCount = int32_t(map.npcs.size());
    const size_t cells = map.cells.size() * sizeof(SMapCell), objects = map.objects.size() * sizeof(SMapObject),
                 npcs = map.npcs.size() * sizeof(SMapNpc);
    std::vector<uint8_t> out(sizeof header + cells + objects + npcs);
    uint8_t* p = out.data();
    std::memcpy(p, &header, sizeof header);
    p += sizeof header;
    if (cells) std::memcpy(p, map.cells.data(), cells);
    p += cells;
    if (objects) std::memcpy(p, map.objects.data(), objects);
    p += objects;
    if (npcs) std::memcpy(p, map.npcs.data(), npcs);
    return out;
}
