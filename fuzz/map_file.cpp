// Map file reader on damaged maps, fed as bytes. Whatever it accepts has every
// sheet coordinate on its sheet and writes back to bytes that read the same.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/byte_reader.h"
#include "world/map_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CByteReader in(data, size, "fuzz.map");
    SMapFile map;
    const EMapFileRead r = ReadMapFile(in, map);
    if (r != EMapFileRead::Ok) {
        if (in.Ok() || in.Error().empty()) __builtin_trap();  // every refusal says why
        return 0;
    }
    const int64_t n = map.header.size;
    if (n < 1 || n > MAP_MAX_SIZE || map.cells.size() != size_t(n * n)) __builtin_trap();
    for (const SMapCell& c : map.cells)
        if (c.picX < 0 || c.picY < 0 || c.picX + CELL_W > TILE_SHEET_W || c.picY + CELL_H > TILE_SHEET_H)
            __builtin_trap();
    for (const SMapObject& o : map.objects) {
        if (o.pieceCount < 0 || o.pieceCount > MAX_GROUND_PIECES) __builtin_trap();
        if (o.sheetX < 0 || o.sheetY < 0 || o.width < 0 || o.height < 0 ||
            int64_t(o.sheetX) + o.width > OBJECT_SHEET_W || int64_t(o.sheetY) + o.height > OBJECT_SHEET_H)
            __builtin_trap();
        for (int32_t p = 0; p < o.pieceCount; ++p)
            if (o.pieces[p][0] < 0 || o.pieces[p][1] < 0 || o.pieces[p][0] + CELL_W > OBJECT_SHEET_W ||
                o.pieces[p][1] + CELL_H > OBJECT_SHEET_H)
                __builtin_trap();
    }
    const std::vector<uint8_t> bytes = MapFileBytes(map);
    if (bytes.size() != size) __builtin_trap();
    CByteReader again(bytes, "again.map");
    SMapFile back;
    if (ReadMapFile(again, back) != EMapFileRead::Ok || MapFileBytes(back) != bytes) __builtin_trap();
    return 0;
}
