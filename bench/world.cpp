// World benchmarks on the built game data: entering a map (load, tiles, objects)
// and the world part of a playing frame with the hero and 30 roles.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "characters/role.h"
#include "media/graph.h"
#include "world/map.h"

namespace {

struct SWorld {
    CGraph graph;
    CMap map;
    SWorld() {
        // The built game folder (ASHEN_BENCH_GAME_DIR may name another build's).
        const char* dir = std::getenv("ASHEN_BENCH_GAME_DIR");
        if (chdir(dir ? dir : ASHEN_GAME_DIR) != 0) return;
        const int sizes[SURF_COUNT][3] = {{640, 480, 0},   {640, 480, 0},   {3200, 1600, 0}, {3200, 1600, 1},
                                          {3200, 1600, 1}, {640, 640, 1},   {2048, 1600, 1}, {640, 480, 1}};
        for (int i = 0; i < SURF_COUNT; ++i) graph.GetSurface(i)->Create(sizes[i][0], sizes[i][1], sizes[i][2] != 0);
        graph.SetPackPath(0, "data\\role.vrn");
        graph.SetPackPath(5, "data\\tiles.vrn");
    }
    bool Enter(const char* path) {
        map.Unload();
        std::vector<SMapNpc> npcs;
        if (!map.Load(path, &npcs)) return false;
        DrawTiles(&graph, &map, "data\\ini.vrn", nullptr);
        graph.LoadBitmapToSurface(5, "obj.bmp", SURF_OBJSHEET, 0, 0, 1);
        map.DrawObjects(&graph, SURF_OBJECT, SURF_OBJSHEET, SURF_GROUND, graph.GetColorMask());
        return true;
    }
};

SWorld& World() {
    static SWorld w;
    return w;
}

// Entering Ashvale (50 x 50 cells, 103 objects) with the tile pictures cached, as
// on every map change after the first.
void BM_EnterMapWarm(benchmark::State& state) {
    SWorld& w = World();
    if (!w.Enter("map/main.map")) {
        state.SkipWithError("map/main.map missing: build the game first");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(w.Enter("map/main.map"));
    state.counters["objects"] = double(w.map.Objects().size());
}
BENCHMARK(BM_EnterMapWarm)->Unit(benchmark::kMillisecond);

// The same with the picture cache emptied first: every tile picture and obj.bmp
// is read and unpacked from the archive.
void BM_EnterMapCold(benchmark::State& state) {
    SWorld& w = World();
    for (auto _ : state) {
        w.graph.FreeBitmapCache(0);
        w.graph.FreeBitmapCache(1);
        if (!w.Enter("map/main.map")) {
            state.SkipWithError("map/main.map missing: build the game first");
            return;
        }
    }
}
BENCHMARK(BM_EnterMapCold)->Unit(benchmark::kMillisecond);

// One playing frame's world work: clear the role layer around the view, probe
// and step every role on the draw list (hero first plus 30 NPCs walking), then
// compose the three layers into the back buffer.
void BM_PlayFrame31Roles(benchmark::State& state) {
    SWorld& w = World();
    if (!w.map.IsLoaded() && !w.Enter("map/main.map")) {
        state.SkipWithError("map/main.map missing: build the game first");
        return;
    }
    std::vector<std::unique_ptr<CRole>> roles;
    roles.emplace_back(new CRole("role.pmg", "hadrin", 1536, 832, 10, 100, 1));
    for (int k = 0; k < 30; ++k) {
        roles.emplace_back(new CRole("villager_m.rol", "npc", 1300 + (k % 6) * 80, 620 + (k / 6) * 80, 5, 50, 0));
        roles.back()->m_nNpcId = k + 1;
    }
    // Each role paces between two points around its home, so all stay in view.
    std::vector<SPoint> home;
    std::vector<int> leg(roles.size(), 0);
    for (auto& r : roles) home.push_back(SPoint{r->m_x, r->m_y});
    auto keepWalking = [&](size_t i) {
        CRole& r = *roles[i];
        // A blocked NPC wanders off; bring it back so the draw list stays in view.
        if (std::abs(r.m_x - home[i].x) > 150 || std::abs(r.m_y - home[i].y) > 150) {
            r.SetPosition(home[i].x, home[i].y, 5);
            r.Stand();
        }
        if (std::strcmp(r.GetState(), "walk") != 0 && std::strcmp(r.GetState(), "run") != 0) {
            leg[i] ^= 1;
            const int d = leg[i] ? 60 : -60;
            r.WalkTo(home[i].x + d, home[i].y + d / 2, i == 0 ? "run" : "walk");
        }
    };
    CSurface* layer = w.graph.GetSurface(SURF_ROLE);
    for (auto _ : state) {
        const SPoint view = roles[0]->GetViewOrigin();
        w.graph.ClearRoleLayer(view.x, view.y);
        for (size_t i = 0; i < roles.size(); ++i) {
            keepWalking(i);
            CRole& self = *roles[i];
            const SPoint p = self.GetStepPoint(self.GetState());
            CRole* found = nullptr;
            for (size_t k = 0; k < roles.size(); ++k) {
                if ((k == 0 && i == 0) || roles[k]->IsDead() || !roles[k]->GetRect().Contains(p.x, p.y)) continue;
                if (!found || roles[k]->m_y > found->m_y) found = roles[k].get();
            }
            if (found && i == 0 && (p.x < 0 || p.y < 0 || p.x >= layer->width || p.y >= layer->height ||
                                    layer->At(p.x, p.y) == KEY565))
                found = nullptr;
            const uint32_t high = found ? uint32_t(found->m_nNpcId) : 0xFFFF;
            const uint32_t low = (w.map.GetCross(p.x, p.y) != 0 && (!found || found == &self)) ? 1 : 0;
            self.Update((high << 16) | low);
        }
        const SRect cam{view.x, view.y, view.x + 640, view.y + 480};
        w.graph.BltFast(SURF_BUFFER, 0, 0, SURF_GROUND, cam, BLT_WAIT);
        w.graph.BltFast(SURF_BUFFER, 0, 0, SURF_ROLE, cam, BLT_WAIT_SRCKEY);
        w.graph.BltFast(SURF_BUFFER, 0, 0, SURF_OBJECT, cam, BLT_WAIT_SRCKEY);
        benchmark::ClobberMemory();
    }
    // Proof that the roles were drawn: picture pixels on the role layer in view.
    const SPoint view = roles[0]->GetViewOrigin();
    size_t drawn = 0;
    for (int y = view.y; y < view.y + 480; ++y)
        for (int x = view.x; x < view.x + 640; ++x) drawn += layer->At(x, y) != KEY565;
    state.counters["drawn_px"] = double(drawn);
}
BENCHMARK(BM_PlayFrame31Roles)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
