// Map file reader on damaged maps: the input is written to a scratch file and
// loaded; every cell of a loaded map is then asked for its script, exit and label,
// and a few points outside and inside the grid go through PointToCell.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "world/map.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = "/tmp/ashen_fuzz_map_" + std::to_string(getpid()) + ".map";
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        if (size) std::fwrite(data, 1, size, f);
        std::fclose(f);
    } else {
        return 0;
    }
    CMap map;
    map.SetRegistries("[count]\ncount=2\n[name]\n1=a.map\n2=b.map\n[comment]\n1=Gate\n2=Road\n",
                      "[name]\n1=a.gsp\n2=b.gsp\n");
    std::vector<SMapNpc> npcs;
    if (!map.Load(path.c_str(), &npcs)) return 0;
    if (map.Cells().size() != size_t(map.Size()) * size_t(map.Size())) __builtin_trap();
    std::string out;
    const int32_t n = map.Size() < 256 ? map.Size() : 256;
    for (int32_t i = 0; i < n; ++i)
        for (int32_t j = 0; j < n; ++j) {
            SPoint p = map.GetCellPoint(i, j);
            map.GetCellScript(out, p.x, p.y);
            map.GetCellExit(out, p.x, p.y);
            map.GetCellLabel(out, p.x, p.y);
            map.GetCross(p.x, p.y);
        }
    const int32_t probes[][2] = {{-1, -1}, {0, 0}, {100000, 100000}, {-100000, 5}, {2147483647, -2147483647 - 1}};
    for (const auto& q : probes) {
        map.PointToCell(q[0], q[1]);
        map.GetCellExit(out, q[0], q[1]);
    }
    return 0;
}
